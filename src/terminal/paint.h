// Paints the terminal: rows in runs of one colour.
#pragma once

#include "core/comctl.h"

// Paints rows of screen or scrollback on a context of the window.
void PaintTerminal(COMCTL& record, HDC dc, int first, int count);

// WM_PAINT; a context that comes with the message (a printing container's) is painted, too.
void OnPaint(COMCTL& record, HDC dc);

// The dirty rows, on a context of their own; they are clean then.
void PaintDirtyRows(COMCTL& record);

// Rows from one to another, that one too, on a context of their own.
void PaintRowsNow(COMCTL& record, int first, int last);
