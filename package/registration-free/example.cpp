// Makes the control with nothing registered: the manifest beside the program says where its class is.
// README.md in this folder says how to build and to try it.
#include <windows.h>

#include <oleauto.h>

#include <cstdio>

namespace {

// The text of one property of the object.
HRESULT ReadText(IDispatch* object, const wchar_t* name, BSTR* text) {
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR asked = const_cast<LPOLESTR>(name);
    HRESULT result = object->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(result))
        return result;
    DISPPARAMS none = {};
    VARIANT value;
    VariantInit(&value);
    result = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value, nullptr,
                            nullptr);
    if (SUCCEEDED(result))
        result = VariantChangeType(&value, &value, 0, VT_BSTR);
    if (SUCCEEDED(result))
        *text = SysAllocString(value.bstrVal);
    VariantClear(&value);
    return result;
}

HRESULT Try() {
    CLSID id;
    HRESULT result = CLSIDFromProgID(L"TarnLink.TarnComm", &id);
    IDispatch* control = nullptr;
    if (SUCCEEDED(result))
        result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                  reinterpret_cast<void**>(&control));
    if (FAILED(result))
        return result;
    BSTR settings = nullptr;
    result = ReadText(control, L"Settings", &settings);
    if (SUCCEEDED(result))
        std::printf("The control is here. Its settings are %ls.\n", settings);
    SysFreeString(settings);
    control->Release();
    return result;
}

} // namespace

int main() {
    CoInitialize(nullptr);
    const HRESULT result = Try();
    CoUninitialize();
    if (FAILED(result))
        std::printf("The control could not be made: error %08lX.\n", static_cast<unsigned long>(result));
    return FAILED(result);
}
