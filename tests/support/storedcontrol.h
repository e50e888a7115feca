// A control whose properties are a table of the test's: what persistence asks of it and tells it is recorded.
#pragma once

#include "com/olecontrol.h"
#include "com/unknown.h"
#include "control/persistence.h"
#include "support/counted.h"

#include <comdef.h>

#include <map>
#include <string>
#include <vector>

namespace host {

class ScriptedValues : public Counted<ScriptedValues, IDispatch> {
  public:
    using Faces = FaceTable<FaceRow<IDispatch>>;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        return isReachable ? Counted::QueryInterface(iid, object) : E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO*, UINT*) override {
        calls.push_back(id);
        if (id == refused)
            return DISP_E_TYPEMISMATCH;
        if (flags == DISPATCH_PROPERTYGET)
            return Give(values[id], *result);
        wasByReference[id] = flags == DISPATCH_PROPERTYPUTREF;
        return VariantCopy(&values[id], &arguments->rgvarg[0]);
    }

    std::map<DISPID, _variant_t> values;
    std::map<DISPID, bool> wasByReference;
    std::vector<DISPID> calls;
    DISPID refused = DISPID_UNKNOWN;
    bool isReachable = true;

  private:
    // The platform's copy of a null string is an empty one.
    static HRESULT Give(VARIANT& value, VARIANT& result) {
        if (value.vt != VT_BSTR || value.bstrVal)
            return VariantCopy(&result, &value);
        result = value;
        return S_OK;
    }
};

class StoredControl : public Unknown<StoredControl, OleControl, Persistence> {
  public:
    using Faces = FaceTable<OleControl::Faces, Persistence::Faces>;

    ScriptedValues values;

  protected:
    const ControlFacts& Facts() const override {
        static constexpr ControlFacts facts = {&CLSID_NULL, L"Stored", &IID_NULL, "StoredControl", 0};
        return facts;
    }
    IDispatch& Values() override { return values; }
    OleControl& Control() override { return *this; }
    HRESULT AroundStreamLoad(const std::function<HRESULT()>& read) override { return read(); }
    HRESULT AroundBagLoad(const std::function<HRESULT()>& read) override { return read(); }
    HRESULT AroundStreamSave(const std::function<HRESULT()>& write) override { return write(); }
    HRESULT AroundBagSave(const std::function<HRESULT()>& write) override { return write(); }
};

class Bag : public Counted<Bag, IPropertyBag> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyBag>>;

    HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
        const auto found = values.find(name);
        return found == values.end() ? E_INVALIDARG : VariantCopy(value, &found->second);
    }
    HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override {
        written.push_back(name);
        if (written.back() == refused)
            return STG_E_MEDIUMFULL;
        return VariantCopy(&values[name], value);
    }

    std::map<std::wstring, _variant_t> values;
    std::vector<std::wstring> written;
    std::wstring refused;
};

} // namespace host
