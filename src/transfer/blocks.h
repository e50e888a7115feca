// The blocks of XModem and YModem. Origin: Ward Christensen's MODEM protocol and Chuck Forsberg,
// "XMODEM/YMODEM Protocol Reference", 1985.
#pragma once

#include "core/ascii.h"

namespace block {

inline constexpr int SOH = ascii::SOH; // a block of 128 bytes
inline constexpr int STX = ascii::STX; // a block of 1024 bytes
inline constexpr int EOT = ascii::EOT;
inline constexpr int ACK = ascii::ACK;
inline constexpr int NAK = ascii::NAK;
inline constexpr int CAN = ascii::CAN;
inline constexpr int WantCrc = 'C';
inline constexpr int WantStream = 'G';
inline constexpr int Pad = ascii::SUB;

inline constexpr int ShortBlock = 128; // bytes
inline constexpr int LongBlock = 1024; // bytes

} // namespace block
