// What makes an open object tick: a window timer, or a monitor thread that waits on the line.
#pragma once

#include "comctl.h"

// Starts the timer or the monitor of an open port. What already runs is never changed.
void SetUpTick(COMCTL& record);
