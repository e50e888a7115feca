// The walk over the stored properties, by the control's own IDispatch: the same bodies run as for any other
// caller. The first failure ends it; what was read before stays in force.
#pragma once

#include "stateform.h"

#include <windows.h>

class OleControl;

HRESULT LoadState(IDispatch& values, OleControl& control, RowReader& reader);
HRESULT SaveState(IDispatch& values, const OleControl& control, RowWriter& writer);
