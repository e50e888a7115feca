// What part of screen and scrollback is shown: scroll bars, their messages, following the cursor.
#include "terminalobject.h"

#include "terminal/view.h"

#include <gtest/gtest.h>

namespace {

class View : public testing::Test {
  protected:
    COMCTL& Record() { return object.Record(); }

    struct Range {
        int first = -1;
        int last = -1;
        int position = -1;
        bool operator==(const Range&) const = default;
    };
    static Range RangeOf(HWND bar, int kind = SB_CTL) {
        Range range;
        GetScrollRange(bar, kind, &range.first, &range.last);
        range.position = GetScrollPos(bar, kind);
        return range;
    }
    void Scroll(UINT message, int code, int position = 0) {
        SendMessageA(object, message, MAKEWPARAM(code, position), 0);
    }

    host::TerminalObject object;
};

TEST_F(View, EverythingFits) {
    object.ShowCells(80, 12);
    object.ShowScreen(3);
    EXPECT_EQ(RangeOf(object.VerticalBar()), (Range{0, 0, 0}));
    EXPECT_EQ(RangeOf(object.HorizontalBar()), (Range{0, 0, 0}));
    EXPECT_EQ(Record().nPageRows, 25);
    EXPECT_EQ(Record().nVisibleRows, 25);
    EXPECT_EQ(Record().nPageColumns, 80);
    EXPECT_EQ(Record().nVisibleColumns, 80);
}

TEST_F(View, SmallWindow) {
    object.ShowCells(30, 10, 3);
    EXPECT_EQ(Record().nPageRows, 10);
    EXPECT_EQ(Record().nVisibleRows, 11);
    EXPECT_EQ(Record().nPageColumns, 30);
    EXPECT_EQ(Record().nVisibleColumns, 31);
    EXPECT_EQ(RangeOf(object.VerticalBar()), (Range{0, 14, 0}));
    EXPECT_EQ(RangeOf(object.HorizontalBar()), (Range{0, 49, 0}));
}

TEST_F(View, WindowOfWholeCellsTouchesNoMore) {
    object.ShowCells(30, 10);
    EXPECT_EQ(Record().nPageRows, 10);
    EXPECT_EQ(Record().nVisibleRows, 10);
    EXPECT_EQ(Record().nVisibleColumns, 30);
}

TEST_F(View, ScrollbackIsAboveZero) {
    object.ShowScreen();
    SetScrollRows(object, 100);
    EXPECT_EQ(RangeOf(object.VerticalBar()), (Range{-100, 0, 0}));
    EXPECT_EQ(Record().nPageRows, 25);
    object.ShowCells(80, 40);
    EXPECT_EQ(Record().nPageRows, 40) << "capped at screen and scrollback";
    SetScrollRows(object, 3);
    EXPECT_EQ(Record().nPageRows, 28);
    EXPECT_EQ(Record().nVisibleRows, 28);
}

TEST_F(View, ViewIsHeldInTheRange) {
    object.ShowCells(30, 10);
    SetScrollRows(object, 50);
    Record().nTopRow = -40;
    Record().nLeftColumn = 45;
    SetScrollRows(object, 20);
    EXPECT_EQ(Record().nTopRow, -20);
    Record().nTopRow = 15;
    UpdateScrollBars(Record());
    EXPECT_EQ(Record().nTopRow, 14);
    object.ShowCells(50, 20);
    EXPECT_EQ(Record().nTopRow, 4);
    EXPECT_EQ(Record().nLeftColumn, 29);
    EXPECT_EQ(RangeOf(object.HorizontalBar()), (Range{0, 29, 29}));
}

TEST_F(View, WithoutMetricsNothingIsTouched) {
    object.ShowCells(30, 10);
    Record().cxChar = 0;
    Record().nTopRow = 99;
    UpdateScrollBars(Record());
    EXPECT_EQ(Record().nTopRow, 99);
    AutoScrollTerminal(Record(), ViewTrigger::Key);
    EXPECT_EQ(Record().nTopRow, 99);
}

TEST_F(View, WithoutAnEmulationTheRangesAreEmpty) {
    object.ShowCells(30, 10);
    SetEmulation(object, Emulation_None);
    EXPECT_EQ(RangeOf(object.VerticalBar()).last, 0);
    EXPECT_EQ(RangeOf(object.HorizontalBar()).last, 0);
}

TEST_F(View, OwnBarsServeWhereNoOthersAreGiven) {
    SetVScrollBar(object, nullptr);
    SetHScrollBar(object, nullptr);
    EXPECT_EQ(Record().nVScrollBarKind, SB_VERT);
    EXPECT_EQ(Record().nHScrollBarKind, SB_HORZ);
    object.ShowCells(40, 12);
    SetScrollRows(object, 7);
    const Range vertical = RangeOf(object, SB_VERT);
    EXPECT_EQ(vertical.first, -7);
    EXPECT_EQ(vertical.last, 25 - Record().nPageRows - 1);
    EXPECT_EQ(RangeOf(object, SB_HORZ).last, 80 - Record().nPageColumns - 1);
    EXPECT_TRUE(GetWindowLongA(object, GWL_STYLE) & WS_VSCROLL);
}

struct ScrollRow {
    const char* name;
    int code;
    int before;
    int thumb;
    int after;
};

// 25 rows and 20 of scrollback in a window of 10 rows: from -20 to 15, one above the bar's range.
const ScrollRow verticalRows[] = {
    {"line up", SB_LINEUP, 3, 0, 2},
    {"line up into the scrollback", SB_LINEUP, 0, 0, -1},
    {"line up at the top", SB_LINEUP, -20, 0, -20},
    {"line down", SB_LINEDOWN, 3, 0, 4},
    {"line down beyond the range", SB_LINEDOWN, 14, 0, 15},
    {"line down at the bottom", SB_LINEDOWN, 15, 0, 15},
    {"page up", SB_PAGEUP, 5, 0, -5},
    {"page up to the top", SB_PAGEUP, -15, 0, -20},
    {"page down", SB_PAGEDOWN, -5, 0, 5},
    {"page down to the bottom", SB_PAGEDOWN, 8, 0, 15},
    {"thumb", SB_THUMBPOSITION, 0, 7, 7},
    {"thumb, signed", SB_THUMBPOSITION, 0, -7, -7},
    {"thumb out of the range", SB_THUMBPOSITION, 0, -700, -20},
    {"thumb still dragged", SB_THUMBTRACK, 3, 9, 3},
    {"top", SB_TOP, 3, 0, -20},
    {"bottom", SB_BOTTOM, 3, 0, 15},
    {"end of scroll", SB_ENDSCROLL, 3, 5, 3},
};

TEST_F(View, VerticalScrollCodes) {
    object.ShowCells(30, 10);
    SetScrollRows(object, 20);
    for (const ScrollRow& row : verticalRows) {
        Record().nTopRow = row.before;
        Scroll(WM_VSCROLL, row.code, row.thumb);
        EXPECT_EQ(Record().nTopRow, row.after) << row.name;
        EXPECT_EQ(Record().nLeftColumn, 0) << row.name;
        EXPECT_EQ(GetScrollPos(object.VerticalBar(), SB_CTL), std::min(row.after, 14)) << row.name;
    }
}

TEST_F(View, ThumbReachesTheScreenInAWindowThatShowsMoreThanIt) {
    object.ShowCells(30, 35);
    SetScrollRows(object, 20);
    Scroll(WM_VSCROLL, SB_THUMBPOSITION, -12);
    EXPECT_EQ(Record().nTopRow, -12);
    Scroll(WM_VSCROLL, SB_THUMBPOSITION, 0);
    EXPECT_EQ(Record().nTopRow, 0);
}

// 80 columns in a window of 30: from 0 to 50.
const ScrollRow horizontalRows[] = {
    {"left", SB_LINELEFT, 3, 0, 2},
    {"left at the edge", SB_LINELEFT, 0, 0, 0},
    {"right", SB_LINERIGHT, 3, 0, 4},
    {"right at the edge", SB_LINERIGHT, 50, 0, 50},
    {"page left", SB_PAGELEFT, 35, 0, 5},
    {"page left to the edge", SB_PAGELEFT, 20, 0, 0},
    {"page right", SB_PAGERIGHT, 5, 0, 35},
    {"page right to the edge", SB_PAGERIGHT, 30, 0, 50},
    {"thumb", SB_THUMBPOSITION, 0, 17, 17},
    {"thumb out of the range", SB_THUMBPOSITION, 5, -7, 0},
    {"thumb still dragged", SB_THUMBTRACK, 3, 9, 3},
    {"to the left edge", SB_LEFT, 3, 0, 0},
    {"to the right edge", SB_RIGHT, 3, 0, 50},
};

TEST_F(View, HorizontalScrollCodes) {
    object.ShowCells(30, 10);
    SetScrollRows(object, 20);
    for (const ScrollRow& row : horizontalRows) {
        Record().nLeftColumn = row.before;
        Scroll(WM_HSCROLL, row.code, row.thumb);
        EXPECT_EQ(Record().nLeftColumn, row.after) << row.name;
        EXPECT_EQ(Record().nTopRow, 0) << row.name;
    }
}

TEST_F(View, ScrollingServesWhatIsDirtyFirst) {
    object.ShowCells(30, 10);
    SetAutoScroll(object, 0);
    TerminalPrintString(object, "x");
    Scroll(WM_VSCROLL, SB_LINEDOWN);
    EXPECT_EQ(Record().bRepaintPosted, 0);
    EXPECT_EQ(Record().nDirtyLast, 0);
    TerminalPrintString(object, "x");
    Scroll(WM_VSCROLL, SB_THUMBTRACK);
    EXPECT_EQ(Record().bRepaintPosted, 1) << "nothing has changed, nothing happens";
}

struct FollowRow {
    const char* name;
    int autoScroll;
    ViewTrigger trigger;
    int cursorRow, cursorColumn;
    int topBefore, leftBefore;
    int top, left;
};

constexpr ViewTrigger printing = ViewTrigger::Printing;
constexpr ViewTrigger key = ViewTrigger::Key;
constexpr ViewTrigger back = ViewTrigger::BackToScreen;

// 80 by 25 and 20 rows of scrollback in a window of 30 by 10.
const FollowRow followRows[] = {
    {"never, printing", 0, printing, 20, 70, 0, 0, 0, 0},
    {"never, key", 0, key, 20, 70, 0, 0, 0, 0},
    {"never, back", 0, back, 20, 70, -5, 0, -5, 0},
    {"row, printing", 1, printing, 20, 70, 0, 0, 11, 0},
    {"row, key", 1, key, 20, 70, 0, 0, 11, 0},
    {"row, back", 1, back, 3, 70, -5, 0, 0, 0},
    {"column, printing", 2, printing, 20, 70, 0, 0, 0, 40},
    {"column, key", 2, key, 20, 70, 0, 0, 0, 40},
    {"column, back", 2, back, 3, 70, -5, 0, 0, 40},
    {"both, printing", 3, printing, 20, 70, 0, 0, 11, 40},
    {"both, key", 3, key, 20, 70, 0, 0, 11, 40},
    {"both, back", 3, back, 3, 70, -5, 0, 0, 40},
    {"keyboard, printing", 4, printing, 20, 70, 0, 0, 11, 0},
    {"keyboard, key", 4, key, 20, 70, 0, 0, 11, 40},
    {"keyboard, back", 4, back, 3, 70, -5, 0, 0, 40},
    {"unknown", 5, key, 20, 70, 0, 0, 0, 0},
    {"unknown, negative", -1, back, 20, 70, -5, 0, -5, 0},
    {"cursor in view", 3, printing, 9, 29, 0, 0, 0, 0},
    {"first row below the view", 3, printing, 10, 5, 0, 0, 1, 0},
    {"last row", 3, printing, 24, 5, 0, 0, 15, 0},
    {"cursor above the view", 3, printing, 2, 5, 7, 0, 2, 0},
    {"cursor left of the view", 3, printing, 2, 5, 0, 30, 0, 5},
    {"first column right of the view", 3, printing, 5, 30, 0, 0, 0, 0},
    {"second column right of the view", 3, printing, 5, 31, 0, 0, 0, 1},
    {"back with the cursor far down", 1, back, 24, 0, -20, 0, 15, 0},
    {"printing while scrolled back, cursor in view", 1, printing, 3, 0, -5, 0, -5, 0},
    {"printing while scrolled back, cursor below", 1, printing, 5, 0, -5, 0, 0, 0},
};

TEST_F(View, FollowsTheCursor) {
    object.ShowCells(30, 10);
    SetScrollRows(object, 20);
    for (const FollowRow& row : followRows) {
        Record().nAutoScroll = row.autoScroll;
        Record().nCursorRow = row.cursorRow;
        Record().nCursorColumn = row.cursorColumn;
        Record().nTopRow = row.topBefore;
        Record().nLeftColumn = row.leftBefore;
        AutoScrollTerminal(Record(), row.trigger);
        EXPECT_EQ(Record().nTopRow, row.top) << row.name;
        EXPECT_EQ(Record().nLeftColumn, row.left) << row.name;
    }
}

TEST_F(View, SettingAutoScrollFollowsAtOnce) {
    object.ShowCells(30, 10);
    SetAutoScroll(object, 0);
    SetCursorRow(object, 20);
    SetCursorColumn(object, 50);
    EXPECT_EQ(Record().nTopRow, 0);
    SetAutoScroll(object, 4);
    EXPECT_EQ(Record().nTopRow, 11);
    EXPECT_EQ(Record().nLeftColumn, 0) << "as when printing";
}

TEST_F(View, PrintingFollows) {
    object.ShowCells(80, 10);
    TerminalPrintString(object, "\x1B[20;1Hx");
    EXPECT_EQ(Record().nTopRow, 10);
}

TEST_F(View, AbsurdFieldsAreSurvived) {
    object.ShowCells(30, 10);
    for (const int value : {INT_MIN + 1, -1000000, 1000000, INT_MAX - 1}) {
        for (int COMCTL::*field : {&COMCTL::nTopRow, &COMCTL::nLeftColumn}) {
            Record().*field = value;
            for (int code = SB_LINEUP; code <= SB_ENDSCROLL; ++code)
                Scroll(WM_VSCROLL, code, 3);
            UpdateScrollBars(Record());
        }
    }
    EXPECT_LE(Record().nTopRow, 14);
    EXPECT_GE(Record().nTopRow, 0);
}

} // namespace
