#include "enumvariant.h"

#include "listenumerator.h"

namespace {

struct CopyString {
    static HRESULT Copy(const std::wstring& text, VARIANT& given) {
        VariantInit(&given);
        V_BSTR(&given) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        if (!V_BSTR(&given))
            return E_OUTOFMEMORY;
        V_VT(&given) = VT_BSTR;
        return S_OK;
    }
    static void Drop(VARIANT& given) { VariantClear(&given); }
};

using StringEnumerator = ListEnumerator<IEnumVARIANT, VARIANT, std::wstring, CopyString>;

} // namespace

HRESULT MakeStringEnumerator(std::vector<std::wstring> strings, IUnknown** enumerator) noexcept {
    return GiveEnumerator<StringEnumerator>(std::move(strings), enumerator);
}
