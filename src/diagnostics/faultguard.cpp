#include "faultguard.h"

#include "faultframe.h"

#include <malloc.h>

namespace {

constexpr unsigned warningOrError = 0x80000000; // upper bit of the severity
constexpr unsigned customerBit = 0x20000000;    // codes that are not the system's own

} // namespace

bool IsTranslatedCode(unsigned nCode) {
    return (nCode & warningOrError) && !(nCode & customerBit);
}

void RunTranslated(void (*work)(void*), void* argument) {
    FaultState fault;
    if (RunUnderFaultHandler(work, argument, &fault) == RunEnd::Returned)
        return;
    if (fault.record.ExceptionCode == EXCEPTION_STACK_OVERFLOW)
        _resetstkoflw(); // the guard page under the stack was used up
    SeTranslator(fault.record.ExceptionCode, &fault.pointers);
}
