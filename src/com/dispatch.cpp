#include "dispatch.h"

#include "typeinfo.h"

using Microsoft::WRL::ComPtr;

HRESULT GetDualTypeInfo(REFIID face, UINT index, ITypeInfo** info) noexcept {
    if (!info)
        return E_POINTER;
    *info = nullptr;
    if (index != 0)
        return DISP_E_BADINDEX;
    ComPtr<ITypeInfo> found;
    const HRESULT result = TypeInfoOf(face, found);
    *info = found.Detach();
    return result;
}

HRESULT GetDualIds(REFIID face, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept {
    ComPtr<ITypeInfo> info;
    const HRESULT result = CallInfoOf(face, info);
    return SUCCEEDED(result) ? info->GetIDsOfNames(names, count, ids) : result;
}

HRESULT InvokeDual(REFIID face, IDispatch* object, DISPID id, WORD flags, DISPPARAMS* arguments,
                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) noexcept {
    ComPtr<ITypeInfo> info;
    const HRESULT found = CallInfoOf(face, info);
    if (FAILED(found))
        return found;
    const ComPtr<IDispatch> keep(object);
    SetErrorInfo(0, nullptr); // an older call's error is not this one's
    return info->Invoke(object, id, flags, arguments, result, exception, badArgument);
}
