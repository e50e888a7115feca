// The screen of a comm object: its planes, cursor, scroll region and dirty rows, and the steps that
// emulations are made of. Rows count from 0; negative rows are the scrollback, -1 its newest. Window's thread
// only.
#pragma once

#include "core/comctl.h"

// Rows times columns must stay below this: the texts of a screen are measured in 16 bits.
inline constexpr int MaxScreenCells = 65535;

enum class ResizeResult : int { OutOfMemory = -1, Refused = 0, Done = 1 };

// The cells of a row of the screen or of the scrollback.
const char* TextRow(const COMCTL& record, int row);
const BYTE* ColorRow(const COMCTL& record, int row);

// The length of a row without its trailing spaces.
int RowLength(const COMCTL& record, int row);

// Adds the cursor's row to what is to be painted.
void MarkDirtyRow(COMCTL& record);

// Every cell may have changed.
void RepaintScreen(COMCTL& record);

// Blanks cells of the screen, from one position up to but not including another, both counted row by row.
void BlankCells(COMCTL& record, int first, int end);
int CursorCell(const COMCTL& record);

// Moves rows from the top of the screen into the scrollback; the screen stays as it is.
void PushHistory(COMCTL& record, int count);

// Moves the screen, or the scroll region if one is set, up by a row.
void ScrollScreen(COMCTL& record);

// The whole screen goes into the scrollback; what is left is blank, with the cursor in the corner.
void ClearScreen(COMCTL& record);

// The rows of the region move up by one and its last one is blank; the region need not be set.
void ScrollRegion(COMCTL& record);

inline bool HasRegion(const COMCTL& record) {
    return record.nScrollTop || record.nScrollBottom;
}

inline bool CursorIsOnScreen(const COMCTL& record) {
    return record.nCursorRow >= 0 && record.nCursorRow < record.nRows && record.nCursorColumn >= 0 &&
           record.nCursorColumn < record.nColumns;
}

// Save and restore of the cursor's place; one that a smaller screen has lost becomes the nearest that there
// is.
void KeepCursor(COMCTL& record);
void RestoreSavedCursor(COMCTL& record);

// New dimensions. What fits of screen and scrollback is kept, from the top left.
ResizeResult ResizeTerminal(COMCTL& record, int columns, int rows);

// A new scrollback; what the old one held is lost. 0, or -1 when memory is out.
int RebuildScrollback(COMCTL& record, int rows);
