// The selected text: from one cell up to but not including another, in screen and scrollback.
#pragma once

#include "core/comctl.h"

#include <compare>

struct Cell {
    int row = 0;
    int column = 0;
    auto operator<=>(const Cell&) const = default;
};

// Columns of one row, from the first up to but not including the end; none if that isn't beyond the first.
struct ColumnRange {
    int first = 0;
    int end = 0;
    bool Holds(int column) const { return column >= first && column < end; }
};

ColumnRange SelectedColumns(const COMCTL& record, int row);
bool IsSelected(const COMCTL& record, const Cell& cell);

// Selects between two corners, the first of which stays the anchor, and paints what has changed.
void SetSelection(COMCTL& record, Cell anchor, Cell other);

// Extends the selection from its anchor.
void ExtendSelection(COMCTL& record, Cell other);

// Forgets the selection; whoever calls paints.
void ClearSelection(COMCTL& record);

// Cells of the selection, counted as hosts are used to: over several rows, a row too many.
int SelectionLength(const COMCTL& record);

// Writes the selected text and a NUL, at most so many bytes in all; returns the length without the NUL.
int SelectionText(const COMCTL& record, char* buffer, size_t size);

// Enough for the selected text and its NUL.
size_t SelectionTextRoom(const COMCTL& record);
