// Runs a step under the guard against faults. What escapes from it ends here under its label, and the step
// gives its failure value; only a worker that leaves its thread goes on leaving.
#pragma once

#include "transfer.h"

#include "diagnostics/faultguard.h"
#include "diagnostics/swallow.h"

#include <utility>

template <class Result, class Step>
Result Guarded(const char* szLabel, Result failure, Step&& step) {
    try {
        return CallTranslated(step);
    } catch (const WorkerLeaves&) {
        throw;
    } catch (...) {
        SwallowException(szLabel);
        return failure;
    }
}

template <class Step>
void Guarded(const char* szLabel, Step&& step) {
    Guarded(szLabel, false, [&] {
        step();
        return true;
    });
}
