// The selection: its corners, its two readings, the mouse, the clipboard.
#include "terminalobject.h"

#include "core/handle.h"
#include "terminal/mouse.h"
#include "terminal/selection.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

namespace {

class Selection : public testing::Test {
  protected:
    Selection() { object.ShowScreen(); }

    COMCTL& Record() { return object.Record(); }

    using Corners = std::array<int, 4>;
    Corners Selected() {
        return {Record().nSelStartRow, Record().nSelStartColumn, Record().nSelEndRow, Record().nSelEndColumn};
    }
    void Select(const Corners& corners) {
        Record().nSelStartRow = corners[0];
        Record().nSelStartColumn = corners[1];
        Record().nSelEndRow = corners[2];
        Record().nSelEndColumn = corners[3];
    }
    std::string Text(int size = 4096) {
        std::vector<char> buffer(8192, '#');
        const int length = GetSelectionText(object, buffer.data(), size);
        EXPECT_EQ(buffer[static_cast<size_t>(length)], '\0');
        EXPECT_EQ(buffer[static_cast<size_t>(length) + 1], '#');
        return std::string(buffer.data(), static_cast<size_t>(length));
    }

    // A point inside a cell of the window.
    LPARAM PointIn(int column, int row) {
        const RECT area = host::CellArea(Record(), column, row);
        return MAKELPARAM(area.left + 2, area.top + 2);
    }
    void Mouse(UINT message, LPARAM point, WPARAM keys = 0) { SendMessageA(object, message, keys, point); }

    host::TerminalObject object;
};

struct SetRow {
    const char* name;
    Cell anchor;
    Cell other;
    std::array<int, 4> selected;
    Cell storedAnchor;
};

const SetRow setRows[] = {
    {"forwards", {1, 2}, {3, 4}, {1, 2, 3, 4}, {1, 2}},
    {"backwards", {3, 4}, {1, 2}, {1, 2, 3, 4}, {3, 4}},
    {"backwards in a row", {2, 9}, {2, 5}, {2, 5, 2, 9}, {2, 9}},
    {"scrollback", {-2, 3}, {2, 1}, {-2, 3, 2, 1}, {-2, 3}},
    {"anchor right of the row", {1, 200}, {2, 3}, {1, 79, 2, 3}, {1, 79}},
    {"anchor left of the row", {1, -200}, {2, 3}, {1, 0, 2, 3}, {1, 0}},
    {"anchor below the screen", {300, 1}, {2, 3}, {2, 3, 24, 1}, {24, 1}},
    {"anchor above the scrollback", {-300, 1}, {2, 3}, {-5, 1, 2, 3}, {-5, 1}},
    {"second corner is not held", {1, 2}, {300, 400}, {1, 2, 300, 400}, {1, 2}},
};

TEST_F(Selection, CornersComeInReadingOrder) {
    SetScrollRows(object, 5);
    for (const SetRow& row : setRows) {
        Select({20, 0, 20, 70});
        SetSelection(Record(), row.anchor, row.other);
        EXPECT_EQ(Selected(), row.selected) << row.name;
        EXPECT_EQ(Record().nSelAnchorRow, row.storedAnchor.row) << row.name;
        EXPECT_EQ(Record().nSelAnchorColumn, row.storedAnchor.column) << row.name;
    }
}

TEST_F(Selection, ARowIsComparedWithAColumn) {
    Select({3, 5, 9, 7});
    SetSelection(Record(), {3, 1}, {7, 2});
    EXPECT_EQ(Selected(), (Corners{3, 5, 9, 7})) << "row 7 is taken for column 7: nothing changes";
    EXPECT_EQ(Record().nSelAnchorColumn, 1) << "but the anchor";
    SetSelection(Record(), {3, 1}, {8, 2});
    EXPECT_EQ(Selected(), (Corners{3, 1, 8, 2}));
}

struct LengthRow {
    std::array<int, 4> selected;
    int length;
};

TEST_F(Selection, LengthCountsARowTooMany) {
    for (const LengthRow& row :
         {LengthRow{{1, 2, 2, 3}, 161}, LengthRow{{1, 2, 1, 10}, 8}, LengthRow{{0, 0, 0, 0}, 0},
          LengthRow{{-1, 70, 1, 5}, 175}, LengthRow{{0, 0, 24, 80}, 2080}}) {
        Select(row.selected);
        EXPECT_EQ(GetSelectionLength(object), row.length);
    }
}

TEST_F(Selection, StartCountsFromTheScreen) {
    SetScrollRows(object, 5);
    Select({2, 3, 4, 5});
    EXPECT_EQ(GetSelectionStart(object), 163);
    Select({-1, 3, 4, 5});
    EXPECT_EQ(GetSelectionStart(object), -77);
}

TEST_F(Selection, SettingTheStartCollapsesIt) {
    Select({5, 5, 6, 60});
    SetSelectionStart(object, 163);
    EXPECT_EQ(Selected(), (Corners{2, 3, 2, 3}));
    EXPECT_EQ(SetSelectionStart(object, -1), -1);
    EXPECT_EQ(SetSelectionStart(object, 2001), -1);
    EXPECT_EQ(SetSelectionStart(object, 2000), 0) << "just behind the last cell";
    EXPECT_EQ(Selected(), (Corners{25, 0, 25, 0}));
    EXPECT_EQ(GetSelectionLength(object), 0);
}

TEST_F(Selection, StartInTheFirstRowOfAFreshObjectHolds) {
    EXPECT_EQ(SetSelectionStart(object, 5), 0);
    EXPECT_EQ(Selected(), (Corners{0, 5, 0, 5}));
    EXPECT_EQ(SetSelectionLength(object, 3), 0);
    EXPECT_EQ(Selected(), (Corners{0, 5, 0, 8}));
    EXPECT_EQ(Record().nSelAnchorColumn, 5) << "the anchor stays";
}

TEST_F(Selection, SettingTheLengthMovesTheEnd) {
    Select({1, 70, 1, 70});
    SetSelectionLength(object, 15);
    EXPECT_EQ(Selected(), (Corners{1, 70, 2, 5}));
    EXPECT_EQ(SetSelectionLength(object, 2000), -1) << "its end reaches no row";
    SetSelectionLength(object, -1);
    EXPECT_EQ(Selected(), (Corners{1, 70, 2, 5}));
}

TEST_F(Selection, TextLeavesTrailingSpacesOut) {
    object.PutText(0, 0, "first row  ");
    object.PutText(2, 4, "third");
    Select({0, 6, 2, 7});
    EXPECT_EQ(Text(), "row\r\n\r\n    thi");
    Select({0, 40, 2, 80});
    EXPECT_EQ(Text(), "\r\n\r\n    third") << "beyond the text of both rows";
    Select({0, 1, 0, 3});
    EXPECT_EQ(Text(), "ir");
    Select({0, 3, 0, 3});
    EXPECT_EQ(Text(), "");
}

TEST_F(Selection, TextReachesIntoTheScrollback) {
    SetScrollRows(object, 3);
    object.PutText(-1, 0, "above");
    object.PutText(0, 0, "below");
    Select({-1, 2, 0, 3});
    EXPECT_EQ(Text(), "ove\r\nbel");
}

TEST_F(Selection, TextStaysInsideTheBuffer) {
    object.PutText(0, 0, "0123456789");
    Select({0, 0, 0, 10});
    EXPECT_EQ(Text(11), "0123456789");
    EXPECT_EQ(Text(10), "012345678");
    EXPECT_EQ(Text(1), "");
    char byte = '#';
    EXPECT_EQ(GetSelectionText(object, &byte, 0), 0);
    EXPECT_EQ(byte, '#');
    EXPECT_EQ(GetSelectionText(object, nullptr, 100), 0);
}

TEST_F(Selection, AbsurdCornersAreSurvived) {
    object.PutText(24, 0, "last");
    const Corners absurd[] = {
        {INT_MIN, INT_MIN, INT_MAX, INT_MAX},
        {INT_MAX, INT_MAX, INT_MIN, INT_MIN},
        {-100, 0, 100, 0},
        {24, -5, 24, 5000},
        {5000, 0, 6000, 0},
        {-9, 0, -7, 3},
    };
    for (const Corners& corners : absurd) {
        Select(corners);
        Text();
        SelectionLength(Record());
        CopySelectionToClipboard(object);
        IsSelected(Record(), {3, 3});
        SetSelection(Record(), {1, 1}, {2, 2});
    }
    Select({24, -5, 100, 5});
    EXPECT_EQ(Text(), "last");
    Record().nColumns = 80;
    SetEmulation(object, Emulation_None);
    SetRows(object, 25); // lets the planes go
    Select({-3, 0, 20, 5});
    EXPECT_EQ(Text(), "");
    SetSelection(Record(), {1, 1}, {2, 2});
}

TEST_F(Selection, IsWhatLiesBetweenItsCorners) {
    Select({1, 78, 3, 2});
    const struct {
        Cell cell;
        bool selected;
    } rows[] = {
        {{0, 79}, false}, {{1, 77}, false}, {{1, 78}, true}, {{1, 79}, true}, {{2, 0}, true},
        {{2, 79}, true},  {{3, 0}, true},   {{3, 1}, true},  {{3, 2}, false}, {{4, 0}, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(IsSelected(Record(), row.cell), row.selected) << row.cell.row << ", " << row.cell.column;
}

TEST_F(Selection, ResizeClearsIt) {
    SetSelection(Record(), {1, 1}, {2, 2});
    SetRows(object, 100000);
    EXPECT_EQ(Selected(), (Corners{0, 0, 0, 0}));
    EXPECT_EQ(Record().nSelAnchorRow, 0);
}

struct PointRow {
    const char* name;
    int x, y; // in tenths of a cell
    Cell cell;
};

// The view begins at row 3 and column 5.
const PointRow pointRows[] = {
    {"corner", 0, 0, {3, 5}},
    {"inside the first cell", 9, 9, {3, 5}},
    {"edge of the second", 10, 10, {4, 6}},
    {"inside another", 104, 23, {5, 15}},
    {"above", 20, -500, {3, 7}},
    {"left", -500, 20, {5, 5}},
    {"far below", 20, 5000, {24, 7}},
    {"last column", 749, 0, {3, 79}},
    {"far right", 5000, 0, {3, 80}},
};

TEST_F(Selection, PointIsMappedToACell) {
    Record().nTopRow = 3;
    Record().nLeftColumn = 5;
    for (const PointRow& row : pointRows) {
        const LONG x = row.x * Record().cxChar / 10;
        const LONG y = row.y * Record().cyChar / 10;
        const Cell cell = CellAt(Record(), {x, y});
        EXPECT_EQ(cell.row, row.cell.row) << row.name;
        EXPECT_EQ(cell.column, row.cell.column) << row.name;
    }
}

TEST_F(Selection, PointIsMappedByRealWidths) {
    const HGDIOBJ font = GetStockObject(ANSI_VAR_FONT);
    SendMessageA(object, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    const std::string text = "iiiiiiiiMMMMMMMMiiiiiiii";
    object.PutText(0, 0, text);
    const HDC dc = GetDC(object);
    const HGDIOBJ before = SelectObject(dc, font);
    for (int column = 0; column < static_cast<int>(text.size()); ++column) {
        SIZE left = {}, right = {};
        GetTextExtentPoint32A(dc, text.c_str(), column, &left);
        GetTextExtentPoint32A(dc, text.c_str(), column + 1, &right);
        EXPECT_EQ(CellAt(Record(), {left.cx, 0}).column, column);
        EXPECT_EQ(CellAt(Record(), {right.cx - 1, 0}).column, column);
    }
    SelectObject(dc, before);
    ReleaseDC(object, dc);
}

TEST_F(Selection, PointsOfAbsurdRecordsAreSurvived) {
    for (const int value : {INT_MIN, -1000, INT_MAX}) {
        Record().nLeftColumn = value;
        CellAt(Record(), {10, 10});
    }
    Record().nLeftColumn = 0;
    Record().cxChar = Record().cyChar = 0;
    CellAt(Record(), {10, 10});
    Record().nTopRow = -1000;
    EXPECT_EQ(CellAt(Record(), {0, 0}).column, 0);
}

TEST_F(Selection, DraggingSelects) {
    Mouse(WM_LBUTTONDOWN, PointIn(5, 2));
    EXPECT_EQ(GetCapture(), static_cast<HWND>(object));
    EXPECT_EQ(Selected(), (Corners{2, 5, 2, 5}));
    Mouse(WM_MOUSEMOVE, PointIn(9, 4));
    EXPECT_EQ(Selected(), (Corners{2, 5, 4, 9}));
    Mouse(WM_MOUSEMOVE, PointIn(1, 0));
    EXPECT_EQ(Selected(), (Corners{0, 1, 2, 5})) << "from the anchor";
    Mouse(WM_LBUTTONUP, PointIn(1, 0));
    EXPECT_NE(GetCapture(), static_cast<HWND>(object));
    Mouse(WM_MOUSEMOVE, PointIn(30, 20));
    EXPECT_EQ(Selected(), (Corners{0, 1, 2, 5})) << "no more";
}

TEST_F(Selection, ButtonsTakeTheFocus) {
    ShowWindow(object, SW_SHOW);
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
        SetFocus(nullptr);
        Mouse(message, PointIn(5, 2));
        EXPECT_EQ(GetFocus(), static_cast<HWND>(object)) << message;
    }
}

TEST_F(Selection, ClickBehindTheRowsEndSelectsNothing) {
    Mouse(WM_LBUTTONDOWN, MAKELPARAM(5000, 3));
    Mouse(WM_LBUTTONUP, MAKELPARAM(5000, 3));
    EXPECT_EQ(GetSelectionLength(object), 0);
    EXPECT_EQ(Record().nSelAnchorColumn, Record().nColumns - 1);
}

TEST_F(Selection, ShiftExtendsFromTheAnchor) {
    Mouse(WM_LBUTTONDOWN, PointIn(5, 2));
    Mouse(WM_LBUTTONUP, PointIn(5, 2));
    Mouse(WM_LBUTTONDOWN, PointIn(7, 6), MK_SHIFT);
    EXPECT_EQ(Selected(), (Corners{2, 5, 6, 7}));
    Mouse(WM_LBUTTONUP, PointIn(7, 6));
}

TEST_F(Selection, DoubleClickLetsTheMouseGo) {
    Mouse(WM_LBUTTONDOWN, PointIn(5, 2));
    const Corners before = Selected();
    Mouse(WM_LBUTTONDBLCLK, PointIn(6, 2));
    EXPECT_NE(GetCapture(), static_cast<HWND>(object));
    EXPECT_EQ(Selected(), before) << "no word is selected";
}

TEST_F(Selection, DraggingBeyondTheEdgeScrolls) {
    SetScrollRows(object, 5);
    object.ShowCells(30, 10);
    Mouse(WM_LBUTTONDOWN, PointIn(5, 2));
    const short farAway = 5000;
    Mouse(WM_MOUSEMOVE, MAKELPARAM(20, farAway));
    EXPECT_EQ(Record().nTopRow, 1);
    Mouse(WM_MOUSEMOVE, MAKELPARAM(20, -1));
    Mouse(WM_MOUSEMOVE, MAKELPARAM(20, -1));
    EXPECT_EQ(Record().nTopRow, -1);
    EXPECT_EQ(Record().nSelStartRow, -1) << "the row that has come into view";
    EXPECT_EQ(Record().nLeftColumn, 0);
    Mouse(WM_MOUSEMOVE, MAKELPARAM(farAway, farAway));
    EXPECT_EQ(Record().nLeftColumn, 1);
    EXPECT_EQ(Record().nTopRow, 0) << "each side on its own";
    Mouse(WM_MOUSEMOVE, MAKELPARAM(-1, 0));
    EXPECT_EQ(Record().nLeftColumn, 0);
    Mouse(WM_LBUTTONUP, 0);
}

std::string ClipboardText() {
    std::string text = "none";
    if (!OpenClipboard(nullptr))
        return text;
    if (const HANDLE memory = GetClipboardData(CF_TEXT)) {
        text = static_cast<const char*>(GlobalLock(memory));
        GlobalUnlock(memory);
    }
    CloseClipboard();
    return text;
}

TEST_F(Selection, IsCopiedToTheClipboard) {
    object.PutText(0, 0, "one");
    object.PutText(1, 0, std::string(80, 'x'));
    Select({0, 0, 1, 80});
    ASSERT_EQ(CopySelectionToClipboard(object), 1);
    EXPECT_EQ(ClipboardText(), "one\r\n" + std::string(80, 'x'));
}

TEST_F(Selection, OtherFormatsStayOnTheClipboard) {
    const UINT format = RegisterClipboardFormatA("TarnOtherFormat");
    ASSERT_TRUE(OpenClipboard(object));
    EmptyClipboard();
    SetClipboardData(format, GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 4));
    CloseClipboard();
    object.PutText(0, 0, "one");
    Select({0, 0, 0, 3});
    ASSERT_EQ(CopySelectionToClipboard(object), 1);
    EXPECT_EQ(ClipboardText(), "one");
    EXPECT_TRUE(IsClipboardFormatAvailable(format));
}

// Has the clipboard open on a thread of its own.
class ClipboardThief {
  public:
    ClipboardThief() {
        thread_ = std::thread([this] {
            const bool opened = OpenClipboard(nullptr);
            SetEvent(taken_.get());
            WaitForSingleObject(done_.get(), 10000);
            if (opened)
                CloseClipboard();
        });
        WaitForSingleObject(taken_.get(), 10000);
    }
    ~ClipboardThief() {
        SetEvent(done_.get());
        thread_.join();
    }

  private:
    EventHandle taken_ = ManualResetEvent();
    EventHandle done_ = ManualResetEvent();
    std::thread thread_;
};

TEST_F(Selection, TakenClipboardIsAFailure) {
    Select({0, 0, 0, 3});
    {
        const ClipboardThief thief;
        EXPECT_EQ(CopySelectionToClipboard(object), 0);
    }
    EXPECT_EQ(CopySelectionToClipboard(object), 1);
}

} // namespace
