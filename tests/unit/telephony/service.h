// The functions of the service that the exchange offers, as a program that binds them by name gets them.
#pragma once

#include "modem/tapiservice.h"
#include "telephony/exchange.h"

#include <cstring>
#include <string>

namespace telephony {

inline const TapiService& Service() {
    static const TapiService service = [] {
        TapiService bound;
        const HMODULE module = LoadLibraryA("tapi32.dll");
        const auto bind = [module](const char* name, auto& function) {
            const FARPROC address = GetProcAddress(module, name);
            std::memcpy(&function, &address, sizeof function);
        };
#define TARN_BIND(name) bind(#name, bound.name.function);
        TARN_TAPI_FUNCTIONS(TARN_BIND)
#undef TARN_BIND
        return bound;
    }();
    return service;
}

constexpr LONG Error(DWORD error) {
    return static_cast<LONG>(error);
}

inline std::string RecordText() {
    std::string text(ExchangeRecord(nullptr, 0) + 1, '\0');
    text.resize(ExchangeRecord(text.data(), static_cast<DWORD>(text.size())));
    return text;
}

inline ExchangeHoldings Holdings() {
    ExchangeHoldings holdings = {};
    ExchangeGetHoldings(&holdings);
    return holdings;
}

} // namespace telephony
