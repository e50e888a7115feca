// The one read of the device. Window's thread only.
#pragma once

#include "comctl.h"
#include "overlapped.h"

// The device writes into memory of the call's own, so that neither a host that destroys the object nor a
// caller that leaves can pull the buffer away under a slow device.
struct ReadCall : OverlappedCall {
    std::vector<char> bytes;
};

// Reads cbWanted bytes, which the line status has counted. Returns how many came. The object may be gone
// afterwards.
int ReadDevice(COMCTL& record, void* lpBuffer, int cbWanted);
