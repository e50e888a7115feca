#include "paint.h"

#include "caret.h"
#include "colors.h"
#include "core/comobject.h"
#include "core/moduleicon.h"
#include "gdi.h"
#include "measure.h"
#include "picture.h"
#include "screen.h"
#include "selection.h"

#include <algorithm>

namespace {

struct RowRange {
    int first = 0;
    int end = 0;
};

struct Canvas {
    HDC dc;
    SIZE size;
};

COLORREF ColorOf(BYTE index) {
    return Palette[index].color;
}

void SetColors(const Canvas& canvas, BYTE attribute) {
    SetTextColor(canvas.dc, ColorOf(ForegroundOf(attribute)));
    SetBkColor(canvas.dc, ColorOf(BackgroundOf(attribute)));
}

// In the background color that was set last.
void Fill(const Canvas& canvas, const RECT& rectangle) {
    ExtTextOutA(canvas.dc, 0, 0, ETO_OPAQUE, &rectangle, nullptr, 0, nullptr);
}

struct Run {
    const char* text;
    int count;
    BYTE attribute;
};

// Returns the width.
int DrawRun(const COMCTL& record, const Canvas& canvas, POINT at, const Run& run) {
    const int width = TextWidth(canvas.dc, run.text, run.count);
    SetColors(canvas, ApplyColorFilter(run.attribute, record.nColorFilter));
    const RECT rectangle = {at.x, at.y, at.x + width, at.y + record.cyChar};
    ExtTextOutA(canvas.dc, at.x, at.y, ETO_OPAQUE, &rectangle, run.text, static_cast<UINT>(run.count),
                nullptr);
    return width;
}

// Returns where the row's last run ends. The last column takes the colors of its neighbour: kept so, see
// Painting.LastColumnTakesTheColorsOfItsNeighbour.
int DrawRuns(const COMCTL& record, const Canvas& canvas, int row, POINT at) {
    const char* text = TextRow(record, row);
    const BYTE* colors = ColorRow(record, row);
    const ColumnRange selected = SelectedColumns(record, row);
    const int last = record.nColumns - 1;
    BYTE current = colors[0];
    int start = 0;
    for (int column = 0; column <= last && at.x < canvas.size.cx; ++column) {
        const auto attribute = static_cast<BYTE>(selected.Holds(column) ? ~colors[column] : colors[column]);
        if (attribute == current && column != last)
            continue;
        const int end = column == last ? last + 1 : column;
        at.x += DrawRun(record, canvas, at, {text + start, end - start, current});
        start = column;
        current = attribute;
    }
    return at.x;
}

void PaintRow(const COMCTL& record, const Canvas& canvas, int row) {
    const int top = RowTop(record, row);
    int right = 0;
    if (RowExists(record, row))
        right = DrawRuns(record, canvas, row, {-Pixels(record.nLeftColumn, record.cxChar), top});
    else
        SetColors(canvas, 0);
    if (right < canvas.size.cx)
        Fill(canvas, {right, top, canvas.size.cx, top + record.cyChar});
}

void PaintBelow(const COMCTL& record, const Canvas& canvas) {
    const BYTE lastCell = ColorRow(record, record.nRows - 1)[record.nColumns - 1];
    SetColors(canvas, ApplyColorFilter(lastCell, record.nColorFilter));
    const LONG top = std::max(RowTop(record, record.nRows), 0);
    if (top < canvas.size.cy)
        Fill(canvas, {0, top, canvas.size.cx, canvas.size.cy});
}

// What of the request the window shows. A request that ends beyond the rows which remain from its beginning
// is widened to the end of the screen, which costs paint and nothing else.
RowRange RowsToPaint(const COMCTL& record, long long first, long long count) {
    const long long shown = static_cast<long long>(record.nTopRow) + record.nVisibleRows;
    const long long skipped = std::max(record.nTopRow - first, 0LL);
    first += skipped;
    count -= skipped;
    const long long remaining = record.nRows - first;
    if (first + count > shown || first + count > remaining)
        count = std::min(remaining, std::max(shown - first, 0LL));
    return {static_cast<int>(first), static_cast<int>(first + std::max(count, 0LL))};
}

bool CanPaintText(const COMCTL& record) {
    return record.lpText && record.cyChar > 0 && record.nColumns > 0 && record.nRows > 0;
}

void PaintTextOn(const COMCTL& record, const Canvas& canvas, int first, int count) {
    const RowRange rows = RowsToPaint(record, first, count);
    for (int row = rows.first; row < rows.end; ++row)
        PaintRow(record, canvas, row);
    if (rows.end >= record.nRows)
        PaintBelow(record, canvas);
}

void PaintWhite(const Canvas& canvas) {
    const RECT all = {0, 0, canvas.size.cx, canvas.size.cy};
    FillRect(canvas.dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
}

// The module's own, or the system's where this code stands in a program that has none.
HICON IconOfModule() {
    const HICON icon = LoadIconA(ThisModule(), MAKEINTRESOURCEA(ModuleIcon));
    return icon ? icon : LoadIconA(nullptr, reinterpret_cast<LPCSTR>(IDI_APPLICATION));
}

void PaintIcon(HDC dc) {
    DrawIcon(dc, 0, 0, IconOfModule());
}

// What lies in a rectangle of the window.
void PaintRectangle(COMCTL& record, HDC dc, const RECT& rectangle) {
    if (!record.nEmulation) {
        PaintIcon(dc);
        return;
    }
    const int height = std::max(record.cyChar, 1);
    const int first = std::max<int>(rectangle.top, 0) / height;
    const int end = (std::max<int>(rectangle.bottom, 0) + height - 1) / height;
    PaintTerminal(record, dc, first + record.nTopRow, end - first);
}

RECT ClipBoxOf(HDC dc) {
    RECT box = {};
    GetClipBox(dc, &box);
    return box;
}

// The picture can't be moved any more once a part of it has been painted at its new place.
void MakeUpForPictureScroll(COMCTL& record) {
    if (!record.nPictureScroll)
        return;
    DropPictureScroll(record);
    InvalidateRect(record.hWnd, nullptr, FALSE);
}

} // namespace

void PaintTerminal(COMCTL& record, HDC dc, int first, int count) {
    const Canvas canvas = {dc, OuterSize(record.hWnd)};
    if (!CanPaintText(record)) {
        PaintWhite(canvas);
        return;
    }
    const HiddenCaret caret(record);
    const SelectedObject font(dc, record.hFont);
    PaintTextOn(record, canvas, first, count);
}

void OnPaint(COMCTL& record, HDC dc) {
    MakeUpForPictureScroll(record);
    const PaintSession paint(record.hWnd);
    if (paint.Context())
        PaintRectangle(record, paint.Context(), paint.Rectangle());
    if (dc)
        PaintRectangle(record, dc, ClipBoxOf(dc));
}

void PaintDirtyRows(COMCTL& record) {
    const int first = record.nDirtyFirst;
    const int last = record.nDirtyLast;
    {
        const WindowContext dc(record.hWnd);
        PaintTerminal(record, dc, first, last - first);
    }
    // From the top of the window, whatever row it shows there.
    const RECT band = {0, Pixels(first, record.cyChar), ClientSize(record.hWnd).cx,
                       Pixels(last, record.cyChar)};
    ValidateRect(record.hWnd, &band);
    record.nDirtyFirst = 0;
    record.nDirtyLast = 0;
}

void PaintRowsNow(COMCTL& record, int first, int last) {
    if (!record.nEmulation)
        return;
    if (record.nPictureScroll)
        ServeRepaint(record);
    first = std::max(first, -std::max(record.nScrollRows, 0));
    last = std::min(last, record.nRows - 1);
    const WindowContext dc(record.hWnd);
    PaintTerminal(record, dc, first, last - first + 1);
}
