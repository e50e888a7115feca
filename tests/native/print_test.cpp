// The print routine, in which every emulation ends.
#include "caseprint.h"
#include "terminal/emulations.h"
#include "terminalscreen.h"

namespace {

const std::string nul(1, '\0');

// A small screen that takes bytes as they are.
constexpr TerminalShape smallScreen = {Emulation_TTY, 8, 4, 0};
constexpr TerminalShape wideScreen = {Emulation_TTY, 20, 4, 0};

struct ControlCase {
    const char* name;
    TerminalShape shape;
    std::string bytes;
    CursorPlace cursor;
    int wrapPending;
    std::vector<std::string> rows;
};

class PrintControl : public testing::TestWithParam<ControlCase> {};

TEST_P(PrintControl, FollowsTheTable) {
    const ControlCase& row = GetParam();
    TerminalScreen screen(row.shape);
    screen.Feed(row.bytes);
    EXPECT_EQ(screen.Cursor(), row.cursor);
    EXPECT_EQ(screen.Record().bWrapPending, row.wrapPending);
    EXPECT_EQ(screen.Rows(), row.rows);
    EXPECT_TRUE(screen.PictureIsRight());
}

const ControlCase controlCases[] = {
    {"BellIsDropped", smallScreen, "ab\ac", {0, 3}, 0, {"abc", "", "", ""}},
    {"BellKeepsAPendingWrap", smallScreen, "12345678\a", {0, 7}, 1, {"12345678", "", "", ""}},
    {"NulIsDropped", smallScreen, "ab" + nul + "c", {0, 3}, 0, {"abc", "", "", ""}},
    {"NulAtTheEndOfARun", smallScreen, "ab" + nul, {0, 2}, 0, {"ab", "", "", ""}},
    {"NulAlone", smallScreen, nul, {0, 0}, 0, {"", "", "", ""}},
    {"NulKeepsAPendingWrap", smallScreen, "12345678" + nul, {0, 7}, 1, {"12345678", "", "", ""}},
    {"BackspaceMovesOnly", smallScreen, "abc\b", {0, 2}, 0, {"abc", "", "", ""}},
    {"BackspaceInTheFirstColumn", smallScreen, "a\r\b", {0, 0}, 0, {"a", "", "", ""}},
    {"BackspaceEndsAPendingWrap", smallScreen, "12345678\bx", {0, 7}, 0, {"123456x8", "", "", ""}},
    {"TabFromTheFirstColumn", wideScreen, "\tx", {0, 9}, 0, {"        x", "", "", ""}},
    {"TabBeforeAStop", wideScreen, "1234567\t", {0, 8}, 0, {"1234567", "", "", ""}},
    {"TabOnAStopMovesAWholeEight", wideScreen, "12345678\t", {0, 16}, 0, {"12345678", "", "", ""}},
    {"TabStopsAtTheLastColumn", wideScreen, "\t\t\t", {0, 19}, 0, {"", "", "", ""}},
    {"TabInTheLastColumn", wideScreen, "\t\t\t\tx", {0, 19}, 1, {"                   x", "", "", ""}},
    {"TabErasesNothing", wideScreen, "abcdefghij\r\tX", {0, 9}, 0, {"abcdefghXj", "", "", ""}},
    {"TabEndsAPendingWrap", smallScreen, "12345678\tx", {0, 7}, 1, {"1234567x", "", "", ""}},
    {"LineFeedKeepsTheColumn", smallScreen, "ab\nc", {1, 3}, 0, {"ab", "  c", "", ""}},
    {"LineFeedEndsAPendingWrap", smallScreen, "12345678\n", {1, 7}, 0, {"12345678", "", "", ""}},
    {"LineFeedOnTheLastRowScrolls", smallScreen, "a\n\n\nb\nc", {3, 3}, 0, {"", "", " b", "  c"}},
    {"CarriageReturn", smallScreen, "abc\rX", {0, 1}, 0, {"Xbc", "", "", ""}},
    {"CarriageReturnEndsAPendingWrap", smallScreen, "12345678\rX", {0, 1}, 0, {"X2345678", "", "", ""}},
    {"TextAsWideAsTheScreenGivesNoBlankLine",
     smallScreen,
     "12345678\r\nab",
     {1, 2},
     0,
     {"12345678", "ab", "", ""}},
    {"FormFeedClearsAndGoesHome", smallScreen, "abc\r\ndef\fg", {0, 1}, 0, {"g", "", "", ""}},
    {"FormFeedEndsAPendingWrap", smallScreen, "12345678\f", {0, 0}, 0, {"", "", "", ""}},
    {"ShiftInIsDropped",
     smallScreen,
     "a\x0F"
     "b",
     {0, 2},
     0,
     {"ab", "", "", ""}},
    {"ShiftOutIsDropped",
     smallScreen,
     "a\x0E"
     "q",
     {0, 2},
     0,
     {"aq", "", "", ""}},
    {"ShiftsKeepAPendingWrap", smallScreen, "12345678\x0E\x0F", {0, 7}, 1, {"12345678", "", "", ""}},
    {"EscapeIsAGlyph", smallScreen, "\x1B[A", {0, 3}, 0, {"\x1B[A", "", "", ""}},
    {"WrapWaitsForTheNextGlyph", smallScreen, "123456789", {1, 1}, 0, {"12345678", "9", "", ""}},
    {"WrapOnTheLastRowScrolls", smallScreen, "\n\n\nABCDEFGHI", {3, 1}, 0, {"", "", "ABCDEFGH", "I"}},
    {"TwoRowsAtOnce", smallScreen, "1234567812345678", {1, 7}, 1, {"12345678", "12345678", "", ""}},
    {"NothingAtAll", smallScreen, "", {0, 0}, 0, {"", "", "", ""}},
};

RUN_TABLE(PrintControl, controlCases);

TEST(Print, AllBytesButTheControlsOfTheTableAreGlyphs) {
    const std::string controls = nul + "\a\b\t\n\f\r\x0E\x0F";
    TerminalScreen screen({Emulation_TTY, 4, 2, 0});
    for (int byte = 0; byte < 256; ++byte) {
        if (controls.find(static_cast<char>(byte)) != std::string::npos)
            continue;
        screen.Feed("\f");
        screen.Feed(std::string(1, static_cast<char>(byte)));
        EXPECT_EQ(screen.Cells(0)[0], static_cast<char>(byte)) << byte;
        EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 1})) << byte;
    }
}

TEST(Print, DestructiveBackspaceErasesTheCharacterAndKeepsTheColor) {
    TerminalScreen screen(smallScreen);
    screen.Record().nBackspace = 0;
    screen.Record().nColor = 0x2E;
    screen.Feed("abc");
    screen.Record().nColor = 0x4F;
    screen.Feed("\b");
    EXPECT_EQ(screen.Row(0), "ab");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 2}));
    EXPECT_EQ(screen.ColorAt(0, 2), 0x2E);
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Print, DestructiveBackspaceInTheFirstColumnErasesNothing) {
    TerminalScreen screen(smallScreen);
    screen.Record().nBackspace = 0;
    screen.Feed("abc\r\b");
    EXPECT_EQ(screen.Row(0), "abc");
}

TEST(Print, DestructiveBackspaceWithAPendingWrapErasesTheCellBeforeTheLast) {
    TerminalScreen screen(smallScreen);
    screen.Record().nBackspace = 0;
    screen.Feed("12345678\b");
    EXPECT_EQ(screen.Cells(0), "123456 8");
    EXPECT_EQ(screen.Record().bWrapPending, 0);
}

// Line drawing

struct LineDrawCase {
    const char* name;
    char letter;
    int glyph;
};

class PrintLineDraw : public testing::TestWithParam<LineDrawCase> {};

TEST_P(PrintLineDraw, FollowsTheTable) {
    TerminalScreen screen({Emulation_VT100, 8, 4, 0});
    screen.Feed("\x0E");
    screen.Feed({&GetParam().letter, 1});
    screen.Feed("\x0F");
    screen.Feed({&GetParam().letter, 1});
    EXPECT_EQ(static_cast<BYTE>(screen.Cells(0)[0]), GetParam().glyph);
    EXPECT_EQ(screen.Cells(0)[1], GetParam().letter);
}

const LineDrawCase lineDrawCases[] = {
    {"Shade", 'a', 177},
    {"LowerRight", 'j', 217},
    {"UpperRight", 'k', 191},
    {"UpperLeft", 'l', 218},
    {"LowerLeft", 'm', 192},
    {"Cross", 'n', 197},
    {"Horizontal", 'q', 196},
    {"TeeRight", 't', 195},
    {"TeeLeft", 'u', 180},
    {"TeeUp", 'v', 193},
    {"TeeDown", 'w', 194},
    {"Vertical", 'x', 179},
    {"LessForLessOrEqual", 'y', '<'},
    {"GreaterForGreaterOrEqual", 'z', '>'},
};

RUN_TABLE(PrintLineDraw, lineDrawCases);

TEST(Print, LineDrawingLeavesAllOtherBytes) {
    std::string drawn;
    for (const LineDrawCase& row : lineDrawCases)
        drawn += row.letter;
    TerminalScreen screen({Emulation_TTY, 4, 2, 0});
    for (int byte = 32; byte < 256; ++byte) {
        if (drawn.find(static_cast<char>(byte)) != std::string::npos)
            continue;
        screen.Record().bLineDraw = 1;
        screen.Place(0, 0);
        screen.Feed(std::string(1, static_cast<char>(byte)));
        EXPECT_EQ(screen.Cells(0)[0], static_cast<char>(byte)) << byte;
    }
}

struct ShiftCase {
    const char* name;
    int emulation;
    int afterShiftOut;
};

class PrintShift : public testing::TestWithParam<ShiftCase> {};

TEST_P(PrintShift, OutWorksUnderVt100AloneAndInEverywhere) {
    TerminalScreen screen({GetParam().emulation, 8, 4, 0});
    screen.Feed("\x0E");
    EXPECT_EQ(screen.Record().bLineDraw, GetParam().afterShiftOut);
    screen.Record().bLineDraw = 1;
    screen.Feed("\x0F");
    EXPECT_EQ(screen.Record().bLineDraw, 0);
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 0}));
}

const ShiftCase shiftCases[] = {
    {"Tty", Emulation_TTY, 0},
    {"Ansi", Emulation_Ansi, 0},
    {"Vt52", Emulation_VT52, 0},
    {"Vt100", Emulation_VT100, 1},
};

RUN_TABLE(PrintShift, shiftCases);

// The map

TEST(Print, MapTranslatesBehindLineDrawing) {
    TerminalScreen screen(smallScreen);
    screen.Record().abCharMap['a'] = 'b';
    screen.Record().abCharMap[196] = '-';
    screen.Feed("aq");
    screen.Record().bLineDraw = 1;
    screen.Feed("q");
    EXPECT_EQ(screen.Row(0), "bq-");
}

TEST(Print, BytesThatTheMapMakesNulOrBellAreDropped) {
    TerminalScreen screen(smallScreen);
    screen.Record().abCharMap['a'] = 0;
    screen.Record().abCharMap['b'] = 7;
    screen.Feed("1ab2");
    EXPECT_EQ(screen.Row(0), "12");
    screen.Feed("345678ab");
    EXPECT_EQ(screen.Record().bWrapPending, 1);
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 7}));
    EXPECT_EQ(screen.Row(0), "12345678");
}

TEST(Print, MapDoesNotReachControlCharacters) {
    TerminalScreen screen(smallScreen);
    screen.Record().abCharMap['\r'] = 'x';
    screen.Record().abCharMap['c'] = '\r';
    screen.Feed("ab\rc");
    EXPECT_EQ(screen.Row(0), "\rb");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 1}));
}

// Colours

TEST(Print, CellsTakeTheColorOfTheMoment) {
    TerminalScreen screen(smallScreen);
    screen.Record().nColor = 0x2E;
    screen.Feed("a");
    screen.Record().nColor = 0x4F;
    screen.Feed("b");
    EXPECT_EQ(screen.ColorAt(0, 0), 0x2E);
    EXPECT_EQ(screen.ColorAt(0, 1), 0x4F);
    EXPECT_EQ(screen.ColorAt(0, 2), 0x1F);
}

TEST(Print, ReverseSwapsTheNibbles) {
    TerminalScreen screen(smallScreen);
    screen.Record().nColor = 0x2E;
    screen.Record().bReverse = 1;
    screen.Feed("a");
    EXPECT_EQ(screen.ColorAt(0, 0), 0xE2);
    EXPECT_EQ(screen.Record().nColor, 0x2E);
}

TEST(Print, ErasedCellsAreNeverReversed) {
    TerminalScreen screen(smallScreen);
    screen.Record().nColor = 0x2E;
    screen.Record().bReverse = 1;
    screen.Feed("\f");
    EXPECT_EQ(screen.ColorAt(0, 0), 0x2E);
    screen.Feed("\n\n\n\n");
    EXPECT_EQ(screen.ColorAt(3, 0), 0x2E);
}

// The end of a row

struct EndOfLineCase {
    const char* name;
    int mode;
    int startRow;
    std::string bytes;
    CursorPlace cursor;
    int wrapPending;
    std::vector<std::string> rows;
};

class PrintEndOfLine : public testing::TestWithParam<EndOfLineCase> {};

TEST_P(PrintEndOfLine, FollowsTheTable) {
    const EndOfLineCase& row = GetParam();
    TerminalScreen screen({Emulation_TTY, 4, 3, 0});
    screen.Record().nEndOfLineMode = row.mode;
    screen.Place(row.startRow, 0);
    screen.Feed(row.bytes);
    EXPECT_EQ(screen.Cursor(), row.cursor);
    EXPECT_EQ(screen.Record().bWrapPending, row.wrapPending);
    EXPECT_EQ(screen.Rows(), row.rows);
    EXPECT_TRUE(screen.PictureIsRight());
}

const EndOfLineCase endOfLineCases[] = {
    {"NextLineWaits", EndOfLineMode_NextLine, 0, "1234", {0, 3}, 1, {"1234", "", ""}},
    {"NextLineGoesOn", EndOfLineMode_NextLine, 0, "12345", {1, 1}, 0, {"1234", "5", ""}},
    {"NextLineScrolls", EndOfLineMode_NextLine, 2, "12345", {2, 1}, 0, {"", "1234", "5"}},
    {"DoNothingStays", EndOfLineMode_DoNothing, 0, "1234", {0, 3}, 0, {"1234", "", ""}},
    {"DoNothingOverwritesTheLastCell", EndOfLineMode_DoNothing, 0, "123456", {0, 3}, 0, {"1236", "", ""}},
    {"DoNothingOnTheLastRow", EndOfLineMode_DoNothing, 2, "123456", {2, 3}, 0, {"", "", "1236"}},
    {"WrapLineOverwritesTheLine", EndOfLineMode_WrapLine, 0, "123456", {0, 2}, 0, {"5634", "", ""}},
    {"WrapLineAtTheEdge", EndOfLineMode_WrapLine, 1, "1234", {1, 0}, 0, {"", "1234", ""}},
    {"WrapLineOnTheLastRowGoesToTheFirst",
     EndOfLineMode_WrapLine,
     2,
     "123456",
     {0, 2},
     0,
     {"56", "", "1234"}},
    {"WrapScreenGoesDown", EndOfLineMode_WrapScreen, 0, "123456", {1, 2}, 0, {"1234", "56", ""}},
    {"WrapScreenOnTheLastRowGoesToTheFirst",
     EndOfLineMode_WrapScreen,
     2,
     "123456",
     {0, 2},
     0,
     {"56", "", "1234"}},
    {"WrapScreenNeverScrolls",
     EndOfLineMode_WrapScreen,
     0,
     "1234abcdABCDx",
     {0, 1},
     0,
     {"x234", "abcd", "ABCD"}},
    {"UnknownModeLosesText", 4, 0, "123456", {0, 4}, 0, {"1234", "", ""}},
    {"NegativeModeLosesText", -1, 0, "123456", {0, 4}, 0, {"1234", "", ""}},
    {"UnknownModeUntilTheCursorMoves", 4, 0, "123456\rab", {0, 2}, 0, {"ab34", "", ""}},
    {"UnknownModeBackspaceMovesIn", 4, 0, "123456\bx", {0, 4}, 0, {"123x", "", ""}},
    {"UnknownModeTabMovesIn", 4, 0, "123456\tx", {0, 4}, 0, {"123x", "", ""}},
    {"UnknownModeLineFeedKeepsTheColumn", 4, 0, "123456\nx", {1, 4}, 0, {"1234", "", ""}},
};

RUN_TABLE(PrintEndOfLine, endOfLineCases);

TEST(Print, CursorThatAnUnknownModeLeftOutsideFollowsTheNextMode) {
    TerminalScreen screen({Emulation_TTY, 4, 3, 0});
    screen.Record().nEndOfLineMode = 9;
    screen.Feed("1234");
    screen.Record().nEndOfLineMode = EndOfLineMode_NextLine;
    screen.Feed("5");
    EXPECT_EQ(screen.Row(0), "1234") << "the byte is lost";
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 3}));
    EXPECT_EQ(screen.Record().bWrapPending, 1);
    screen.Feed("6");
    EXPECT_EQ(screen.Row(1), "6");
}

TEST(Print, ScreenOfOneColumn) {
    TerminalScreen screen({Emulation_TTY, 1, 3, 0});
    screen.Feed("a\bb");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"b", "", ""})) << "a backspace ends the wrap";
    screen.Feed("cd");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"b", "c", "d"}));
    screen.Feed("\te");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"b", "c", "e"}));
}

TEST(Print, ScreenOfOneCell) {
    TerminalScreen screen({Emulation_TTY, 1, 1, 2});
    screen.Feed("abc");
    EXPECT_EQ(screen.Row(0), "c");
    EXPECT_EQ(screen.History(), (std::vector<std::string>{"a", "b"}));
}

// Line feeds and a scroll region

struct RegionCase {
    const char* name;
    CursorPlace start;
    std::string bytes;
    CursorPlace cursor;
    std::vector<std::string> rows;
};

class PrintRegion : public testing::TestWithParam<RegionCase> {};

TEST_P(PrintRegion, FollowsTheTable) {
    const RegionCase& row = GetParam();
    TerminalScreen screen({Emulation_TTY, 2, 7, 0});
    screen.Fill();
    screen.Record().nScrollTop = 2;
    screen.Record().nScrollBottom = 4;
    screen.Place(row.start.row, row.start.column);
    screen.Feed(row.bytes);
    EXPECT_EQ(screen.Cursor(), row.cursor);
    EXPECT_EQ(screen.Rows(), row.rows);
    EXPECT_TRUE(screen.PictureIsRight());
}

const RegionCase regionCases[] = {
    {"AboveTheRegionGoesDown", {0, 0}, "\n", {1, 0}, {"aa", "bb", "cc", "dd", "ee", "ff", "gg"}},
    {"IntoTheRegion", {1, 0}, "\n", {2, 0}, {"aa", "bb", "cc", "dd", "ee", "ff", "gg"}},
    {"StopsARowAboveTheBottom", {3, 1}, "\n", {3, 1}, {"aa", "bb", "dd", "ee", "", "ff", "gg"}},
    {"OnTheBottomRow", {4, 0}, "\n", {4, 0}, {"aa", "bb", "dd", "ee", "", "ff", "gg"}},
    {"BelowTheRegionScrollsItAndStays", {6, 0}, "\n", {6, 0}, {"aa", "bb", "dd", "ee", "", "ff", "gg"}},
    {"WrapDoesNotStopAtTheBottom", {4, 0}, "123", {5, 1}, {"aa", "bb", "cc", "dd", "12", "3f", "gg"}},
    {"WrapOnTheLastRowScrollsTheRegion", {6, 0}, "123", {6, 1}, {"aa", "bb", "dd", "ee", "", "ff", "32"}},
};

RUN_TABLE(PrintRegion, regionCases);

TEST(Print, RegionWhoseBottomIsTheFirstRowIsNoneForALineFeed) {
    TerminalScreen screen({Emulation_TTY, 2, 4, 0});
    screen.Fill();
    screen.Record().nScrollTop = 2; // and bottom 0
    screen.Feed("\n\n\n");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{3, 0}));
    screen.Feed("\n");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"", "bb", "cc", "dd"}))
        << "only its last row is blanked";
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Print, LineFeedStaysOnAScreenThatHasShrunkOutOfItsRegion) {
    TerminalScreen screen({Emulation_TTY, 2, 7, 0});
    screen.Record().nScrollTop = 1;
    screen.Record().nScrollBottom = 5;
    ResizeTerminal(screen.Record(), 2, 3);
    screen.Fill();
    screen.Feed("\n\n\n");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 0}));
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"aa", "cc", ""}));
    EXPECT_TRUE(screen.PictureIsRight());
}

// The routine alone

TEST(Print, WithoutPlanesNothingHappens) {
    TerminalScreen screen({Emulation_None, 8, 4, 0});
    TerminalPrint(screen.Record(), "abc", 3);
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 0}));
    EXPECT_TRUE(screen.world.journal.empty());
}

TEST(Print, NoBytesMarkNothing) {
    TerminalScreen screen(smallScreen);
    TerminalPrint(screen.Record(), "abc", 0);
    EXPECT_TRUE(screen.world.journal.empty());
    EXPECT_EQ(screen.Row(0), "");
}

TEST(Print, GlyphMarksItsRowAndAsksForOneRepaint) {
    TerminalScreen screen(smallScreen);
    screen.Place(2, 0);
    TerminalPrint(screen.Record(), "abc", 3);
    EXPECT_EQ(screen.Record().nDirtyFirst, 2);
    EXPECT_EQ(screen.Record().nDirtyLast, 3);
    TerminalPrint(screen.Record(), "def", 3);
    EXPECT_EQ(screen.world.journal, std::vector<std::string>{"post"});
}

} // namespace
