// The functions of the platform's telephony service, bound when they are first wanted: a machine without the
// service must still load this module.
#pragma once

// The structures of version 2.0 are what the service fills.
#define TAPI_CURRENT_VERSION 0x00020000
#include <windows.h>

#include <tapi.h>

#include "diagnostics/faultguard.h"

#define TARN_TAPI_FUNCTIONS(ROW)                                                                             \
    ROW(lineAnswer)                                                                                          \
    ROW(lineClose)                                                                                           \
    ROW(lineConfigDialogA)                                                                                   \
    ROW(lineDeallocateCall)                                                                                  \
    ROW(lineDrop)                                                                                            \
    ROW(lineGetCountryA)                                                                                     \
    ROW(lineGetDevCapsA)                                                                                     \
    ROW(lineGetDevConfigA)                                                                                   \
    ROW(lineGetIDA)                                                                                          \
    ROW(lineGetMessage)                                                                                      \
    ROW(lineGetTranslateCapsA)                                                                               \
    ROW(lineInitializeExA)                                                                                   \
    ROW(lineMakeCallA)                                                                                       \
    ROW(lineNegotiateAPIVersion)                                                                             \
    ROW(lineOpenA)                                                                                           \
    ROW(lineSetCurrentLocation)                                                                              \
    ROW(lineSetDevConfigA)                                                                                   \
    ROW(lineSetNumRings)                                                                                     \
    ROW(lineShutdown)                                                                                        \
    ROW(lineTranslateAddressA)

// A fault in the service arrives as an exception.
template <class Function>
struct ServiceCall;

template <class Result, class... Arguments>
struct ServiceCall<Result(WINAPI*)(Arguments...)> {
    Result(WINAPI* function)(Arguments...) = nullptr; // by itself where it calls windows back

    Result operator()(Arguments... arguments) const {
        return CallTranslated([&] { return function(arguments...); });
    }
};

struct TapiService {
#define TARN_TAPI_MEMBER(name) ServiceCall<decltype(&::name)> name;
    TARN_TAPI_FUNCTIONS(TARN_TAPI_MEMBER)
#undef TARN_TAPI_MEMBER
};

// Null where the library or one of its functions is missing. Once loaded it stays for the life of the
// process.
const TapiService* BindTapiService();
