// The screen: its planes, sizes, cursor, scrollback and dirty rows, and the switch between emulations.
#include "caseprint.h"
#include "platform.h"
#include "terminal/caret.h"
#include "terminalscreen.h"

namespace {

using Rows = std::vector<std::string>;

constexpr TerminalShape small = {Emulation_TTY, 4, 3, 0};

TEST(Screen, Defaults) {
    COMCTL record;
    EXPECT_EQ(record.nColumns, 80);
    EXPECT_EQ(record.nRows, 25);
    EXPECT_EQ(record.nColor, 0x1F);
    EXPECT_EQ(record.nSavedColor, 7);
    EXPECT_EQ(record.nEmulation, Emulation_None);
    EXPECT_EQ(record.nScrollRows, 0);
    EXPECT_EQ(record.bKeypadNumeric, 1);
    EXPECT_EQ(record.nBackspace, 1);
    EXPECT_EQ(record.hCaptureFile, HFILE_ERROR);
    EXPECT_FALSE(record.lpText);
    EXPECT_FALSE(record.lpScrollText);
}

// Sizes

struct SizeCase {
    const char* name;
    int columns;
    int rows;
    ResizeResult result;
};

class ScreenSize : public testing::TestWithParam<SizeCase> {};

TEST_P(ScreenSize, IsTakenOrRefusedAndClearsTheSelection) {
    const SizeCase& row = GetParam();
    TerminalScreen screen({Emulation_Ansi, 10, 10, 0});
    COMCTL& record = screen.Record();
    screen.Fill();
    constexpr int COMCTL::*selection[] = {&COMCTL::nSelStartRow,  &COMCTL::nSelStartColumn,
                                          &COMCTL::nSelEndRow,    &COMCTL::nSelEndColumn,
                                          &COMCTL::nSelAnchorRow, &COMCTL::nSelAnchorColumn};
    for (const auto field : selection)
        record.*field = 3;
    EXPECT_EQ(ResizeTerminal(record, row.columns, row.rows), row.result);
    for (const auto field : selection)
        EXPECT_EQ(record.*field, 0);
    const bool done = row.result == ResizeResult::Done;
    EXPECT_EQ(record.nColumns, done ? row.columns : 10);
    EXPECT_EQ(record.nRows, done ? row.rows : 10);
    EXPECT_EQ(screen.world.journal, done ? (Rows{"erase all", "scroll bars"}) : Rows());
    EXPECT_EQ(screen.Row(0), std::string(static_cast<size_t>(std::min(record.nColumns, 10)), 'a'));
}

const SizeCase sizeCases[] = {
    {"Larger", 20, 20, ResizeResult::Done},
    {"TheSame", 10, 10, ResizeResult::Done},
    {"OneCell", 1, 1, ResizeResult::Done},
    {"OneRow", 65534, 1, ResizeResult::Done},
    {"OneColumn", 1, 65534, ResizeResult::Done},
    {"MostCells", 2, 32767, ResizeResult::Done},
    {"OneCellTooMany", 255, 257, ResizeResult::Refused},
    {"OneColumnTooMany", 65535, 1, ResizeResult::Refused},
    {"NoColumns", 0, 10, ResizeResult::Refused},
    {"NoRows", 10, 0, ResizeResult::Refused},
    {"NegativeColumns", -1, 10, ResizeResult::Refused},
    {"NegativeRows", 10, -1, ResizeResult::Refused},
    {"BothNegative", -10, -10, ResizeResult::Refused},
    {"ProductBeyondNumbers", 65536, 65536, ResizeResult::Refused},
    {"LargestNumbers", INT_MAX, INT_MAX, ResizeResult::Refused},
};

RUN_TABLE(ScreenSize, sizeCases);

TEST(Screen, ShrinkingKeepsTheTopLeft) {
    TerminalScreen screen({Emulation_TTY, 4, 3, 2});
    screen.Feed("old1\r\nold2\r\nabcd\r\nefgh\r\nijkl");
    ResizeTerminal(screen.Record(), 2, 2);
    EXPECT_EQ(screen.Rows(), (Rows{"ab", "ef"}));
    EXPECT_EQ(screen.History(), (Rows{"ol", "ol"}));
    EXPECT_EQ(screen.Cursor(), (CursorPlace{1, 1}));
    EXPECT_EQ(screen.Record().bWrapPending, 0);
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Screen, GrowingBlanksWhatIsNew) {
    TerminalScreen screen(small);
    screen.Feed("abcd\r\nefgh\r\nijkl");
    screen.Record().nColor = 0x4E;
    ResizeTerminal(screen.Record(), 6, 4);
    EXPECT_EQ(screen.Rows(), (Rows{"abcd", "efgh", "ijkl", ""}));
    EXPECT_EQ(screen.Colors(0), "\x1F\x1F\x1F\x1F\x4E\x4E");
    EXPECT_EQ(screen.Colors(3), "\x4E\x4E\x4E\x4E\x4E\x4E");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 3}));
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Screen, FewerRowsThroughTheFlatFunction) {
    TerminalScreen screen;
    screen.Fill();
    screen.Place(20, 5);
    SetRows(screen.Handle(), 10);
    EXPECT_EQ(GetRows(screen.Handle()), 10);
    EXPECT_EQ(GetColumns(screen.Handle()), 80);
    EXPECT_EQ(screen.Cursor(), (CursorPlace{9, 5}));
    EXPECT_EQ(screen.Row(0)[0], 'a');
    EXPECT_EQ(screen.Row(9)[0], 'j');
    SetColumns(screen.Handle(), 3);
    EXPECT_EQ(GetColumns(screen.Handle()), 3);
    EXPECT_EQ(GetRows(screen.Handle()), 10);
    EXPECT_EQ(screen.Row(9), "jjj");
}

TEST(Screen, ResizeKeepsTheOldestRowsOfTheScrollbackOnTop) {
    TerminalScreen screen({Emulation_TTY, 4, 1, 3});
    screen.Feed("aaaa\r\nbbbb\r\ncc\r\n");
    ResizeTerminal(screen.Record(), 3, 2);
    EXPECT_EQ(screen.History(), (Rows{"aaa", "bbb", "cc"}));
    ResizeTerminal(screen.Record(), 5, 2);
    EXPECT_EQ(screen.History(), (Rows{"aaa", "bbb", "cc"}));
    EXPECT_EQ(screen.Colors(-3), std::string("\x1F\x1F\x1F\0\0", 5));
}

TEST(Screen, ResizeLeavesRegionAndSavedCursor) {
    TerminalScreen screen({Emulation_Ansi, 10, 10, 0});
    screen.Feed("\033[8;9H\033[s\033[5;9r");
    ResizeTerminal(screen.Record(), 4, 3);
    EXPECT_EQ(screen.Record().nScrollTop, 4);
    EXPECT_EQ(screen.Record().nScrollBottom, 8);
    EXPECT_EQ(screen.Record().nSavedRow, 7);
    EXPECT_EQ(screen.Record().nSavedColumn, 8);
}

TEST(Screen, NewPlanesResetTheSeparatorOfTheLookUp) {
    TerminalScreen screen(small);
    screen.Record().chLookUpSeparator = ',';
    ResizeTerminal(screen.Record(), 4, 3);
    EXPECT_EQ(screen.Record().chLookUpSeparator, ',') << "no new planes";
    ResizeTerminal(screen.Record(), 0, 3);
    EXPECT_EQ(screen.Record().chLookUpSeparator, ',') << "refused";
    ResizeTerminal(screen.Record(), 5, 3);
    EXPECT_EQ(screen.Record().chLookUpSeparator, '|');
}

TEST(Screen, WithoutEmulationOnlyNumbersAreStored) {
    TerminalScreen screen({Emulation_None, 4, 3, 2});
    EXPECT_EQ(ResizeTerminal(screen.Record(), 50, 20), ResizeResult::Done);
    EXPECT_EQ(screen.Record().nColumns, 50);
    EXPECT_EQ(screen.Record().nRows, 20);
    EXPECT_FALSE(screen.Record().lpText);
    EXPECT_FALSE(screen.Record().lpColor);
    EXPECT_FALSE(screen.Record().lpScrollText);
    EXPECT_FALSE(screen.Record().lpScrollColor);
}

TEST(Screen, ResizeAfterTheEmulationWasSwitchedOffFreesThePlanes) {
    TerminalScreen screen(small);
    SwitchEmulation(screen.Record(), Emulation_None);
    ASSERT_TRUE(screen.Record().lpText);
    ResizeTerminal(screen.Record(), 4, 3);
    EXPECT_FALSE(screen.Record().lpText);
    screen.Feed("abc");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 0}));
}

TEST(Screen, ResizeMakesAllRowsDirty) {
    TerminalScreen screen(small);
    ResizeTerminal(screen.Record(), 5, 7);
    EXPECT_EQ(screen.Record().nDirtyFirst, 0);
    EXPECT_EQ(screen.Record().nDirtyLast, 7);
}

// Memory

TEST(Screen, WithoutMemoryForTheScreenTheOldOneStays) {
    TerminalScreen screen({Emulation_TTY, 4, 3, 2});
    screen.Fill();
    screen.Record().nSelEndRow = 2;
    const platform::MemoryLimit none(100);
    EXPECT_EQ(ResizeTerminal(screen.Record(), 5, 3), ResizeResult::OutOfMemory);
    EXPECT_EQ(screen.Record().nColumns, 4);
    EXPECT_EQ(screen.Record().nSelEndRow, 0) << "the selection is cleared all the same";
    EXPECT_EQ(screen.Rows(), (Rows{"aaaa", "bbbb", "cccc"}));
    EXPECT_TRUE(screen.world.journal.empty());
}

TEST(Screen, WithoutMemoryForTheScrollbackTheResizeIsRefused) {
    TerminalScreen screen({Emulation_TTY, 4, 3, 5000});
    screen.Fill();
    screen.Record().chLookUpSeparator = ',';
    const platform::MemoryLimit limit(20000); // the screen's planes are smaller, the scrollback's larger
    EXPECT_EQ(ResizeTerminal(screen.Record(), 5, 3), ResizeResult::Refused);
    EXPECT_EQ(screen.Record().nColumns, 4);
    EXPECT_EQ(screen.Rows(), (Rows{"aaaa", "bbbb", "cccc"}));
    EXPECT_EQ(screen.Record().chLookUpSeparator, ',');
    screen.Feed("x");
    EXPECT_EQ(screen.Row(0), "xaaa");
}

TEST(Screen, WithoutMemoryAnEmulationIsOnWithoutPlanes) {
    TerminalScreen screen({Emulation_None, 4, 3, 0});
    {
        const platform::MemoryLimit none(100);
        SetEmulation(screen.Handle(), Emulation_Ansi);
    }
    EXPECT_EQ(GetEmulation(screen.Handle()), Emulation_Ansi);
    EXPECT_FALSE(screen.Record().lpText);
    screen.Feed("abc\033[2J");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 0}));
    ResizeTerminal(screen.Record(), 4, 3);
    screen.Feed("abc");
    EXPECT_EQ(screen.Row(0), "abc");
}

// The scrollback's size

TEST(Screen, ScrollRowsAreRebuiltAndLoseTheirText) {
    TerminalScreen screen({Emulation_TTY, 4, 1, 2});
    screen.Feed("a\r\nb\r\nc");
    EXPECT_EQ(SetScrollRows(screen.Handle(), 3), 0);
    EXPECT_EQ(GetScrollRows(screen.Handle()), 3);
    EXPECT_EQ(screen.History(), Rows(3));
    EXPECT_EQ(screen.Colors(-1), std::string(4, '\0'));
    EXPECT_EQ(screen.Row(0), "c");
    EXPECT_EQ(screen.world.journal.back(), "scroll bars");
}

TEST(Screen, UnchangedScrollRowsKeepTheirText) {
    TerminalScreen screen({Emulation_TTY, 4, 1, 2});
    screen.Feed("a\r\nb");
    screen.world.Forget();
    EXPECT_EQ(SetScrollRows(screen.Handle(), 2), 0);
    EXPECT_EQ(screen.History(), (Rows{"", "a"}));
    EXPECT_TRUE(screen.world.journal.empty());
}

TEST(Screen, NoScrollRows) {
    TerminalScreen screen({Emulation_TTY, 4, 1, 2});
    screen.Feed("a\r\nb");
    EXPECT_EQ(SetScrollRows(screen.Handle(), 0), 0);
    screen.Feed("\r\nc\fd");
    EXPECT_EQ(screen.Row(0), "d");
    EXPECT_EQ(GetScrollContentsLength(screen.Handle()), 0);
}

TEST(Screen, ScrollRowsWithoutMemory) {
    TerminalScreen screen({Emulation_TTY, 4, 1, 2});
    screen.Feed("a\r\nb");
    screen.world.Forget();
    const platform::MemoryLimit none(100);
    EXPECT_EQ(SetScrollRows(screen.Handle(), 1000), -1);
    EXPECT_EQ(GetScrollRows(screen.Handle()), 2);
    EXPECT_EQ(screen.History(), (Rows{"", "a"}));
    EXPECT_TRUE(screen.world.journal.empty());
}

TEST(Screen, NegativeScrollRowsAreNotToBeHad) {
    TerminalScreen screen({Emulation_TTY, 4, 1, 2});
    EXPECT_EQ(SetScrollRows(screen.Handle(), -1), -1);
    EXPECT_EQ(SetScrollRows(screen.Handle(), INT_MIN), -1);
    EXPECT_EQ(GetScrollRows(screen.Handle()), 2);
}

TEST(Screen, ScrollRowsBeforeTheEmulation) {
    TerminalScreen screen({Emulation_None, 4, 1, 0});
    EXPECT_EQ(SetScrollRows(screen.Handle(), 2), 0);
    EXPECT_TRUE(screen.Record().lpScrollText);
    SetEmulation(screen.Handle(), Emulation_TTY);
    screen.Feed("a\r\nb");
    EXPECT_EQ(screen.History(), (Rows{"", "a"}));
}

// The cursor

struct CursorCase {
    const char* name;
    int value;
    bool taken;
};

class ScreenCursor : public testing::TestWithParam<CursorCase> {};

TEST_P(ScreenCursor, IsStoredInItsRangeAndTheCaretFollowsInEitherCase) {
    TerminalScreen screen({Emulation_TTY, 10, 10, 0});
    screen.Place(3, 4);
    const auto [name, value, taken] = GetParam();
    SetCursorRow(screen.Handle(), value);
    EXPECT_EQ(GetCursorRow(screen.Handle()), taken ? value : 3);
    EXPECT_EQ(GetCursorColumn(screen.Handle()), 4);
    SetCursorColumn(screen.Handle(), value);
    EXPECT_EQ(GetCursorColumn(screen.Handle()), taken ? value : 4);
    EXPECT_EQ(screen.world.journal, (Rows{"caret", "caret"}));
}

const CursorCase cursorCases[] = {
    {"First", 0, true},      {"Last", 9, true},       {"OneBehind", 10, false},
    {"Negative", -1, false}, {"Far", INT_MAX, false},
};

RUN_TABLE(ScreenCursor, cursorCases);

TEST(Screen, ColorAndEndOfLineModeAreStoredUnchecked) {
    TerminalScreen screen(small);
    SetColor(screen.Handle(), 0x2E);
    EXPECT_EQ(GetColor(screen.Handle()), 0x2E);
    SetColor(screen.Handle(), -1);
    EXPECT_EQ(GetColor(screen.Handle()), -1);
    screen.Feed("a\f");
    EXPECT_EQ(screen.ColorAt(0, 0), 0xFF);
}

TEST(Screen, NoBytesDoNothing) {
    TerminalScreen screen(small);
    screen.Feed("");
    WriteTerminal(screen.Record(), "abc", -1);
    EXPECT_TRUE(screen.world.journal.empty());
    EXPECT_EQ(screen.Row(0), "");
}

// Scrolling

TEST(Screen, ScrollWithoutARegionMovesAllRows) {
    TerminalScreen screen({Emulation_TTY, 2, 3, 2});
    screen.Fill();
    screen.Record().nColor = 0x4E;
    ScrollScreen(screen.Record());
    EXPECT_EQ(screen.Rows(), (Rows{"bb", "cc", ""}));
    EXPECT_EQ(screen.Colors(2), "\x4E\x4E");
    EXPECT_EQ(screen.History(), (Rows{"", "aa"}));
    EXPECT_EQ(screen.Colors(-1), "\x1F\x1F");
    EXPECT_EQ(screen.Colors(-2), std::string(2, '\0'));
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Screen, EveryScrollInARegionCopiesTheFirstRowOfTheScreen) {
    TerminalScreen screen({Emulation_Ansi, 2, 12, 4});
    screen.Fill();
    screen.Feed("\033[6;11r");
    screen.Place(9, 0);
    screen.Feed("\n\n\n");
    EXPECT_EQ(screen.History(), (Rows{"", "aa", "aa", "aa"}));
    EXPECT_EQ(screen.Rows(), (Rows{"aa", "bb", "cc", "dd", "ee", "ii", "jj", "kk", "", "", "", "ll"}));
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Screen, ScrollAfterALoneBlankScreenOfOneRow) {
    TerminalScreen screen({Emulation_TTY, 3, 1, 2});
    screen.Feed("a\nb\nc");
    EXPECT_EQ(screen.Row(0), "  c");
    EXPECT_EQ(screen.History(), (Rows{"a", " b"}));
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Screen, ManyScrollsKeepEveryRow) {
    TerminalScreen screen({Emulation_TTY, 6, 4, 1000});
    for (int line = 0; line < 3000; ++line)
        screen.Feed(std::to_string(line) + "\r\n");
    EXPECT_EQ(screen.Rows(), (Rows{"2997", "2998", "2999", ""}));
    for (int row = -1000; row < 0; ++row)
        ASSERT_EQ(screen.Row(row), std::to_string(2997 + row));
}

struct HistoryCase {
    const char* name;
    int scrollRows;
    int count;
    Rows history;
    int selectionRow; // of 2, 0 and 1 before
};

class ScreenHistory : public testing::TestWithParam<HistoryCase> {};

TEST_P(ScreenHistory, TakesRowsFromTheTop) {
    TerminalScreen screen({Emulation_TTY, 2, 4, GetParam().scrollRows});
    screen.Fill();
    COMCTL& record = screen.Record();
    record.nSelStartRow = 1;
    record.nSelStartColumn = 1;
    record.nSelEndRow = 3;
    record.nSelAnchorRow = 2;
    const int moved = std::max(std::min(GetParam().count, GetParam().scrollRows), 0);
    PushHistory(record, GetParam().count);
    EXPECT_EQ(screen.History(), GetParam().history);
    EXPECT_EQ(screen.Rows(), (Rows{"aa", "bb", "cc", "dd"})) << "the screen stays";
    EXPECT_EQ(record.nSelStartRow, GetParam().selectionRow);
    EXPECT_EQ(record.nSelEndRow, std::max(3 - moved, -record.nScrollRows));
    EXPECT_EQ(record.nSelAnchorRow, std::max(2 - moved, -record.nScrollRows));
    EXPECT_EQ(record.nSelStartColumn, 1);
}

const HistoryCase historyCases[] = {
    {"None", 3, 0, {"", "", ""}, 1},
    {"Negative", 3, -1, {"", "", ""}, 1},
    {"One", 3, 1, {"", "", "aa"}, 0},
    {"Two", 3, 2, {"", "aa", "bb"}, -1},
    {"MoreThanItHolds", 3, 4, {"aa", "bb", "cc"}, -2},
    {"NoScrollback", 0, 4, {}, 1},
    {"SelectionStopsAtTheOldestRow", 1, 4, {"aa"}, 0},
};

RUN_TABLE(ScreenHistory, historyCases);

TEST(Screen, SelectionStopsAtTheOldestRowOfTheScrollback) {
    TerminalScreen screen({Emulation_TTY, 2, 2, 3});
    screen.Record().nSelAnchorRow = -2;
    screen.Record().nSelStartRow = -3;
    for (int i = 0; i < 5; ++i)
        PushHistory(screen.Record(), 1);
    EXPECT_EQ(screen.Record().nSelStartRow, -3);
    EXPECT_EQ(screen.Record().nSelAnchorRow, -3);
    EXPECT_EQ(screen.Record().nSelEndRow, -3);
}

TEST(Screen, FormFeedPutsTheWholeScreenBehindTheHistory) {
    TerminalScreen screen({Emulation_TTY, 2, 10, 100});
    screen.Fill();
    screen.Feed("\f");
    EXPECT_EQ(screen.Rows(), Rows(10));
    EXPECT_EQ(screen.Row(-1), "jj");
    EXPECT_EQ(screen.Row(-10), "aa");
    EXPECT_EQ(screen.Row(-11), "");
    screen.Feed("z\f");
    EXPECT_EQ(screen.Row(-10), "z");
    EXPECT_EQ(screen.Row(-20), "aa");
    EXPECT_TRUE(screen.PictureIsRight());
}

// Text from the host

TEST(Screen, SetContentsClearsAndGoesThroughTheEmulation) {
    TerminalScreen screen({Emulation_Ansi, 6, 2, 4});
    screen.Feed("ab\r\ncd");
    SetContents(screen.Handle(), "\033[1;3HxyHIDDEN", 8);
    EXPECT_EQ(screen.Rows(), (Rows{"  xy", ""}));
    EXPECT_EQ(screen.History(), (Rows{"", "", "ab", "cd"}));
}

TEST(Screen, SetContentsOfNothingStillClears) {
    TerminalScreen screen({Emulation_Ansi, 6, 2, 4});
    screen.Feed("ab");
    SetContents(screen.Handle(), "xyz", 0);
    EXPECT_EQ(screen.Rows(), Rows(2));
    EXPECT_EQ(screen.History(), (Rows{"", "", "ab", ""}));
    screen.Feed("cd");
    SetContents(screen.Handle(), nullptr, 3);
    EXPECT_EQ(screen.Rows(), Rows(2));
}

TEST(Screen, TerminalPrintStringMeasuresItsText) {
    TerminalScreen screen({Emulation_Ansi, 6, 2, 0});
    TerminalPrintString(screen.Handle(), "a\033[31mb");
    EXPECT_EQ(screen.Row(0), "ab");
    EXPECT_EQ(screen.ColorAt(0, 1), 0x1C);
    screen.world.Forget();
    TerminalPrintString(screen.Handle(), "");
    TerminalPrintString(screen.Handle(), nullptr);
    EXPECT_TRUE(screen.world.journal.empty());
}

TEST(Screen, TextAtPointsIntoTheScreen) {
    TerminalScreen screen(small);
    screen.Feed("abcd\r\nefgh");
    EXPECT_EQ(std::string(GetTextAt(screen.Handle(), 2, 0), 4), "cdef") << "the row's end ends nothing";
    EXPECT_EQ(*GetTextAt(screen.Handle(), 3, 1), 'h');
    EXPECT_STREQ(GetTextAt(nullptr, 0, 0), "");
    SetEmulation(screen.Handle(), Emulation_None);
    EXPECT_EQ(*GetTextAt(screen.Handle(), 0, 0), 'a') << "the planes stay";
}

// Emulations

TEST(Screen, EmulationsSwitchWithoutTouchingTheScreen) {
    TerminalScreen screen({Emulation_Ansi, 6, 2, 0});
    screen.Feed("ab\033[3");
    screen.world.Forget();
    for (const int emulation : {Emulation_TTY, Emulation_VT52, Emulation_VT100, Emulation_VT100}) {
        SetEmulation(screen.Handle(), emulation);
        EXPECT_EQ(GetEmulation(screen.Handle()), emulation);
    }
    EXPECT_EQ(screen.Row(0), "ab");
    EXPECT_EQ(screen.Record().nEscape, 3);
    EXPECT_TRUE(screen.world.journal.empty());
}

TEST(Screen, EmulationSwitchedOnMakesThePlanes) {
    TerminalScreen screen({Emulation_None, 6, 2, 1});
    SetEmulation(screen.Handle(), Emulation_TTY);
    EXPECT_EQ(screen.Rows(), Rows(2));
    EXPECT_EQ(screen.Colors(0), std::string(6, '\x1F'));
    EXPECT_EQ(screen.Colors(-1), std::string(6, '\0'));
    EXPECT_EQ(screen.world.journal, (Rows{"restore size", "erase all", "scroll bars", "post", "paint all"}));
}

TEST(Screen, EmulationSwitchedOffKeepsThePlanesAndGoesOnUnseen) {
    TerminalScreen screen({Emulation_Ansi, 6, 2, 1});
    screen.Feed("ab");
    screen.Repaint();
    screen.world.Forget();
    SetEmulation(screen.Handle(), Emulation_None);
    EXPECT_EQ(screen.world.journal.front(), "icon");
    EXPECT_EQ(screen.world.journal.back(), "erase all");
    screen.Feed("\033(0q\033(B\033[31mc");
    EXPECT_EQ(screen.Row(0), "ab\xC4"
                             "c")
        << "as VT100 has it";
    SetEmulation(screen.Handle(), Emulation_TTY);
    EXPECT_EQ(screen.Row(0), "ab\xC4"
                             "c");
}

TEST(Screen, ColumnsOfAnUnseenScreenFreeItsPlanesInTheMiddleOfAWrite) {
    TerminalScreen screen({Emulation_VT100, 6, 2, 1});
    SetEmulation(screen.Handle(), Emulation_None);
    screen.Feed("ab\033[?3h\033[1;4H\033[1Kcd\033[J\033M\033[2J\n\f");
    EXPECT_FALSE(screen.Record().lpText);
    EXPECT_EQ(screen.Record().nColumns, 132);
    EXPECT_EQ(screen.Record().nEscape, 0);
}

class ScreenFreedByHost : public testing::TestWithParam<int> {};

TEST_P(ScreenFreedByHost, InTheEventOfAnAnswerEndsTheWrite) {
    TerminalScreen screen({GetParam(), 6, 2, 1});
    screen.world.onSent = [&] {
        SetEmulation(screen.Handle(), Emulation_None);
        SetRows(screen.Handle(), 3);
    };
    const std::string ask = GetParam() == Emulation_VT52 ? "\033[Z" : "\033[5n";
    screen.Feed("ab" + ask + "cd\033[K\033[J\033[2J\n\f");
    EXPECT_FALSE(screen.Record().lpText);
    EXPECT_EQ(screen.Record().nRows, 3);
}

INSTANTIATE_TEST_SUITE_P(Rows, ScreenFreedByHost,
                         testing::Values(Emulation_Ansi, Emulation_VT52, Emulation_VT100));

TEST(Screen, UnknownEmulationIsVt100) {
    TerminalScreen screen({Emulation_Ansi, 6, 2, 0});
    SetEmulation(screen.Handle(), 17);
    screen.Feed("\x9B"
                "1;4Hx");
    EXPECT_EQ(screen.Row(0), "   x");
}

TEST(Screen, DeadHandlesGiveNothing) {
    for (const HWND handle : {HWND{}, reinterpret_cast<HWND>(8)}) {
        for (int(TARNAPI * get)(HWND) : {GetRows, GetColumns, GetScrollRows, GetCursorRow, GetCursorColumn,
                                         GetColor, GetEmulation, GetContentsLength, GetScrollContentsLength})
            EXPECT_EQ(get(handle), 0);
        for (void(TARNAPI * set)(HWND, int) :
             {SetRows, SetColumns, SetCursorRow, SetCursorColumn, SetColor, SetEmulation})
            set(handle, 1);
        EXPECT_EQ(SetScrollRows(handle, 5), 0);
        EXPECT_STREQ(GetTextAt(handle, 1, 1), "");
        SetContents(handle, "x", 1);
        TerminalPrintString(handle, "x");
    }
}

} // namespace
