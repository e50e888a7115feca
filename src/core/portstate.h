// The device state block: what the line settings of the record mean to the driver.
#pragma once

#include "comctl.h"

enum class Speed { Apply, Leave };

// Rebuilds the block from the record and hands it to the device; logs it before and after. Nothing on a
// closed port. False: the port is closed or the device refused.
bool RebuildDeviceState(COMCTL& record, Speed speed);
