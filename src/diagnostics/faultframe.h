// One frame of the system's exception handling. What differs between the architectures is in here alone:
// faultframe32.cpp (a registration on the thread's chain) and faultframe64.cpp (unwind tables).
#pragma once

#include "SEHException.h"

enum class RunEnd : int { Returned = 0, Faulted = 1 };

// Runs work(argument). A fault of a translated code is copied to *fault, the frames up to here are unwound,
// and the call ends as Faulted.
extern "C" RunEnd RunUnderFaultHandler(void (*work)(void*), void* argument, FaultState* fault);

// The two passes of the system's exception handling: the search for a handler comes first, and only then is
// anything unwound.
inline bool IsSearch(const EXCEPTION_RECORD& record) {
    constexpr DWORD unwinding = 0x02;  // EXCEPTION_UNWINDING
    constexpr DWORD exitUnwind = 0x04; // EXCEPTION_EXIT_UNWIND
    return !(record.ExceptionFlags & (unwinding | exitUnwind));
}
