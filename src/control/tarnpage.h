// A property page of controls: fills itself from one ITarnComm and passes its values on to each that it was
// given.
#pragma once

#include "com/propertypage.h"
#include "com/unknown.h"
#include "TarnLink.h"

#include <functional>
#include <string>
#include <vector>

class TarnPage : public PropertyPage {
  protected:
    using Setter = std::function<HRESULT(ITarnComm& control)>;
    using Setters = std::vector<Setter>;
    using Flag = VARIANT_BOOL;

    template <class Value>
    using Getter = HRESULT (STDMETHODCALLTYPE ITarnComm::*)(Value*);
    template <class Value>
    using Putter = HRESULT (STDMETHODCALLTYPE ITarnComm::*)(Value);

    // A check box and its property.
    struct CheckRow {
        int item;
        Getter<Flag> get;
        Putter<Flag> put;
    };

    // Lists and the like, which no object has a part in.
    virtual void OnPrepare() {}
    virtual void OnControl(ITarnComm& control) = 0;
    // What the controls say now, in the order in which an object takes it.
    virtual Setters Values() const = 0;
    // For a debugger, at each Apply.
    virtual const char* ApplyTrace() const = 0;

    bool IsChecked(int item) const;
    void Check(int item, bool on) const;
    void ShowNumber(int item, LONG value) const;
    LONG Number(int item, bool isSigned) const; // 0: there is none
    void ShowText(int item, const std::string& text) const;

    // What a getter that fails leaves is 0 or empty.
    template <class Value>
    static Value Get(ITarnComm& control, Getter<Value> get) {
        Value value = {};
        return SUCCEEDED((control.*get)(&value)) ? value : Value{};
    }
    static std::string GetText(ITarnComm& control, Getter<BSTR> get);

    template <class Value>
    static Setter Sets(Putter<Value> put, Value value) {
        return [put, value](ITarnComm& control) { return (control.*put)(value); };
    }
    static Setter SetsFlag(Putter<Flag> put, bool on);
    static Setter SetsText(Putter<BSTR> put, const std::string& text);

    template <class Rows>
    void ShowChecks(const Rows& rows, ITarnComm& control) const {
        for (const CheckRow& row : rows)
            Check(row.item, Get(control, row.get) != VARIANT_FALSE);
    }

  private:
    void OnFill(IUnknown* first) override;
    HRESULT OnApply(const Objects& objects) override;
};
