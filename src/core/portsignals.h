// Signals beside the fields of the object. Window's thread only.
#pragma once

#include "comctl.h"

// Tells the device alone; the object's own bDTR stays.
void DriveDTR(const COMCTL& record, bool on);

// The device goes on as if the far end had sent XOn, or stops as if it had sent XOff.
void PretendXOn(const COMCTL& record, bool on);
