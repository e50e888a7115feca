// The wall at the interfaces' methods: what goes wrong behind them ends here and becomes a result code.
#pragma once

#include <windows.h>

// The code of the exception that is being handled: E_OUTOFMEMORY, the code that a failed call of the system
// carries, or E_UNEXPECTED.
HRESULT ResultOfException() noexcept;

template <class Work>
HRESULT AsResult(Work&& work) noexcept {
    try {
        return work();
    } catch (...) {
        return ResultOfException();
    }
}
