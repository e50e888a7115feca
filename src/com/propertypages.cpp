#include "propertypages.h"

#include "wall.h"

#include <algorithm>

HRESULT GivePages(const std::vector<CLSID>& pages, CAUUID* given) noexcept {
    if (!given)
        return E_POINTER;
    *given = {};
    auto* memory = static_cast<GUID*>(CoTaskMemAlloc(pages.size() * sizeof(GUID))); // the caller's to free
    if (!memory)
        return E_OUTOFMEMORY;
    std::ranges::copy(pages, memory);
    *given = {static_cast<ULONG>(pages.size()), memory};
    return S_OK;
}

HRESULT PropertyPages::GetPages(CAUUID* given) {
    return AsResult([&] { return GivePages(Pages(), given); });
}
