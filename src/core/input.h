// Reading the line. Window's thread only.
#pragma once

#include "comctl.h"

// Reads what is there now, at most cbBuffer bytes; the buffer is zeroed first if anything is there. Returns
// the count. Device errors reach the host as events in here, so the object may be gone afterwards.
int ReadInput(COMCTL& record, void* lpBuffer, int cbBuffer);

// Shows bytes that were read (bInputEcho) and sends them back (bCommEcho).
void EchoInput(COMCTL& record, const void* lpBytes, int cbBytes);
