// The direct write beside the ring, for callers who want the old road: one overlapped write at a time.
#pragma once

#include "comctl.h"

// Waits for the write before to end, then starts this one. Returns the bytes that the call itself reported, 0
// for a write that is still under way. Raises RuntimeError when there is no event to be had or the device
// refuses. The object may be gone afterwards.
DWORD DirectWrite(COMCTL& record, const void* lpBytes, DWORD cbBytes);

// Ends a write that is still under way and closes its event. A device that doesn't let go of it keeps both.
void FinishDirectWrite(COMCTL& record);

// Whether the device still holds the record's memory for a write.
bool DirectWriteIsStuck(const COMCTL& record);
