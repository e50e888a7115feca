#include "screen.h"

#include "capture.h"
#include "picture.h"
#include "selection.h"
#include "view.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char resizedSeparator = '|'; // of the look-up strings, from the first new planes on

size_t Bytes(int cells) {
    return static_cast<size_t>(cells);
}

void BlankRow(COMCTL& record, int row) {
    std::memset(record.lpText.Row(row), ' ', Bytes(record.nColumns));
    std::memset(record.lpColor.Row(row), record.nColor, Bytes(record.nColumns));
}

void MarkDirtyRows(COMCTL& record, int first, int last) {
    if (record.nDirtyFirst == record.nDirtyLast) {
        record.nDirtyFirst = first;
        record.nDirtyLast = last + 1;
    } else {
        record.nDirtyFirst = std::min(record.nDirtyFirst, first);
        record.nDirtyLast = std::max(record.nDirtyLast, last + 1);
    }
    PostRepaint(record);
}

// The first rows of the screen become the last ones of the scrollback.
void AppendToScrollback(COMCTL& record, int rows) {
    record.lpScrollText.Slide(rows);
    record.lpScrollColor.Slide(rows);
    const size_t size = Bytes(rows) * Bytes(record.nColumns);
    std::memcpy(record.lpScrollText.Row(record.nScrollRows - rows), record.lpText.Data(), size);
    std::memcpy(record.lpScrollColor.Row(record.nScrollRows - rows), record.lpColor.Data(), size);
}

void MoveSelectionUp(COMCTL& record, int rows) {
    for (int* row : {&record.nSelStartRow, &record.nSelEndRow, &record.nSelAnchorRow})
        *row = std::max(*row - rows, -record.nScrollRows);
}

struct Planes {
    SlidingPlane<char> text;
    SlidingPlane<BYTE> color;
    SlidingPlane<char> scrollText;
    SlidingPlane<BYTE> scrollColor;
};

template <class Cell>
void CopyCommonPart(const SlidingPlane<Cell>& from, int fromColumns, SlidingPlane<Cell>& to, int toColumns,
                    int rows) {
    const size_t size = sizeof(Cell) * Bytes(std::min(fromColumns, toColumns));
    for (int row = 0; row < rows; ++row)
        std::memcpy(to.Row(row), from.Row(row), size);
}

ResizeResult MakePlanes(COMCTL& record, int columns, int rows) {
    Planes planes;
    if (!planes.text.Make(columns, rows, ' '))
        return ResizeResult::OutOfMemory;
    if (!planes.color.Make(columns, rows, static_cast<BYTE>(record.nColor)) ||
        !planes.scrollText.Make(columns, record.nScrollRows, ' ') ||
        !planes.scrollColor.Make(columns, record.nScrollRows, 0))
        return ResizeResult::Refused;
    const int common = std::min(rows, record.nRows);
    if (record.lpText) {
        CopyCommonPart(record.lpText, record.nColumns, planes.text, columns, common);
        CopyCommonPart(record.lpColor, record.nColumns, planes.color, columns, common);
        if (record.lpScrollText) {
            CopyCommonPart(record.lpScrollText, record.nColumns, planes.scrollText, columns,
                           record.nScrollRows);
            CopyCommonPart(record.lpScrollColor, record.nColumns, planes.scrollColor, columns,
                           record.nScrollRows);
        }
    }
    record.lpText = std::move(planes.text);
    record.lpColor = std::move(planes.color);
    record.lpScrollText = std::move(planes.scrollText);
    record.lpScrollColor = std::move(planes.scrollColor);
    record.chLookUpSeparator = resizedSeparator;
    return ResizeResult::Done;
}

void FreePlanes(COMCTL& record) {
    record.lpText.Free();
    record.lpColor.Free();
    record.lpScrollText.Free();
    record.lpScrollColor.Free();
}

bool NeedsPlanes(const COMCTL& record, int columns, int rows) {
    return !record.lpText || columns != record.nColumns || rows != record.nRows;
}

} // namespace

const char* TextRow(const COMCTL& record, int row) {
    return row < 0 ? record.lpScrollText.Row(record.nScrollRows + row) : record.lpText.Row(row);
}

const BYTE* ColorRow(const COMCTL& record, int row) {
    return row < 0 ? record.lpScrollColor.Row(record.nScrollRows + row) : record.lpColor.Row(row);
}

int RowLength(const COMCTL& record, int row) {
    const char* text = TextRow(record, row);
    int length = record.nColumns;
    while (length && text[length - 1] == ' ')
        --length;
    return length;
}

void MarkDirtyRow(COMCTL& record) {
    const int row = record.nCursorRow;
    if (record.nDirtyFirst == record.nDirtyLast) {
        record.nDirtyFirst = row;
        record.nDirtyLast = row + 1;
    } else if (record.nDirtyFirst > row) {
        record.nDirtyFirst = row;
    } else if (record.nDirtyLast <= row) {
        record.nDirtyLast = row + 1;
    }
    if (!record.bRepaintPosted)
        PostRepaint(record);
}

int CursorCell(const COMCTL& record) {
    return record.nCursorRow * record.nColumns + record.nCursorColumn;
}

void BlankCells(COMCTL& record, int first, int end) {
    end = std::min(end, record.nRows * record.nColumns);
    if (first < 0 || first >= end)
        return;
    std::memset(record.lpText.Data() + first, ' ', Bytes(end - first));
    std::memset(record.lpColor.Data() + first, record.nColor, Bytes(end - first));
}

void PushHistory(COMCTL& record, int count) {
    FlushVisibleRows(record, count);
    const int rows = std::min({count, record.nScrollRows, record.nRows});
    if (!record.lpScrollText || rows <= 0)
        return;
    AppendToScrollback(record, rows);
    MoveSelectionUp(record, rows);
}

void ScrollRegion(COMCTL& record) {
    // The screen may have shrunk since the region was set, and a region may end before it begins.
    const int bottom = std::min(record.nScrollBottom, record.nRows - 1);
    const int top = std::min(record.nScrollTop, bottom);
    if (bottom > top) {
        const size_t size = Bytes(bottom - top) * Bytes(record.nColumns);
        std::memmove(record.lpText.Row(top), record.lpText.Row(top + 1), size);
        std::memmove(record.lpColor.Row(top), record.lpColor.Row(top + 1), size);
    }
    BlankRow(record, bottom);
    // What else is seen has moved too: the scrollback, or the selection with it.
    if (record.nTopRow < 0 || SelectionLength(record))
        RepaintScreen(record);
    else
        MarkDirtyRows(record, top, bottom);
}

// A screen of which nothing is seen but itself takes part in the frames; a shown scrollback may have moved.
void RepaintScreen(COMCTL& record) {
    if (record.nTopRow < 0)
        RepaintAll(record, Erase::No);
    else
        MarkDirtyRows(record, 0, record.nRows - 1);
}

void ScrollScreen(COMCTL& record) {
    PushHistory(record, 1);
    if (HasRegion(record)) {
        ScrollRegion(record);
        return;
    }
    record.lpText.Slide(1);
    record.lpColor.Slide(1);
    BlankRow(record, record.nRows - 1);
    ScrollPictureUp(record);
    // A selection that has not moved along, for want of scrollback, must not move in the picture.
    if (SelectionLength(record))
        MarkDirtyRows(record, std::min(record.nTopRow, 0), record.nRows - 1);
}

void ClearScreen(COMCTL& record) {
    PushHistory(record, record.nRows);
    BlankCells(record, 0, record.nRows * record.nColumns);
    record.nCursorRow = 0;
    record.nCursorColumn = 0;
    record.bWrapPending = 0;
    RepaintScreen(record);
}

void KeepCursor(COMCTL& record) {
    record.nSavedColumn = record.nCursorColumn;
    record.nSavedRow = record.nCursorRow;
}

void RestoreSavedCursor(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorColumn = std::min(record.nSavedColumn, record.nColumns - 1);
    record.nCursorRow = std::min(record.nSavedRow, record.nRows - 1);
}

ResizeResult ResizeTerminal(COMCTL& record, int columns, int rows) {
    ClearSelection(record);
    if (columns < 1 || rows < 1 || static_cast<long long>(columns) * rows >= MaxScreenCells)
        return ResizeResult::Refused;
    if (!record.nEmulation) {
        FreePlanes(record);
    } else if (NeedsPlanes(record, columns, rows)) {
        const ResizeResult result = MakePlanes(record, columns, rows);
        if (result != ResizeResult::Done)
            return result;
    }
    record.nRows = rows;
    record.nColumns = columns;
    record.nCursorRow = std::min(record.nCursorRow, rows - 1);
    record.nCursorColumn = std::min(record.nCursorColumn, columns - 1);
    record.bWrapPending = 0;
    record.nDirtyFirst = 0;
    record.nDirtyLast = rows;
    RepaintAll(record, Erase::Yes);
    UpdateScrollBars(record);
    // More rows may be visible now than were painted.
    if (record.nEmulation)
        PostRepaint(record);
    return ResizeResult::Done;
}

int RebuildScrollback(COMCTL& record, int rows) {
    constexpr int outOfMemory = -1;
    if (rows == record.nScrollRows)
        return 0;
    SlidingPlane<char> text;
    SlidingPlane<BYTE> color;
    if (!text.Make(record.nColumns, rows, ' ') || !color.Make(record.nColumns, rows, 0))
        return outOfMemory;
    record.lpScrollText = std::move(text);
    record.lpScrollColor = std::move(color);
    record.nScrollRows = rows;
    const bool isShown = record.nTopRow < 0;
    UpdateScrollBars(record);
    if (isShown)
        RepaintAll(record, Erase::No);
    return 0;
}
