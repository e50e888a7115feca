// The program's one clock: steady, in nanoseconds.
#pragma once

#include <cstdint>
#include <ctime>
#include <limits>

using Nanoseconds = std::int64_t;

inline constexpr Nanoseconds kMicrosecond = 1'000;
inline constexpr Nanoseconds kMillisecond = 1'000'000;
inline constexpr Nanoseconds kSecond = 1'000'000'000;
inline constexpr Nanoseconds kNever = std::numeric_limits<Nanoseconds>::max();

inline Nanoseconds Now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * kSecond + time.tv_nsec;
}
