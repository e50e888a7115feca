// What every function of the service does before its own work.
#pragma once

#include <windows.h>

#include <tapi.h>

#include <mutex>
#include <string>
#include <utility>

inline LONG Failure(DWORD error) {
    return static_cast<LONG>(error);
}

// Of all that the exchange knows. Actions of its thread take it too.
std::mutex& ExchangeLock();

// How much more than they need structures ask for.
DWORD MoreDemanded();

void ClearFaults();

// Holds the function up for as long as a test wants. True: a fault has decided on its result.
bool MeetFault(const std::string& function, LONG& result);

// One line of the record: the function's name without its A, then what was asked.
void Record(const std::string& function, const std::string& arguments);

template <class Work>
LONG Serve(const char* function, const std::string& arguments, Work&& work) {
    Record(function, arguments);
    LONG result = 0;
    if (MeetFault(function, result))
        return result;
    const std::lock_guard guard(ExchangeLock());
    return std::forward<Work>(work)();
}
