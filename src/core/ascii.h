// Control characters by their ASCII names.
#pragma once

namespace ascii {

inline constexpr char NUL = 0x00;
inline constexpr char SOH = 0x01;
inline constexpr char STX = 0x02;
inline constexpr char EOT = 0x04;
inline constexpr char ACK = 0x06;
inline constexpr char BEL = 0x07;
inline constexpr char BS = 0x08;
inline constexpr char HT = 0x09;
inline constexpr char LF = 0x0A;
inline constexpr char FF = 0x0C;
inline constexpr char CR = 0x0D;
inline constexpr char SO = 0x0E;
inline constexpr char SI = 0x0F;
inline constexpr char DC1 = 0x11; // XOn
inline constexpr char DC3 = 0x13; // XOff
inline constexpr char NAK = 0x15;
inline constexpr char CAN = 0x18;
inline constexpr char SUB = 0x1A;
inline constexpr char ESC = 0x1B;
inline constexpr char SP = 0x20;

} // namespace ascii
