// Watches automatic input for the start of a ZModem transfer.
#pragma once

#include "comctl.h"

// Offers one byte. On the last byte of the sequence the transfer room is asked to receive. False: the object
// is gone.
bool CheckAutoZModem(COMCTL& record, char byte);
