// The input dispatcher: drains the line in the tick of an object that processes its serial input itself.
#pragma once

#include "comctl.h"

// Hands what has come to the screen, back to the line, to the look-up and to the ZModem start detection, byte
// by byte in this order. The object may be gone afterwards. False: nothing could be read.
bool DispatchInput(COMCTL& record);
