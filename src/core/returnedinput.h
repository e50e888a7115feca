// Input that a transfer read and did not use. The worker gives it back when it gives up the line; for the
// object it comes before what the driver holds. Any thread, under the record's ReturnedLock.
#pragma once

#include "comctl.h"

void GiveBackInput(COMCTL& record, const void* lpBytes, size_t cbBytes);
int TakeReturnedInput(COMCTL& record, void* lpBuffer, int cbWanted);
void DropReturnedInput(COMCTL& record);
