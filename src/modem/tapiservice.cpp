#include "tapiservice.h"

#include <cstring>
#include <optional>

namespace {

template <class Function>
bool Bind(HMODULE library, const char* szName, Function*& function) {
    const FARPROC found = GetProcAddress(library, szName);
    static_assert(sizeof function == sizeof found);
    std::memcpy(&function, &found, sizeof found);
    return function != nullptr;
}

std::optional<TapiService> Bound() {
    const HMODULE library = LoadLibraryA("tapi32.dll");
    if (!library)
        return std::nullopt;
    TapiService service;
    bool complete = true;
#define TARN_TAPI_BIND(name) complete = Bind(library, #name, service.name.function) && complete;
    TARN_TAPI_FUNCTIONS(TARN_TAPI_BIND)
#undef TARN_TAPI_BIND
    if (!complete) {
        FreeLibrary(library);
        return std::nullopt;
    }
    return service;
}

} // namespace

const TapiService* BindTapiService() {
    static const std::optional<TapiService> service = Bound();
    return service ? &*service : nullptr;
}
