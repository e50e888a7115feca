// What is painted: runs, colours, the edges of the screen.
#include "terminalobject.h"

#include "terminal/colors.h"
#include "terminal/paint.h"
#include "terminal/picture.h"

#include <gtest/gtest.h>

namespace {

COLORREF Color(int index) {
    return Palette[static_cast<size_t>(index)].color;
}

class Painting : public testing::Test {
  protected:
    static constexpr int columns = 20;
    static constexpr int rows = 6;
    static constexpr int margin = 30; // pixels right of and below the screen

    Painting() {
        SetColumns(object, columns);
        SetRows(object, rows);
        object.ShowScreen(margin);
    }

    COMCTL& Record() { return object.Record(); }
    // The last frame was long ago.
    void ServeRequest() {
        Record().dwLastPaint = GetTickCount() - 1000;
        SendMessageA(object, RepaintMessage, 0, 0);
    }
    RECT Area(int column, int row) { return host::CellArea(Record(), column, row); }
    RECT RowArea(int row) { return {0, row * Record().cyChar, canvas.Width(), (row + 1) * Record().cyChar}; }
    void Paint(int first = 0, int count = rows) { PaintCommWindow(object, canvas, 0, first, 0, count); }
    void ColorRowWith(int row, BYTE attribute) {
        object.PutColors(row, 0, std::vector<BYTE>(static_cast<size_t>(Record().nColumns), attribute));
    }
    void Select(int startRow, int startColumn, int endRow, int endColumn) {
        Record().nSelStartRow = startRow;
        Record().nSelStartColumn = startColumn;
        Record().nSelEndRow = endRow;
        Record().nSelEndColumn = endColumn;
    }

    host::TerminalObject object;
    host::Canvas canvas{400, 300};
};

TEST_F(Painting, FontIsMeasured) {
    EXPECT_GT(Record().cxChar, 0);
    EXPECT_GT(Record().cyChar, 0);
    ASSERT_GT(canvas.Width(), columns * Record().cxChar + margin);
    ASSERT_GT(canvas.Height(), rows * Record().cyChar + margin);
}

TEST_F(Painting, EachColorIsThatOfThePalette) {
    for (int color = 0; color < 16; ++color) {
        object.PutText(0, color, "H");
        object.PutColors(0, color, {static_cast<BYTE>(color << 4 | (15 - color))});
    }
    Paint();
    for (int color = 0; color < 16; ++color) {
        EXPECT_TRUE(canvas.Has(Area(color, 0), Color(color))) << "background " << color;
        EXPECT_TRUE(canvas.Has(Area(color, 0), Color(15 - color))) << "text on " << color;
        EXPECT_FALSE(canvas.Has(Area(color, 0), host::Canvas::Untouched)) << "opaque " << color;
    }
}

TEST_F(Painting, SelectedCellIsInvertedInAllBits) {
    object.PutText(1, 0, "HHH");
    ColorRowWith(1, 0x1F);
    Select(1, 1, 1, 2);
    Paint();
    EXPECT_TRUE(canvas.Has(Area(0, 1), Color(1)));
    EXPECT_TRUE(canvas.Has(Area(0, 1), Color(15)));
    EXPECT_TRUE(canvas.Has(Area(1, 1), Color(14))) << "0xE0: on yellow";
    EXPECT_TRUE(canvas.Has(Area(1, 1), Color(0))) << "0xE0: in black";
    EXPECT_FALSE(canvas.Has(Area(1, 1), Color(1)));
    EXPECT_TRUE(canvas.Has(Area(2, 1), Color(1)));
    EXPECT_FALSE(canvas.Has(Area(2, 1), Color(14)));
}

TEST_F(Painting, SelectedFirstCellIsInvertedToo) {
    ColorRowWith(0, 0x1F);
    Select(0, 0, 0, 1);
    Paint();
    EXPECT_TRUE(canvas.IsAll(Area(0, 0), Color(14)));
    EXPECT_TRUE(canvas.IsAll(Area(1, 0), Color(1)));
}

TEST_F(Painting, FilterAppliesToTheInvertedAttribute) {
    object.PutText(0, 0, "HH");
    ColorRowWith(0, 0x1F);
    Select(0, 1, 0, 2);
    SetColorFilter(object, ColorFilter_Gray);
    Paint();
    EXPECT_TRUE(canvas.Has(Area(0, 0), Color(7))) << "0x1F becomes 0x7F";
    EXPECT_TRUE(canvas.Has(Area(0, 0), Color(15)));
    EXPECT_TRUE(canvas.Has(Area(1, 0), Color(7))) << "0xE0 becomes 0x70";
    EXPECT_TRUE(canvas.Has(Area(1, 0), Color(0)));
    EXPECT_FALSE(canvas.Has(Area(1, 0), Color(8))) << "not the inverse of what was filtered";
}

TEST_F(Painting, SelectionRunsOverRows) {
    for (int row = 0; row < rows; ++row)
        ColorRowWith(row, 0x1F);
    Select(1, 18, 3, 2);
    Paint();
    EXPECT_TRUE(canvas.IsAll(Area(17, 1), Color(1)));
    EXPECT_TRUE(canvas.IsAll(Area(18, 1), Color(14)));
    EXPECT_TRUE(canvas.IsAll(Area(0, 2), Color(14)));
    EXPECT_TRUE(canvas.IsAll(Area(18, 2), Color(14)));
    EXPECT_TRUE(canvas.IsAll(Area(1, 3), Color(14)));
    EXPECT_TRUE(canvas.IsAll(Area(2, 3), Color(1)));
    EXPECT_TRUE(canvas.IsAll(Area(0, 0), Color(1)));
    EXPECT_TRUE(canvas.IsAll(Area(0, 4), Color(1)));
}

TEST_F(Painting, LastColumnTakesTheColorsOfItsNeighbour) {
    ColorRowWith(2, 0x2F);
    object.PutColors(2, columns - 1, {0x4F});
    Paint();
    EXPECT_TRUE(canvas.IsAll(Area(columns - 1, 2), Color(2)));
    EXPECT_FALSE(canvas.Has(RowArea(2), Color(4)));
}

TEST_F(Painting, BandOnTheRightHasTheLastRunsBackground) {
    ColorRowWith(0, 0x2F);
    ColorRowWith(1, 0x2F);
    object.PutColors(1, 10, std::vector<BYTE>(10, 0x5F));
    Paint();
    const LONG right = columns * Record().cxChar;
    const LONG cy = Record().cyChar;
    EXPECT_TRUE(canvas.IsAll({right, 0, right + margin, cy}, Color(2)));
    EXPECT_TRUE(canvas.IsAll({right, cy, right + margin, 2 * cy}, Color(5)));
    EXPECT_TRUE(canvas.IsAll({right + margin, 0, right + margin + 5, cy}, host::Canvas::Untouched))
        << "the window's edge bounds it";
}

TEST_F(Painting, BelowTheScreenIsTheLastCellsBackground) {
    ColorRowWith(rows - 1, 0x2F);
    object.PutColors(rows - 1, columns - 1, {0x4F});
    Paint();
    const LONG right = columns * Record().cxChar + margin;
    const LONG bottom = rows * Record().cyChar;
    EXPECT_TRUE(canvas.IsAll({0, bottom, right, bottom + margin}, Color(4)));
    EXPECT_TRUE(canvas.IsAll({0, bottom + margin, right, bottom + margin + 5}, host::Canvas::Untouched));
}

TEST_F(Painting, BelowTheScreenIsFiltered) {
    object.PutColors(rows - 1, columns - 1, {0x41});
    SetColorFilter(object, ColorFilter_BW);
    Paint();
    const LONG bottom = rows * Record().cyChar;
    EXPECT_TRUE(canvas.IsAll({0, bottom, 50, bottom + margin}, Color(15)));
}

TEST_F(Painting, SmallRequestThatLeavesTheScreensHalfIsServedAsItIs) {
    Paint(1, 1);
    EXPECT_TRUE(canvas.IsAll(RowArea(0), host::Canvas::Untouched));
    EXPECT_FALSE(canvas.Has(Area(0, 1), host::Canvas::Untouched));
    EXPECT_TRUE(canvas.IsAll(RowArea(2), host::Canvas::Untouched));
}

TEST_F(Painting, RequestBeyondWhatRemainsIsWidenedToTheEnd) {
    Paint(4, 1); // 5 is more than the 2 rows that remain
    EXPECT_TRUE(canvas.IsAll(RowArea(3), host::Canvas::Untouched));
    EXPECT_FALSE(canvas.Has(Area(0, 4), host::Canvas::Untouched));
    EXPECT_FALSE(canvas.Has(Area(0, 5), host::Canvas::Untouched)) << "the last row, too";
}

TEST_F(Painting, RowsAboveTheViewAreLeftOut) {
    object.ShowCells(columns, 3);
    SendMessageA(object, WM_VSCROLL, SB_BOTTOM, 0);
    ASSERT_EQ(Record().nTopRow, 3);
    ColorRowWith(3, 0x2F);
    Paint(1, 3);
    EXPECT_TRUE(canvas.IsAll(Area(0, 0), Color(2))) << "row 3 is at the top";
    EXPECT_EQ(canvas.Count({0, 3 * Record().cyChar, 100, 300}, host::Canvas::Untouched),
              100 * (300 - 3 * Record().cyChar));
}

TEST_F(Painting, ScrollbackIsPaintedAsTheScreenIs) {
    SetScrollRows(object, 4);
    ColorRowWith(-2, 0x2F);
    ColorRowWith(-1, 0x4F);
    ColorRowWith(0, 0x5F);
    object.ShowScreen();
    Record().nTopRow = -2;
    Select(-1, 0, -1, 1);
    Paint(-2, 3);
    EXPECT_TRUE(canvas.IsAll(Area(0, 0), Color(2)));
    EXPECT_TRUE(canvas.IsAll(Area(0, 1), Color(0xB))) << "selected";
    EXPECT_TRUE(canvas.IsAll(Area(1, 1), Color(4)));
    EXPECT_TRUE(canvas.IsAll(Area(0, 2), Color(5)));
}

TEST_F(Painting, LeftColumnMovesTheRows) {
    ColorRowWith(0, 0x2F);
    object.PutColors(0, 0, {0x4F, 0x4F, 0x4F});
    Record().nLeftColumn = 2;
    Paint();
    EXPECT_TRUE(canvas.IsAll(Area(0, 0), Color(4)));
    EXPECT_TRUE(canvas.IsAll(Area(1, 0), Color(2)));
}

TEST_F(Painting, WithoutPlanesItIsWhite) {
    SetEmulation(object, Emulation_None);
    SetColumns(object, columns); // lets the planes go
    const SIZE window = {GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON)};
    Paint();
    EXPECT_TRUE(canvas.IsAll({0, 0, window.cx, window.cy}, Color(15)));
    EXPECT_TRUE(canvas.IsAll({window.cx, 0, 200, 100}, host::Canvas::Untouched));
}

TEST_F(Painting, WithoutAnEmulationThereIsOnlyTheIcon) {
    ColorRowWith(0, 0x2F);
    SetEmulation(object, Emulation_None);
    SendMessageA(object, WM_PAINT, reinterpret_cast<WPARAM>(static_cast<HDC>(canvas)), 0);
    const RECT icon = {0, 0, GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON)};
    EXPECT_LT(canvas.Count(icon, host::Canvas::Untouched), icon.right * icon.bottom);
    EXPECT_FALSE(canvas.IsAll(icon, Color(15)));
    EXPECT_TRUE(canvas.IsAll({icon.right, 0, 200, 100}, host::Canvas::Untouched));
}

TEST_F(Painting, ContextThatComesWithThePaintMessageIsPainted) {
    ColorRowWith(0, 0x2F);
    ColorRowWith(rows - 1, 0x4F);
    SendMessageA(object, WM_PAINT, reinterpret_cast<WPARAM>(static_cast<HDC>(canvas)), 0);
    EXPECT_TRUE(canvas.IsAll(Area(0, 0), Color(2)));
    EXPECT_TRUE(canvas.IsAll(Area(0, rows - 1), Color(4)));
    EXPECT_TRUE(canvas.IsAll(Area(0, rows), Color(4)));
}

TEST_F(Painting, FontOfTheContextIsRestored) {
    const HGDIOBJ font = GetCurrentObject(canvas, OBJ_FONT);
    Paint();
    EXPECT_EQ(GetCurrentObject(canvas, OBJ_FONT), font);
}

TEST_F(Painting, RunsOfAProportionalFontArePlacedByMeasure) {
    const HGDIOBJ font = GetStockObject(ANSI_VAR_FONT);
    SendMessageA(object, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    object.PutText(0, 0, "iiii");
    ColorRowWith(0, 0x2F);
    object.PutColors(0, 0, std::vector<BYTE>(4, 0x4F));
    SIZE wide = {}, narrow = {};
    const HGDIOBJ before = SelectObject(canvas, font);
    GetTextExtentPoint32A(canvas, "MMMM", 4, &wide);
    GetTextExtentPoint32A(canvas, "iiii", 4, &narrow);
    SelectObject(canvas, before);
    ASSERT_LT(narrow.cx, wide.cx) << "the font isn't proportional";
    Paint();
    EXPECT_TRUE(canvas.Has({narrow.cx - 1, 0, narrow.cx, Record().cyChar}, Color(4)));
    EXPECT_TRUE(canvas.IsAll({narrow.cx, 0, narrow.cx + 4, Record().cyChar}, Color(2)));
}

TEST_F(Painting, AbsurdFieldsAreSurvived) {
    const struct {
        const char* name;
        int COMCTL::*field;
        int value;
    } absurd[] = {
        {"top row", &COMCTL::nTopRow, -1000000},
        {"top row", &COMCTL::nTopRow, INT_MAX},
        {"top row", &COMCTL::nTopRow, INT_MIN},
        {"left column", &COMCTL::nLeftColumn, INT_MAX},
        {"left column", &COMCTL::nLeftColumn, -100},
        {"height", &COMCTL::cyChar, 0},
        {"width", &COMCTL::cxChar, 0},
        {"width", &COMCTL::cxChar, INT_MAX},
        {"visible", &COMCTL::nVisibleRows, INT_MAX},
        {"start", &COMCTL::nSelStartRow, INT_MIN},
        {"end", &COMCTL::nSelEndRow, INT_MAX},
        {"end column", &COMCTL::nSelEndColumn, INT_MAX},
        {"start column", &COMCTL::nSelStartColumn, INT_MIN},
        {"filter", &COMCTL::nColorFilter, 77},
    };
    for (const auto& row : absurd) {
        SCOPED_TRACE(row.name);
        const int before = Record().*row.field;
        Record().*row.field = row.value;
        Paint();
        Paint(INT_MIN, INT_MAX);
        Paint(INT_MAX, INT_MAX);
        Paint(-5, -5);
        SendMessageA(object, WM_PAINT, reinterpret_cast<WPARAM>(static_cast<HDC>(canvas)), 0);
        Record().*row.field = before;
    }
    canvas.Clear();
    Paint();
    EXPECT_FALSE(canvas.Has(Area(0, 0), host::Canvas::Untouched)) << "and it still paints";
}

TEST_F(Painting, DirtyRowsAreCleanAfterTheRequest) {
    ServeRequest();
    Record().nCursorRow = 3;
    TerminalPrintString(object, "x");
    EXPECT_EQ(Record().bRepaintPosted, 1);
    EXPECT_NE(Record().nDirtyFirst, Record().nDirtyLast);
    ServeRequest();
    EXPECT_EQ(Record().bRepaintPosted, 0);
    EXPECT_EQ(Record().nDirtyFirst, 0);
    EXPECT_EQ(Record().nDirtyLast, 0);
}

TEST_F(Painting, RequestThatComesTooSoonIsServedByATimer) {
    ServeRequest();
    Record().dwLastPaint = GetTickCount();
    TerminalPrintString(object, "x");
    SendMessageA(object, RepaintMessage, 0, 0);
    EXPECT_EQ(Record().bRepaintPosted, 1) << "no second request meanwhile";
    EXPECT_NE(Record().nDirtyFirst, Record().nDirtyLast);
    EXPECT_TRUE(host::PumpUntil([&] { return Record().nDirtyFirst == Record().nDirtyLast; }));
    EXPECT_EQ(Record().bRepaintPosted, 0);
}

TEST_F(Painting, ManyDirtyRowsArePaintedAtOnceUnlessAFrameWasAMomentAgo) {
    ServeRequest();
    Record().dwLastPaint = GetTickCount();
    TerminalPrintString(object, "\033[H\033[J");
    EXPECT_EQ(Record().nDirtyLast - Record().nDirtyFirst, rows);
    Record().dwLastPaint = GetTickCount() - 1000;
    TerminalPrintString(object, "\033[H\033[J");
    EXPECT_EQ(Record().nDirtyLast, Record().nDirtyFirst);
}

TEST_F(Painting, RequestWithoutAnEmulationLeavesTheRowsDirty) {
    ServeRequest();
    SetEmulation(object, Emulation_None);
    Record().nDirtyFirst = 1;
    Record().nDirtyLast = 2;
    Record().bRepaintPosted = 1;
    ServeRequest();
    EXPECT_EQ(Record().bRepaintPosted, 0);
    EXPECT_EQ(Record().nDirtyLast, 2);
}

int RepaintMessagesIn(HWND hWnd) {
    int count = 0;
    MSG message;
    while (PeekMessageA(&message, hWnd, RepaintMessage, RepaintMessage, PM_REMOVE))
        ++count;
    return count;
}

TEST_F(Painting, OneRequestStandsInTheQueue) {
    ServeRequest();
    RepaintMessagesIn(object);
    for (int i = 0; i < 10; ++i)
        TerminalPrintString(object, "x");
    EXPECT_EQ(RepaintMessagesIn(object), 1);
}

TEST_F(Painting, MovesOfThePictureAreMerged) {
    ServeRequest();
    Record().nCursorRow = rows - 1;
    ScrollPictureUp(Record());
    EXPECT_EQ(Record().nDirtyFirst, rows - 1);
    EXPECT_EQ(Record().nDirtyLast, rows);
    ScrollPictureUp(Record());
    EXPECT_EQ(Record().nPictureScroll, 2);
    EXPECT_EQ(Record().nDirtyFirst, rows - 2) << "the dirty row has moved along";
    EXPECT_EQ(Record().nDirtyLast, rows);
    for (int i = 0; i < 20; ++i)
        ScrollPictureUp(Record());
    EXPECT_EQ(Record().nDirtyFirst, 0);
    ServeRequest();
    EXPECT_EQ(Record().nPictureScroll, 0);
    EXPECT_EQ(Record().nDirtyLast, 0);
}

TEST_F(Painting, DirtyRowThatHasGoneToAShownScrollbackStaysDirty) {
    SetScrollRows(object, 10);
    Record().nTopRow = -4;
    Record().nDirtyFirst = 1;
    Record().nDirtyLast = 2;
    for (int i = 0; i < 3; ++i)
        ScrollPictureUp(Record());
    EXPECT_EQ(Record().nDirtyFirst, -2);
}

TEST_F(Painting, HostsPaintingComesAfterTheMove) {
    ScrollPictureUp(Record());
    Paint();
    EXPECT_EQ(Record().nPictureScroll, 0);
}

TEST_F(Painting, PaintMessageTakesThePlaceOfAMove) {
    ScrollPictureUp(Record());
    SendMessageA(object, WM_PAINT, 0, 0);
    EXPECT_EQ(Record().nPictureScroll, 0);
}

} // namespace
