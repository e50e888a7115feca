// What the terminal answers to enquiries. Two of the answers lack their last character, and the cursor's
// position counts from 0; hosts that know this terminal expect them so.
#pragma once

namespace replies {

inline constexpr char DeviceAttributes[] = "\x1B[?1;2c";
inline constexpr char CutAttributes[] = "\x1B[?1;2;";
inline constexpr char Ready[] = "\x1B[0n";
inline constexpr char CursorPosition[] = "\x1B[%d;%dR";

} // namespace replies
