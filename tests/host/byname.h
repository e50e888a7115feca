// A control as script hosts see it: members by their names.
#pragma once

#include <comdef.h>
#include <wrl/client.h>

#include <string>

namespace host {

class ByName {
  public:
    explicit ByName(Microsoft::WRL::ComPtr<IDispatch> object) : object_(std::move(object)) {}

    _variant_t Get(const wchar_t* name) {
        DISPPARAMS none = {};
        return Invoke(name, DISPATCH_PROPERTYGET, none);
    }
    HRESULT Put(const wchar_t* name, _variant_t value) {
        DISPID put = DISPID_PROPERTYPUT;
        DISPPARAMS arguments = {&value, &put, 1, 1};
        Invoke(name, DISPATCH_PROPERTYPUT, arguments);
        return result;
    }
    _variant_t Call(const wchar_t* name) {
        DISPPARAMS none = {};
        return Invoke(name, DISPATCH_METHOD, none);
    }

    HRESULT result = S_OK; // of the last
    std::wstring problem;  // in words

  private:
    _variant_t Invoke(const wchar_t* name, WORD kind, DISPPARAMS& arguments) {
        DISPID id = DISPID_UNKNOWN;
        LPOLESTR asked = const_cast<LPOLESTR>(name);
        _variant_t value;
        EXCEPINFO exception = {};
        result = object_->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id);
        if (SUCCEEDED(result))
            result = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &arguments,
                                     kind == DISPATCH_PROPERTYPUT ? nullptr : &value, &exception, nullptr);
        problem = exception.bstrDescription ? exception.bstrDescription : L"";
        if (result == DISP_E_EXCEPTION)
            result = exception.scode;
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
        return value;
    }

    Microsoft::WRL::ComPtr<IDispatch> object_;
};

} // namespace host
