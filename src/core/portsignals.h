// Signals beside the fields of the object. Window's thread only.
#pragma once

#include "comctl.h"

// Tells the device alone; the object's own bDTR stays.
void DriveDTR(const COMCTL& record, bool on);
