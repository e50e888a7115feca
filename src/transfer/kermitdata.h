// The data of a file in Kermit's packets: control characters are quoted, all others go as they are.
#pragma once

#include "kermitstate.h"

namespace kermit {

inline constexpr int endOfFile = -1;
inline constexpr int fillFailed = -2;

} // namespace kermit

// Fills packet from the file: the length, endOfFile, or fillFailed.
int FillBuffer(KermitState& kermit);

// Decodes the data of packet to the file. False: that failed.
bool EmptyBuffer(KermitState& kermit, int length);

// Shows that so many coded bytes have come.
void CountReceived(KermitState& kermit, int length);
