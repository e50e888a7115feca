// Control characters by their ASCII names.
#pragma once

namespace ascii {

inline constexpr char NUL = 0x00;
inline constexpr char LF = 0x0A;
inline constexpr char CR = 0x0D;
inline constexpr char DC1 = 0x11; // XOn
inline constexpr char DC3 = 0x13; // XOff
inline constexpr char CAN = 0x18;

} // namespace ascii
