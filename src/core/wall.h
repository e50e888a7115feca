// The wall at the flat functions: what goes wrong behind them (memory is out) ends here, and the caller gets
// the function's own failure, 0 or nothing.
#pragma once

#include "diagnostics/swallow.h"

#include <type_traits>

template <class Work>
auto BehindWall(const char* szPlace, Work&& work) noexcept -> std::invoke_result_t<Work> {
    try {
        return work();
    } catch (...) {
        SwallowException(szPlace);
    }
    return std::invoke_result_t<Work>();
}
