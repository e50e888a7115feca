// The guard against faults without the platform's fault handling: a fault ends the test, a C++ exception
// passes.
#include "diagnostics/faultguard.h"

void RunTranslated(void (*work)(void*), void* argument) {
    work(argument);
}
