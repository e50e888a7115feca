// A control in a container that calls it "Comm", with the log of its properties on.
#pragma once

#include "control/ansi.h"
#include "control/TarnCommCtl.h"
#include "diagnostics/wiretap.h"
#include "support/container.h"
#include "support/every.h"
#include "support/host.h"
#include "support/sinks.h"
#include "unit/diagnostics/logfiles.h"

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace controltest {

// What a getter of a string gives, as bytes.
inline std::string Taken(BSTR text) {
    const std::string bytes = AnsiOf(std::wstring(text ? text : L"", SysStringLen(text)));
    SysFreeString(text);
    return bytes;
}

// The description of the thread's error record; the record is gone afterwards.
inline std::string ErrorText() {
    ComPtr<IErrorInfo> error;
    if (GetErrorInfo(0, error.GetAddressOf()) != S_OK)
        return "no error";
    BSTR text = nullptr;
    error->GetDescription(&text);
    return Taken(text);
}

// A value that an enumeration doesn't have, as a script may give it.
template <class Enumeration>
Enumeration Outside(int value) {
    return std::bit_cast<Enumeration>(value);
}

class Control {
  public:
    explicit Control(bool runTime = true) {
        CoInitialize(nullptr);
        NewObject(control_);
        container_.site.ambients[DISPID_AMBIENT_DISPLAYNAME] = L"Comm";
        container_.site.ambients[DISPID_AMBIENT_USERMODE] = runTime;
        container_.Hold(&Face());
        control_->ApplyProperties(); // asks for the name
    }
    ~Control() {
        SetShutDown(Object(), 1);
        container_.Drop();
        control_.Reset();
        CoUninitialize();
    }
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    CTarnCommCtl* operator->() { return control_.Get(); }
    ITarnComm& Face() { return *control_.Get(); }
    HWND Object() const { return control_ ? control_->CommObject() : nullptr; }
    host::Container& Container() { return container_; }
    ComPtr<CTarnCommCtl>& Pointer() { return control_; }

    // Creates the control's window.
    void Show() { container_.Do(OLEIVERB_SHOW); }

    // Opens the port at flat level.
    std::string Open(const char* port) {
        char error[TARN_ERROR_TEXT_SIZE] = {};
        SetCommPort(Object(), port);
        SetSettings(Object(), "115200,n,8,1");
        return SetPortOpen(Object(), 1, error) ? "" : std::string("failed: ") + error;
    }

    // The text of a property, by its getter.
    std::string Text(HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(BSTR*)) {
        BSTR text = nullptr;
        const HRESULT result = (Face().*get)(&text);
        return SUCCEEDED(result) ? Taken(text) : "failed";
    }
    HRESULT Put(HRESULT (STDMETHODCALLTYPE ITarnComm::*put)(BSTR), const wchar_t* text) {
        const BSTR given = SysAllocString(text);
        const HRESULT result = (Face().*put)(given);
        SysFreeString(given);
        return result;
    }

    // The DISPIDs that sinks are told of meanwhile.
    std::vector<DISPID> ChangesOf(const std::function<void()>& action) {
        host::PropertySink sink;
        ComPtr<IConnectionPoint> point;
        DWORD cookie = 0;
        control_->FindConnectionPoint(IID_IPropertyNotifySink, point.GetAddressOf());
        point->Advise(&sink, &cookie);
        action();
        point->Unadvise(cookie);
        return sink.changed;
    }

  private:
    ComPtr<CTarnCommCtl> control_;
    host::Container container_;
};

// Starts the log anew and gives what the action writes to it.
inline std::string LogOf(const std::function<void()>& action) {
    ResetWireTap();
    logfiles::RemoveLog();
    action();
    const std::string messages = logfiles::Messages();
    ResetWireTap();
    logfiles::RemoveLog();
    return messages;
}

inline std::string Line(const std::string& text) {
    return "<time> " + text + "\r\n";
}

class LoggedControl : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(control.Object(), nullptr);
        control->put_WireTapProperties(VARIANT_TRUE);
        control->put_WireTap(VARIANT_TRUE);
    }

    Control control;
};

// A plain row of the property table: a value, and what the comm object then has.
struct Row {
    std::string name;
    std::function<HRESULT(ITarnComm&, long)> put;
    std::function<HRESULT(ITarnComm&, long&)> get;
    long value;
    std::function<long(HWND)> flat;
    long flatValue;
    bool isBool;
};

template <class Type>
Row PlainRow(const char* name, HRESULT (STDMETHODCALLTYPE ITarnComm::*put)(Type),
             HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(Type*), long value, std::function<long(HWND)> flat,
             long flatValue) {
    return {name,
            [put](ITarnComm& face, long given) { return (face.*put)(static_cast<Type>(given)); },
            [get](ITarnComm& face, long& taken) {
                Type typed = {};
                const HRESULT result = (face.*get)(&typed);
                taken = typed;
                return result;
            },
            value,
            std::move(flat),
            flatValue,
            std::is_same_v<Type, VARIANT_BOOL>};
}

inline std::string ShownValue(const Row& row) {
    if (row.isBool)
        return row.value ? "True" : "False";
    return std::to_string(row.value);
}

// The four facts of a plain row.
inline void CheckRow(Control& control, const Row& row) {
    long taken = 0;
    const std::string set = LogOf([&] { EXPECT_EQ(row.put(control.Face(), row.value), S_OK); });
    EXPECT_EQ(set, Line("Comm." + row.name + " = " + ShownValue(row)));
    EXPECT_EQ(row.flat(control.Object()), row.flatValue);
    const std::string got = LogOf([&] { EXPECT_EQ(row.get(control.Face(), taken), S_OK); });
    EXPECT_EQ(got, Line("Comm." + row.name + " returns " + ShownValue(row)));
    EXPECT_EQ(taken, row.value);
}

#define TARN_ROW(name, value, flat)                                                                          \
    controltest::PlainRow(                                                                                   \
        #name, &ITarnComm::put_##name, &ITarnComm::get_##name, value,                                        \
        [](HWND object) { return static_cast<long>(flat(object)); }, value)
#define TARN_ROW_AS(name, value, flat, flatValue)                                                            \
    controltest::PlainRow(                                                                                   \
        #name, &ITarnComm::put_##name, &ITarnComm::get_##name, value,                                        \
        [](HWND object) { return static_cast<long>(flat(object)); }, flatValue)
// Not known to the comm object
#define TARN_ROW_ALONE(name, value)                                                                          \
    controltest::PlainRow(                                                                                   \
        #name, &ITarnComm::put_##name, &ITarnComm::get_##name, value, [](HWND) { return 0L; }, 0)

} // namespace controltest
