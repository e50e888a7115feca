#include "ambients.h"

#include <comdef.h>
#include <olectl.h>

using Microsoft::WRL::ComPtr;

void Ambients::Attach(IUnknown* site) {
    ComPtr<IDispatch> asked;
    if (site)
        site->QueryInterface(IID_PPV_ARGS(&asked));
    site_ = asked;
}

HRESULT Ambients::Get(DISPID id, VARTYPE type, VARIANT& value) const {
    VariantInit(&value);
    const ComPtr<IDispatch> site = site_; // the container may take it away meanwhile
    if (!site)
        return E_FAIL;
    DISPPARAMS none = {};
    HRESULT result = site->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value,
                                  nullptr, nullptr);
    if (SUCCEEDED(result))
        result = VariantChangeType(&value, &value, 0, type);
    if (FAILED(result))
        VariantClear(&value);
    return result;
}

bool Ambients::IsUserMode() const {
    _variant_t value;
    return FAILED(Get(DISPID_AMBIENT_USERMODE, VT_BOOL, value)) || V_BOOL(&value) != VARIANT_FALSE;
}

std::wstring Ambients::DisplayName() const {
    _variant_t value;
    if (FAILED(Get(DISPID_AMBIENT_DISPLAYNAME, VT_BSTR, value)) || !V_BSTR(&value))
        return {};
    return {V_BSTR(&value), SysStringLen(V_BSTR(&value))};
}
