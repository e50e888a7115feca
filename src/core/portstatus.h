// The state of the line: counts, device errors, modem signals. Window's thread only.
#pragma once

#include "comctl.h"

struct LineCounts {
    int input = 0;  // bytes in the driver's input queue
    int output = 0; // bytes in the driver's output queue and in the writer
};

// One status read: reports each device error as an event and returns the counts, 0 if the device gives none.
// The object may be gone afterwards.
LineCounts ReadLineStatus(COMCTL& record);

// The driver's output count and what the writer still has. Any thread.
int OutputCount(const COMCTL& record, DWORD queued);

// Clears bReceiveFlag and bSendFlag by fresh counts. The object may be gone afterwards.
void TakeFreshCount(COMCTL& record);
void UpdateFlags(COMCTL& record, const LineCounts& counts);

// The modem status bits (MS_CTS_ON ...), 0 if the device gives none.
DWORD ReadModemStatus(const COMCTL& record);
