// A modem's settings as the AT commands change them, with the factory's values.
#pragma once

#include "clock.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace sregister {

inline constexpr std::size_t kAnswerAfter = 0;  // rings, 0 for never
inline constexpr std::size_t kRings = 1;        // counted by the modem
inline constexpr std::size_t kEscape = 2;       // above 127: there is no escape
inline constexpr std::size_t kLineEnd = 3;      // CR
inline constexpr std::size_t kLineFeed = 4;     // LF
inline constexpr std::size_t kBackspace = 5;    // BS
inline constexpr std::size_t kDialToneWait = 6; // s
inline constexpr std::size_t kCarrierWait = 7;  // s
inline constexpr std::size_t kCommaPause = 8;   // s
inline constexpr std::size_t kCarrierLoss = 10; // 1/10 s, 255 for no hanging up
inline constexpr std::size_t kGuardTime = 12;   // 1/50 s
inline constexpr std::size_t kDtrLoss = 25;     // 1/100 s

struct Row {
    std::size_t number;
    std::uint8_t factory;
};
inline constexpr Row kRows[] = {
    {kAnswerAfter, 0}, {kRings, 0},        {kEscape, '+'},     {kLineEnd, 13},
    {kLineFeed, 10},   {kBackspace, 8},    {kDialToneWait, 2}, {kCarrierWait, 50},
    {kCommaPause, 2},  {kCarrierLoss, 14}, {kGuardTime, 50},   {kDtrLoss, 5},
};

} // namespace sregister

using Registers = std::array<std::uint8_t, 256>;

constexpr Registers FactoryRegisters() {
    Registers registers{};
    for (const sregister::Row& row : sregister::kRows)
        registers[row.number] = row.factory;
    return registers;
}

struct Profile {
    unsigned echo = 1;        // E
    unsigned words = 1;       // V
    unsigned quiet = 0;       // Q
    unsigned extended = 4;    // X
    unsigned carrierMode = 1; // &C
    unsigned dtrMode = 2;     // &D
    bool pulse = false;       // P and T
    Registers s = FactoryRegisters();

    Nanoseconds Time(std::size_t number, Nanoseconds unit) const { return s[number] * unit; }
    char Character(std::size_t number) const { return static_cast<char>(s[number]); }
};
