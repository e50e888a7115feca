#include "mouse.h"

#include "core/live.h"
#include "gdi.h"
#include "measure.h"
#include "view.h"

#include <algorithm>

namespace {

// False: the object is gone.
bool TakeFocus(const COMCTL& record) {
    const ObjectWatch watch(record);
    if (GetFocus() != record.hWnd)
        SetFocus(record.hWnd);
    return watch.Alive();
}

bool HasCapture(const COMCTL& record) {
    return GetCapture() == record.hWnd;
}

void GiveUpCapture(const COMCTL& record) {
    if (HasCapture(record))
        ReleaseCapture();
}

int RowAt(const COMCTL& record, LONG y) {
    const int row = static_cast<int>(std::max<LONG>(y, 0)) / std::max(record.cyChar, 1) + record.nTopRow;
    return std::max(std::min(row, record.nRows - 1), record.nTopRow);
}

// From a guess by the width of an average character to the cell that real widths give.
int ColumnAt(const COMCTL& record, int row, LONG x) {
    const WindowContext dc(record.hWnd);
    const SelectedObject font(dc, record.hFont);
    const int wanted = static_cast<int>(std::max<LONG>(x, 0)) + Pixels(record.nLeftColumn, record.cxChar);
    const auto width = [&](int columns) { return RowWidth(record, dc, row, columns); };
    int column = std::max(std::min(wanted / std::max(record.cxChar, 1), record.nColumns - 1), 0);
    while (column < record.nColumns && width(column) < wanted)
        ++column;
    while (column > 0 && width(column) > wanted)
        --column;
    return column;
}

void ScrollTowards(COMCTL& record, POINT point) {
    const SIZE client = ClientSize(record.hWnd);
    if (point.y < 0)
        ScrollVertically(record, SB_LINEUP, 0);
    if (point.y >= client.cy)
        ScrollVertically(record, SB_LINEDOWN, 0);
    if (point.x < 0)
        ScrollHorizontally(record, SB_LINELEFT, 0);
    if (point.x >= client.cx)
        ScrollHorizontally(record, SB_LINERIGHT, 0);
}

} // namespace

Cell CellAt(const COMCTL& record, POINT point) {
    const int row = RowAt(record, point.y);
    return {row, ColumnAt(record, row, point.x)};
}

void OnLeftButtonDown(COMCTL& record, POINT point, Extend extend) {
    if (!TakeFocus(record))
        return;
    SetCapture(record.hWnd);
    Cell cell = CellAt(record, point);
    if (extend == Extend::Yes) {
        ExtendSelection(record, cell);
        return;
    }
    // Behind the row's end there is a place to drag to, but none to begin at.
    cell.column = std::min(cell.column, record.nColumns - 1);
    SetSelection(record, cell, cell);
}

void OnLeftButtonUp(COMCTL& record) {
    GiveUpCapture(record);
}

void OnLeftDoubleClick(COMCTL& record) {
    if (TakeFocus(record))
        GiveUpCapture(record);
}

void OnMouseMove(COMCTL& record, POINT point) {
    if (!HasCapture(record))
        return;
    ScrollTowards(record, point);
    ExtendSelection(record, CellAt(record, point));
}
