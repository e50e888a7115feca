// Sending through the writer. Window's thread only; never waits for the line.
#pragma once

#include "comctl.h"

// For the keyboard and the modem: a full ring drops the block and is no failure; the echo comes after the
// write. False on a closed port. The object may be gone afterwards.
bool SendBytes(COMCTL& record, const void* lpBytes, int cbBytes);

// Hands a block to the writer, whole or not at all, and logs it when the switch says so.
bool WriteToRing(COMCTL& record, const void* lpBytes, int cbBytes);
