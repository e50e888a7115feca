// The mouse: selection by dragging, which scrolls at the window's edges. The object may be gone after a
// press, which takes the focus.
#pragma once

#include "core/comctl.h"
#include "selection.h"

// The cell at a point of the window; beyond a row's end it is the column behind the last.
Cell CellAt(const COMCTL& record, POINT point);

enum class Extend { No, Yes };

void OnLeftButtonDown(COMCTL& record, POINT point, Extend extend);
void OnLeftButtonUp(COMCTL& record);
void OnLeftDoubleClick(COMCTL& record);
void OnMouseMove(COMCTL& record, POINT point);
