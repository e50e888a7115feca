// The terminal's flat functions. A bad handle gives 0, nothing, or empty text.
#include "capture.h"
#include "caret.h"
#include "clipboard.h"
#include "core/live.h"
#include "core/wall.h"
#include "emulations.h"
#include "paint.h"
#include "picture.h"
#include "screen.h"
#include "screentext.h"
#include "selection.h"
#include "sizing.h"
#include "TarnComm.h"
#include "terminal.h"
#include "view.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace {

constexpr int refusedOffset = -1;
constexpr char formFeed[] = "\f";

template <class Work>
auto WithRecord(const char* szPlace, HWND hWnd, Work&& work) noexcept {
    return BehindWall(szPlace, [&] {
        COMCTL* record = RecordOf(hWnd);
        using Result = decltype(work(*record));
        if constexpr (std::is_void_v<Result>) {
            if (record)
                work(*record);
        } else {
            return record ? work(*record) : Result();
        }
    });
}

// A value out of range is dropped, the caret finds its place again in either case.
template <int COMCTL::*Position, int COMCTL::*Count>
void SetCursor(COMCTL& record, int value) {
    if (value >= 0 && value < record.*Count)
        record.*Position = value;
    PositionCaret(record);
}

// Offsets of the scrollback are negative.
Cell CellAtOffset(const COMCTL& record, int offset) {
    const int row = (offset >= 0 ? offset : offset - (record.nColumns - 1)) / record.nColumns;
    return {row, offset - row * record.nColumns};
}

int SelectionStart(const COMCTL& record) {
    return record.nSelStartRow * record.nColumns + record.nSelStartColumn;
}

int MoveSelection(COMCTL& record, int offset) {
    if (offset < 0 || offset > record.nColumns * record.nRows)
        return refusedOffset;
    const Cell cell = CellAtOffset(record, offset);
    record.nSelStartRow = record.nSelEndRow = record.nSelAnchorRow = cell.row;
    record.nSelStartColumn = record.nSelEndColumn = record.nSelAnchorColumn = cell.column;
    RepaintScreen(record);
    return 0;
}

int StretchSelection(COMCTL& record, int length) {
    if (length < 0)
        return 0;
    const long long end = static_cast<long long>(SelectionStart(record)) + length;
    if (end >= static_cast<long long>(record.nRows) * record.nColumns)
        return refusedOffset;
    const Cell cell = CellAtOffset(record, static_cast<int>(end));
    record.nSelEndRow = cell.row;
    record.nSelEndColumn = cell.column;
    RepaintScreen(record);
    return 0;
}

void UseScrollBar(COMCTL& record, HWND hBar, HWND COMCTL::*bar, int COMCTL::*kind, int own) {
    record.*bar = hBar ? hBar : record.hWnd;
    record.*kind = hBar ? SB_CTL : own;
}

void WriteText(HWND hWnd, const char* szText) {
    const size_t length = std::strlen(szText);
    WithRecord("TerminalPrintString", hWnd,
               [&](COMCTL& record) { WriteTerminal(record, szText, static_cast<int>(length)); });
}

} // namespace

// Numbers of the record that are read, and stored without a test
#define GETTER(Name, Field)                                                                                  \
    int TARNAPI Get##Name(HWND hWnd) {                                                                       \
        const COMCTL* record = RecordOf(hWnd);                                                               \
        return record ? record->Field : 0;                                                                   \
    }

GETTER(Rows, nRows)
GETTER(Columns, nColumns)
GETTER(ScrollRows, nScrollRows)
GETTER(CursorRow, nCursorRow)
GETTER(CursorColumn, nCursorColumn)
GETTER(Color, nColor)
GETTER(ColorFilter, nColorFilter)
GETTER(Emulation, nEmulation)
GETTER(AutoScroll, nAutoScroll)
GETTER(AutoSize, nAutoSize)

#undef GETTER

void TARNAPI SetRows(HWND hWnd, int nRows) {
    WithRecord("SetRows", hWnd, [&](COMCTL& record) { ResizeTerminal(record, record.nColumns, nRows); });
}

void TARNAPI SetColumns(HWND hWnd, int nColumns) {
    WithRecord("SetColumns", hWnd, [&](COMCTL& record) { ResizeTerminal(record, nColumns, record.nRows); });
}

int TARNAPI SetScrollRows(HWND hWnd, int nRows) {
    return WithRecord("SetScrollRows", hWnd,
                      [&](COMCTL& record) { return RebuildScrollback(record, nRows); });
}

void TARNAPI SetCursorRow(HWND hWnd, int nRow) {
    WithRecord("SetCursorRow", hWnd,
               [&](COMCTL& record) { SetCursor<&COMCTL::nCursorRow, &COMCTL::nRows>(record, nRow); });
}

void TARNAPI SetCursorColumn(HWND hWnd, int nColumn) {
    WithRecord("SetCursorColumn", hWnd, [&](COMCTL& record) {
        SetCursor<&COMCTL::nCursorColumn, &COMCTL::nColumns>(record, nColumn);
    });
}

void TARNAPI SetColor(HWND hWnd, int nColor) {
    if (COMCTL* record = RecordOf(hWnd))
        record->nColor = nColor;
}

void TARNAPI SetColorFilter(HWND hWnd, int nColorFilter) {
    WithRecord("SetColorFilter", hWnd, [&](COMCTL& record) {
        if (record.nColorFilter == nColorFilter)
            return;
        record.nColorFilter = nColorFilter;
        RepaintAll(record, Erase::No);
    });
}

void TARNAPI SetEmulation(HWND hWnd, int nEmulation) {
    WithRecord("SetEmulation", hWnd, [&](COMCTL& record) { SwitchEmulation(record, nEmulation); });
}

void TARNAPI SetAutoScroll(HWND hWnd, int nAutoScroll) {
    WithRecord("SetAutoScroll", hWnd, [&](COMCTL& record) {
        record.nAutoScroll = nAutoScroll;
        AutoScrollTerminal(record, ViewTrigger::Printing);
    });
}

void TARNAPI SetAutoSize(HWND hWnd, int nAutoSize, HWND hMeasured) {
    WithRecord("SetAutoSize", hWnd, [&](COMCTL& record) {
        record.nAutoSize = nAutoSize;
        SizeToTerminal(record, hMeasured);
    });
}

void TARNAPI SetHScrollBar(HWND hWnd, HWND hScrollBar) {
    if (COMCTL* record = RecordOf(hWnd))
        UseScrollBar(*record, hScrollBar, &COMCTL::hHScrollBar, &COMCTL::nHScrollBarKind, SB_HORZ);
}

void TARNAPI SetVScrollBar(HWND hWnd, HWND hScrollBar) {
    if (COMCTL* record = RecordOf(hWnd))
        UseScrollBar(*record, hScrollBar, &COMCTL::hVScrollBar, &COMCTL::nVScrollBarKind, SB_VERT);
}

int TARNAPI GetContents(HWND hWnd, char* lpBuffer, int cbBuffer) {
    return WithRecord("GetContents", hWnd,
                      [&](const COMCTL& record) { return ScreenText(record, lpBuffer, cbBuffer); });
}

int TARNAPI GetContentsLength(HWND hWnd) {
    return GetContents(hWnd, nullptr, MaxScreenCells);
}

int TARNAPI GetScrollContents(HWND hWnd, char* lpBuffer, int cbBuffer) {
    return WithRecord("GetScrollContents", hWnd,
                      [&](const COMCTL& record) { return ScrollText(record, lpBuffer, cbBuffer); });
}

int TARNAPI GetScrollContentsLength(HWND hWnd) {
    return GetScrollContents(hWnd, nullptr, MaxScreenCells);
}

const char* TARNAPI GetTextAt(HWND hWnd, int nColumn, int nRow) {
    const COMCTL* record = RecordOf(hWnd);
    if (!record || !record->lpText)
        return "";
    return record->lpText.Data() + (static_cast<ptrdiff_t>(nRow) * record->nColumns + nColumn);
}

void TARNAPI SetContents(HWND hWnd, const char* lpText, int cbText) {
    WithRecord("SetContents", hWnd, [&](COMCTL& record) {
        TerminalPrint(record, formFeed, 1);
        if (lpText)
            WriteTerminal(record, lpText, cbText);
    });
}

void TARNAPI TerminalPrintString(HWND hWnd, const char* szText) {
    if (szText)
        WriteText(hWnd, szText);
}

int TARNAPI GetSelectionStart(HWND hWnd) {
    return WithRecord("GetSelectionStart", hWnd,
                      [&](const COMCTL& record) { return SelectionStart(record); });
}

int TARNAPI SetSelectionStart(HWND hWnd, int nStart) {
    return WithRecord("SetSelectionStart", hWnd,
                      [&](COMCTL& record) { return MoveSelection(record, nStart); });
}

int TARNAPI GetSelectionLength(HWND hWnd) {
    return WithRecord("GetSelectionLength", hWnd,
                      [&](const COMCTL& record) { return SelectionLength(record); });
}

int TARNAPI SetSelectionLength(HWND hWnd, int nLength) {
    return WithRecord("SetSelectionLength", hWnd,
                      [&](COMCTL& record) { return StretchSelection(record, nLength); });
}

int TARNAPI GetSelectionText(HWND hWnd, char* lpBuffer, int cbBuffer) {
    return WithRecord("GetSelectionText", hWnd, [&](const COMCTL& record) {
        return lpBuffer && cbBuffer > 0
                   ? SelectionText(record, lpBuffer, static_cast<size_t>(std::min(cbBuffer, MaxScreenCells)))
                   : 0;
    });
}

int TARNAPI CopySelectionToClipboard(HWND hWnd) {
    return WithRecord("CopySelectionToClipboard", hWnd,
                      [&](COMCTL& record) { return static_cast<int>(CopySelection(record)); });
}

void TARNAPI PaintCommWindow(HWND hWnd, HDC dc, int nColumn, int nFirst, int nColumns, int nCount) {
    static_cast<void>(nColumn); // whole rows are painted
    static_cast<void>(nColumns);
    WithRecord("PaintCommWindow", hWnd, [&](COMCTL& record) {
        if (record.nPictureScroll) // it would move what is painted now
            ServeRepaint(record);
        PaintTerminal(record, dc, nFirst, nCount);
    });
}

int TARNAPI SetCaptureFilename(HWND hWnd, const char* szPath) {
    return WithRecord("SetCaptureFilename", hWnd,
                      [&](COMCTL& record) { return static_cast<int>(StartCapture(record, szPath)); });
}
