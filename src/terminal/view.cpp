#include "view.h"

#include "caret.h"
#include "gdi.h"
#include "picture.h"

#include <algorithm>

namespace {

struct Bar {
    HWND hWnd;
    int kind;

    void SetRange(int first, int last, BOOL redraw) const { SetScrollRange(hWnd, kind, first, last, redraw); }
    void SetPosition(int position) const { SetScrollPos(hWnd, kind, position, TRUE); }
};

Bar VerticalBar(const COMCTL& record) {
    return {record.hVScrollBar, record.nVScrollBarKind};
}

Bar HorizontalBar(const COMCTL& record) {
    return {record.hHScrollBar, record.nHScrollBarKind};
}

void EmptyBars(const COMCTL& record) {
    VerticalBar(record).SetRange(0, 0, TRUE);
    HorizontalBar(record).SetRange(0, 0, TRUE);
}

long long TotalRows(const COMCTL& record) {
    return static_cast<long long>(record.nRows) + record.nScrollRows;
}

bool EverythingFits(const COMCTL& record, const SIZE& client) {
    return record.nScrollRows == 0 && static_cast<long long>(record.nColumns) * record.cxChar <= client.cx &&
           TotalRows(record) * record.cyChar <= client.cy;
}

void ShowEverything(COMCTL& record) {
    record.nTopRow = 0;
    record.nLeftColumn = 0;
    record.nPageColumns = record.nVisibleColumns = record.nColumns;
    record.nPageRows = record.nVisibleRows = record.nRows;
    VerticalBar(record).SetPosition(0);
    HorizontalBar(record).SetPosition(0);
    EmptyBars(record);
}

// How many cells fit an extent wholly, and how many it touches.
struct Extent {
    int whole;
    int touched;
};

Extent CellsIn(int pixels, int cell, long long limit) {
    const auto held = [limit](int cells) { return static_cast<int>(std::min<long long>(cells, limit)); };
    return {held(pixels / cell), held((pixels + cell - 1) / cell)};
}

int LastTopRow(const COMCTL& record) {
    return std::max(record.nRows - record.nPageRows - 1, 0);
}

int LastLeftColumn(const COMCTL& record) {
    return std::max(record.nColumns - record.nPageColumns - 1, 0);
}

void MeasurePages(COMCTL& record, const SIZE& client) {
    const Extent columns = CellsIn(client.cx, record.cxChar, record.nColumns);
    record.nPageColumns = columns.whole;
    record.nVisibleColumns = columns.touched;
    const Extent rows = CellsIn(client.cy, record.cyChar, TotalRows(record));
    record.nPageRows = rows.whole;
    record.nVisibleRows = rows.touched;
}

void HoldView(COMCTL& record) {
    record.nTopRow = std::max(std::min(record.nTopRow, LastTopRow(record)), -record.nScrollRows);
    record.nLeftColumn = std::max(std::min(record.nLeftColumn, LastLeftColumn(record)), 0);
}

// Has everything painted anew if the view moves while it lives.
class WatchedView {
  public:
    explicit WatchedView(COMCTL& record) : record_(record), top_(record.nTopRow), left_(record.nLeftColumn) {}
    ~WatchedView() {
        if (record_.nTopRow == top_ && record_.nLeftColumn == left_)
            return;
        DropPictureScroll(record_);
        InvalidateRect(record_.hWnd, nullptr, FALSE);
        PositionCaret(record_);
    }
    WatchedView(const WatchedView&) = delete;
    WatchedView& operator=(const WatchedView&) = delete;

  private:
    COMCTL& record_;
    int top_;
    int left_;
};

// Scrolling by a bar: what its codes do to a position.
struct Scroll {
    int position;
    int floor;
    int top; // one above the bar's range
    int page;
    int thumb;
};

int LineUp(const Scroll& scroll) {
    return scroll.position > scroll.floor ? scroll.position - 1 : scroll.position;
}

int LineDown(const Scroll& scroll) {
    return scroll.position < scroll.top ? scroll.position + 1 : scroll.position;
}

int PageUp(const Scroll& scroll) {
    return std::max(scroll.position - scroll.page, scroll.floor);
}

int PageDown(const Scroll& scroll) {
    return std::min(scroll.position + scroll.page, scroll.top);
}

int ThumbPosition(const Scroll& scroll) {
    return std::max(std::min(scroll.thumb, std::max(scroll.top, 0)), scroll.floor);
}

int ToFloor(const Scroll& scroll) {
    return scroll.floor;
}

int ToTop(const Scroll& scroll) {
    return scroll.top;
}

struct CodeRow {
    int code;
    int (*position)(const Scroll& scroll);
};

// Other codes move nothing, SB_THUMBTRACK among them: dragging scrolls when the thumb is let go.
constexpr CodeRow codeRows[] = {
    {SB_LINEUP, LineUp},     {SB_LINEDOWN, LineDown},           {SB_PAGEUP, PageUp},
    {SB_PAGEDOWN, PageDown}, {SB_THUMBPOSITION, ThumbPosition}, {SB_TOP, ToFloor},
    {SB_BOTTOM, ToTop},
};

int NewPosition(int code, const Scroll& scroll) {
    const auto* row = std::ranges::find(codeRows, code, &CodeRow::code);
    return row == std::end(codeRows) ? scroll.position : row->position(scroll);
}

struct FollowRow {
    int nAutoScroll;
    bool rows;
    bool columnsWhilePrinting;
    bool columnsOtherwise;
};

constexpr FollowRow followRows[] = {
    {1, true, false, false},
    {2, false, true, true},
    {3, true, true, true},
    {4, true, false, true},
};

// The way back to the screen is open even where rows don't follow.
int FollowRows(const COMCTL& record, int page, bool rowsFollow, ViewTrigger trigger) {
    int top = record.nTopRow;
    if ((rowsFollow && record.nCursorRow - record.nTopRow >= page) || trigger == ViewTrigger::BackToScreen)
        top = std::max(std::min(record.nRows, record.nCursorRow) - page + 1, 0);
    return rowsFollow && record.nCursorRow <= record.nTopRow ? record.nCursorRow : top;
}

int FollowColumns(const COMCTL& record, int page) {
    int left = record.nLeftColumn;
    if (record.nCursorColumn - record.nLeftColumn >= page)
        left = std::min(record.nCursorColumn - page, record.nColumns - 1);
    return record.nCursorColumn <= record.nLeftColumn ? record.nCursorColumn : left;
}

} // namespace

void AutoScrollTerminal(COMCTL& record, ViewTrigger trigger) {
    const auto* follow = std::ranges::find(followRows, record.nAutoScroll, &FollowRow::nAutoScroll);
    if (follow == std::end(followRows) || record.cxChar <= 0 || record.cyChar <= 0)
        return;
    const bool columns =
        trigger == ViewTrigger::Printing ? follow->columnsWhilePrinting : follow->columnsOtherwise;
    const SIZE client = ClientSize(record.hWnd);
    const int pageRows = CellsIn(client.cy, record.cyChar, record.nRows).whole;
    const int pageColumns = CellsIn(client.cx, record.cxChar, record.nColumns).whole;
    ScrollTo(record, columns ? FollowColumns(record, pageColumns) : record.nLeftColumn,
             FollowRows(record, pageRows, follow->rows, trigger));
}

// Setting a range can show or hide a bar, and then the window is resized and this runs again inside. So each
// step takes its numbers from the record, where they are the newest.
void UpdateScrollBars(COMCTL& record) {
    if (record.cxChar <= 0 || record.cyChar <= 0)
        return;
    if (!record.nEmulation) {
        EmptyBars(record);
        return;
    }
    const SIZE client = ClientSize(record.hWnd);
    const WatchedView view(record);
    if (EverythingFits(record, client)) {
        ShowEverything(record);
        return;
    }
    MeasurePages(record, client);
    HoldView(record);
    VerticalBar(record).SetRange(-record.nScrollRows, LastTopRow(record), FALSE);
    HorizontalBar(record).SetRange(0, LastLeftColumn(record), FALSE);
    VerticalBar(record).SetPosition(record.nTopRow);
    HorizontalBar(record).SetPosition(record.nLeftColumn);
}

void ScrollTo(COMCTL& record, int left, int top) {
    if (left == record.nLeftColumn && top == record.nTopRow)
        return;
    ServeRepaint(record);
    MovePicture(record, record.nLeftColumn - left, record.nTopRow - top);
    HorizontalBar(record).SetPosition(left);
    VerticalBar(record).SetPosition(top);
    record.nLeftColumn = left;
    record.nTopRow = top;
    UpdateWindow(record.hWnd);
    PositionCaret(record);
}

void ScrollVertically(COMCTL& record, int code, int position) {
    const int top = NewPosition(code, {record.nTopRow, -record.nScrollRows, record.nRows - record.nPageRows,
                                       record.nPageRows, position});
    VerticalBar(record).SetPosition(top);
    ScrollTo(record, record.nLeftColumn, top);
}

void ScrollHorizontally(COMCTL& record, int code, int position) {
    const int left = NewPosition(
        code, {record.nLeftColumn, 0, record.nColumns - record.nPageColumns, record.nPageColumns, position});
    HorizontalBar(record).SetPosition(left);
    ScrollTo(record, left, record.nTopRow);
}
