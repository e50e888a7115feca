#include "automationdouble.h"

#include <oleauto.h>
#include <windows.h>

#include <cstdlib>
#include <cstring>

namespace {

int strings;

// The length in bytes stands before the characters.
struct Header {
    alignas(16) UINT bytes;
};

Header* HeaderOf(BSTR text) {
    return reinterpret_cast<Header*>(text) - 1;
}

} // namespace

namespace automation {

int Strings() {
    return strings;
}

} // namespace automation

BSTR WINAPI SysAllocStringLen(const OLECHAR* text, UINT length) {
    const UINT bytes = length * static_cast<UINT>(sizeof(OLECHAR));
    auto* header = static_cast<Header*>(std::calloc(1, sizeof(Header) + bytes + sizeof(OLECHAR)));
    if (!header)
        return nullptr;
    header->bytes = bytes;
    std::memcpy(header + 1, text, bytes);
    ++strings;
    return reinterpret_cast<BSTR>(header + 1);
}

UINT WINAPI SysStringLen(BSTR text) {
    return text ? HeaderOf(text)->bytes / static_cast<UINT>(sizeof(OLECHAR)) : 0;
}

void WINAPI SysFreeString(BSTR text) {
    if (!text)
        return;
    std::free(HeaderOf(text));
    --strings;
}

HRESULT WINAPI VariantClear(VARIANTARG* value) {
    if (V_VT(value) == VT_BSTR)
        SysFreeString(V_BSTR(value));
    V_VT(value) = VT_EMPTY;
    return S_OK;
}
