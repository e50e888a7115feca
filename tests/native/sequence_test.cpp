// Control sequences: what each final does, under both emulations that have them.
#include "caseprint.h"
#include "terminal/sequence.h"
#include "terminalscreen.h"

#include <climits>
#include <set>

namespace {

constexpr TerminalShape smallAnsi = {Emulation_Ansi, 6, 5, 0};
constexpr TerminalShape smallVt100 = {Emulation_VT100, 6, 5, 0};
constexpr int finalEmulations[] = {Emulation_Ansi, Emulation_VT100};

struct PlaceCase {
    const char* name;
    CursorPlace start;
    std::string bytes;
    CursorPlace end;
};

// Every case under both emulations, alone and with a wrap pending, which every movement ends.
class SequencePlace : public testing::TestWithParam<PlaceCase> {};

TEST_P(SequencePlace, FollowsTheTable) {
    for (const int emulation : finalEmulations) {
        TerminalScreen screen({emulation, 6, 5, 0});
        screen.Fill();
        const auto before = screen.Rows();
        screen.Place(GetParam().start.row, GetParam().start.column);
        screen.Record().bWrapPending = 1;
        screen.Feed(GetParam().bytes);
        EXPECT_EQ(screen.Cursor(), GetParam().end);
        EXPECT_EQ(screen.Record().bWrapPending, 0);
        EXPECT_EQ(screen.Record().nEscape, 0);
        EXPECT_EQ(screen.Rows(), before);
    }
}

const PlaceCase placeCases[] = {
    {"UpOne", {2, 3}, "\033[A", {1, 3}},
    {"UpByCount", {4, 3}, "\033[3A", {1, 3}},
    {"UpStopsAtTheFirstRow", {2, 3}, "\033[5A", {0, 3}},
    {"UpByZeroStays", {2, 3}, "\033[0A", {2, 3}},
    {"UpBySoManyThatNumbersEnd", {2, 3}, "\033[99999999999999A", {0, 3}},
    {"UpTakesTheFirstOfTwo", {4, 3}, "\033[2;3A", {2, 3}},
    {"UpWithAnEmptyFirst", {4, 3}, "\033[;3A", {3, 3}},
    {"UpBehindAQuestionMark", {4, 3}, "\033[?2A", {2, 3}},
    {"UpBehindAForeignByte", {4, 3}, "\033[!2A", {3, 3}},
    {"UpWithADigitAndAForeignByte", {4, 3}, "\033[2!3A", {2, 3}},
    {"DownOne", {2, 3}, "\033[B", {3, 3}},
    {"DownByCount", {0, 3}, "\033[3B", {3, 3}},
    {"DownStopsAtTheLastRow", {2, 3}, "\033[9B", {4, 3}},
    {"DownByZeroStays", {2, 3}, "\033[0B", {2, 3}},
    {"DownBySoManyThatNumbersEnd", {2, 3}, "\033[99999999999999B", {4, 3}},
    {"RightOne", {2, 3}, "\033[C", {2, 4}},
    {"RightByCount", {2, 1}, "\033[3C", {2, 4}},
    {"RightStopsAtTheLastColumn", {2, 3}, "\033[9C", {2, 5}},
    {"RightByZeroStays", {2, 3}, "\033[0C", {2, 3}},
    {"RightBySoManyThatNumbersEnd", {2, 3}, "\033[4294967297C", {2, 5}},
    {"LeftOne", {2, 3}, "\033[D", {2, 2}},
    {"LeftByCount", {2, 4}, "\033[3D", {2, 1}},
    {"LeftStopsAtTheFirstColumn", {2, 3}, "\033[9D", {2, 0}},
    {"LeftByZeroStays", {2, 3}, "\033[0D", {2, 3}},
    {"PositionHome", {2, 3}, "\033[H", {0, 0}},
    {"PositionCountsFromOne", {2, 3}, "\033[4;2H", {3, 1}},
    {"PositionZeroIsOne", {2, 3}, "\033[0;0H", {0, 0}},
    {"PositionRowAlone", {2, 3}, "\033[4H", {3, 0}},
    {"PositionColumnAlone", {2, 3}, "\033[;4H", {0, 3}},
    {"PositionLastCell", {2, 3}, "\033[5;6H", {4, 5}},
    {"PositionRowBeyondIsIgnored", {2, 3}, "\033[6;1H", {2, 3}},
    {"PositionColumnBeyondIsIgnored", {2, 3}, "\033[1;7H", {2, 3}},
    {"PositionBothBeyondIsIgnored", {2, 3}, "\033[30;99H", {2, 3}},
    {"PositionBeyondAllNumbersIsIgnored", {2, 3}, "\033[4294967297;1H", {2, 3}},
    {"PositionWithAThird", {2, 3}, "\033[2;3;4H", {1, 2}},
    {"SmallF", {2, 3}, "\033[4;2f", {3, 1}},
    {"SmallFBeyondIsIgnored", {2, 3}, "\033[6;1f", {2, 3}},
    {"SaveStays", {2, 3}, "\033[s", {2, 3}},
    {"SaveAndRestore", {2, 3}, "\033[s\033[H\033[u", {2, 3}},
    {"CapitalsSaveAndRestore", {2, 3}, "\033[S\033[H\033[U", {2, 3}},
    {"RestoreWithoutSaveGoesHome", {2, 3}, "\033[u", {0, 0}},
    {"RestoreIgnoresParameters", {2, 3}, "\033[5s\033[H\033[7u", {2, 3}},
};

RUN_TABLE(SequencePlace, placeCases);

TEST(Sequence, RegionDoesNotHoldMovements) {
    TerminalScreen screen(smallAnsi);
    screen.Feed("\033[2;3r\033[5;1H");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{4, 0}));
    screen.Feed("\033[9A");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 0}));
    screen.Feed("\033[9B");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{4, 0}));
}

TEST(Sequence, SaveKeepsNeitherColorNorFlags) {
    TerminalScreen screen(smallAnsi);
    screen.Feed("\033[s");
    screen.Record().nColor = 0x4E;
    screen.Feed("\033[u");
    EXPECT_EQ(screen.Record().nColor, 0x4E);
    EXPECT_EQ(screen.Record().nSavedColor, 7);
}

// Erasing

struct EraseCase {
    const char* name;
    CursorPlace start;
    std::string bytes;
    CursorPlace end;
    std::vector<std::string> cells; // whole rows
    std::vector<std::string> history;
};

class SequenceErase : public testing::TestWithParam<EraseCase> {};

TEST_P(SequenceErase, FollowsTheTable) {
    const EraseCase& row = GetParam();
    for (const int emulation : finalEmulations) {
        TerminalScreen screen({emulation, 4, 3, 4});
        screen.Fill();
        screen.Place(row.start.row, row.start.column);
        screen.Record().bWrapPending = 1;
        screen.Record().nColor = 0x4E;
        screen.Record().bReverse = 1;
        screen.Feed(row.bytes);
        EXPECT_EQ(screen.Cursor(), row.end);
        EXPECT_EQ(screen.Record().bWrapPending, 0);
        EXPECT_EQ(screen.History(), row.history);
        for (int at = 0; at < 3; ++at) {
            EXPECT_EQ(screen.Cells(at), row.cells[static_cast<size_t>(at)]);
            for (int column = 0; column < 4; ++column)
                EXPECT_EQ(screen.ColorAt(at, column),
                          screen.Cells(at)[static_cast<size_t>(column)] == ' ' ? 0x4E : 0x1F)
                    << at << "," << column;
        }
        EXPECT_TRUE(screen.PictureIsRight());
    }
}

const std::vector<std::string> noHistory = {"", "", "", ""};
const std::vector<std::string> blankScreen = {"    ", "    ", "    "};

const EraseCase eraseCases[] = {
    {"DisplayFromTheCursor", {1, 2}, "\033[J", {1, 2}, {"aaaa", "bb  ", "    "}, noHistory},
    {"DisplayZero", {1, 2}, "\033[0J", {1, 2}, {"aaaa", "bb  ", "    "}, noHistory},
    {"DisplayAnyOtherMode", {1, 2}, "\033[3J", {1, 2}, {"aaaa", "bb  ", "    "}, noHistory},
    {"DisplayFromTheCorner", {0, 0}, "\033[J", {0, 0}, blankScreen, noHistory},
    {"DisplayFromTheLastCell", {2, 3}, "\033[J", {2, 3}, {"aaaa", "bbbb", "ccc "}, noHistory},
    {"DisplayUpToTheCursorWithoutItsCell", {1, 2}, "\033[1J", {1, 2}, {"    ", "  bb", "cccc"}, noHistory},
    {"DisplayUpToTheCorner", {0, 0}, "\033[1J", {0, 0}, {"aaaa", "bbbb", "cccc"}, noHistory},
    {"DisplayWhole", {1, 2}, "\033[2J", {0, 0}, blankScreen, {"", "aaaa", "bbbb", "cccc"}},
    {"LineFromTheCursor", {1, 2}, "\033[K", {1, 2}, {"aaaa", "bb  ", "cccc"}, noHistory},
    {"LineZero", {1, 2}, "\033[0K", {1, 2}, {"aaaa", "bb  ", "cccc"}, noHistory},
    {"LineAnyOtherMode", {1, 2}, "\033[7K", {1, 2}, {"aaaa", "bb  ", "cccc"}, noHistory},
    {"LineUpToTheCursorWithoutItsCell", {1, 2}, "\033[1K", {1, 2}, {"aaaa", "  bb", "cccc"}, noHistory},
    {"LineUpToItsStart", {1, 0}, "\033[1K", {1, 0}, {"aaaa", "bbbb", "cccc"}, noHistory},
    {"LineWhole", {1, 2}, "\033[2K", {1, 0}, {"aaaa", "    ", "cccc"}, noHistory},
    {"LastLineFromTheCursor", {2, 1}, "\033[K", {2, 1}, {"aaaa", "bbbb", "c   "}, noHistory},
};

RUN_TABLE(SequenceErase, eraseCases);

// Answers

struct ReplyCase {
    const char* name;
    std::string bytes;
    std::string answer;
};

class SequenceReply : public testing::TestWithParam<ReplyCase> {};

TEST_P(SequenceReply, FollowsTheTable) {
    for (const int emulation : finalEmulations) {
        TerminalScreen screen({emulation, 6, 5, 0});
        screen.Place(3, 2);
        screen.Record().bWrapPending = 1;
        screen.Feed(GetParam().bytes);
        EXPECT_EQ(screen.world.sent, GetParam().answer);
        EXPECT_EQ(screen.Record().bWrapPending, 1) << "an enquiry leaves the wrap";
        EXPECT_EQ(screen.Rows(), std::vector<std::string>(5)) << "an answer is never shown";
    }
}

const ReplyCase replyCases[] = {
    {"Attributes", "\033[c", "\033[?1;2c"},
    {"AttributesZero", "\033[0c", "\033[?1;2c"},
    {"AttributesOfAnotherKind", "\033[1c", ""},
    {"StatusReady", "\033[5n", "\033[0n"},
    {"CursorCountsFromZero", "\033[6n", "\033[3;2R"},
    {"StatusWithoutParameterIsCutAttributes", "\033[n", "\033[?1;2;"},
    {"StatusOfAnotherKindIsCutAttributes", "\033[7n", "\033[?1;2;"},
    {"StatusZeroIsCutAttributes", "\033[0n", "\033[?1;2;"},
    {"CursorBehindAQuestionMark", "\033[?6n", "\033[3;2R"},
};

RUN_TABLE(SequenceReply, replyCases);

TEST_P(SequenceReply, ClosedPortSaysNothing) {
    TerminalScreen screen(smallAnsi);
    screen.Record().bPortOpen = 0;
    screen.Feed(GetParam().bytes);
    EXPECT_EQ(screen.world.sent, "");
    EXPECT_EQ(screen.world.journal, (std::vector<std::string>{"post", "follow 0"}))
        << "nor is its state read";
}

TEST(Sequence, CursorReportAtHome) {
    TerminalScreen screen;
    screen.Feed("\033[6n");
    EXPECT_EQ(screen.world.sent, "\033[0;0R");
}

TEST(Sequence, AnswerTakesAFreshCountAndARefusedOneTheLinesState) {
    TerminalScreen screen(smallAnsi);
    screen.Feed("\033[5n");
    EXPECT_EQ(screen.world.journal, (std::vector<std::string>{"sent", "fresh count", "post", "follow 0"}));
    screen.world.Forget();
    screen.world.lineTakes = false;
    screen.Feed("\033[5n");
    EXPECT_EQ(screen.world.journal, (std::vector<std::string>{"line status", "follow 0"}));
}

struct GoneCase {
    const char* name;
    int emulation;
    bool lineTakes;
    std::string bytes;
};

class SequenceGone : public testing::TestWithParam<GoneCase> {};

TEST_P(SequenceGone, HostMayDestroyTheObjectInTheEventOfAnAnswer) {
    TerminalScreen screen({GetParam().emulation, 6, 5, 0});
    screen.world.lineTakes = GetParam().lineTakes;
    screen.world.onSent = [&] { screen.Destroy(); };
    screen.Feed(GetParam().bytes);
    EXPECT_FALSE(screen.Exists());
}

const GoneCase goneCases[] = {
    {"Ansi", Emulation_Ansi, true, "ab\033[5ncd\033[6n"},
    {"AnsiRefused", Emulation_Ansi, false, "ab\033[5ncd\033[6n"},
    {"AnsiAttributes", Emulation_Ansi, true, "\033[c\033[2J"},
    {"Vt100", Emulation_VT100, true, "ab\033[6ncd\033[6n"},
    {"Vt100Refused", Emulation_VT100, false, "ab\033[0ncd\033[6n"},
    {"Vt52", Emulation_VT52, true, "ab\033[Zcd\033[Z"},
    {"Vt52Refused", Emulation_VT52, false, "ab\033[Zcd\033[Z"},
};

RUN_TABLE(SequenceGone, goneCases);

// Modes

struct ModeCase {
    const char* name;
    std::string bytes;
    int COMCTL::*field;
    int before;
    int after;
};

class SequenceMode : public testing::TestWithParam<ModeCase> {};

TEST_P(SequenceMode, FollowsTheTable) {
    const ModeCase& row = GetParam();
    for (const int emulation : finalEmulations) {
        TerminalScreen screen({emulation, 6, 5, 0});
        screen.Record().*row.field = row.before;
        screen.Feed(row.bytes);
        EXPECT_EQ(screen.Record().*row.field, row.after);
        EXPECT_TRUE(screen.world.messages.empty());
    }
}

const ModeCase modeCases[] = {
    {"LocalEchoOff", "\033[12h", &COMCTL::bEcho, 1, 0},
    {"LocalEchoOn", "\033[12l", &COMCTL::bEcho, 0, 1},
    {"OriginOn", "\033[?6h", &COMCTL::bOriginMode, 0, 1},
    {"OriginOff", "\033[?6l", &COMCTL::bOriginMode, 1, 0},
    {"WideColumns", "\033[?3h", &COMCTL::nColumns, 6, 132},
    {"NarrowColumns", "\033[?3l", &COMCTL::nColumns, 6, 80},
    {"WideClearsTheRegionsTop", "\033[?3h", &COMCTL::nScrollTop, 1, 0},
    {"WideClearsTheRegionsBottom", "\033[?3h", &COMCTL::nScrollBottom, 3, 0},
    {"NarrowClearsTheRegionsTop", "\033[?3l", &COMCTL::nScrollTop, 1, 0},
    {"NarrowClearsTheRegionsBottom", "\033[?3l", &COMCTL::nScrollBottom, 3, 0},
    {"WideEndsAPendingWrap", "\033[?3h", &COMCTL::bWrapPending, 1, 0},
    {"NarrowEndsAPendingWrap", "\033[?3l", &COMCTL::bWrapPending, 1, 0},
    {"TwoAtOnceMatchNothing", "\033[?6;12h", &COMCTL::bOriginMode, 0, 0},
    {"TwoAtOnceMatchNothingOfTheSecond", "\033[?6;12h", &COMCTL::bEcho, 1, 1},
    {"AnotherNumber", "\033[20h", &COMCTL::bEcho, 1, 1},
    {"EchoIsNoPrivateMode", "\033[?12h", &COMCTL::bEcho, 1, 1},
    {"ColumnsAreAPrivateMode", "\033[3h", &COMCTL::nColumns, 6, 6},
    {"LeadingZero", "\033[012h", &COMCTL::bEcho, 1, 1},
    {"NoNumber", "\033[h", &COMCTL::bEcho, 1, 1},
    {"EchoLeavesAPendingWrap", "\033[12l", &COMCTL::bWrapPending, 1, 1},
    {"OriginLeavesAPendingWrap", "\033[?6h", &COMCTL::bWrapPending, 1, 1},
    {"UnknownModeLeavesAPendingWrap", "\033[4h", &COMCTL::bWrapPending, 1, 1},
};

RUN_TABLE(SequenceMode, modeCases);

TEST(Sequence, OriginModeLeavesPositionsAbsolute) {
    TerminalScreen screen(smallAnsi);
    screen.Feed("\033[2;4r\033[?6h\033[1;1H");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 0}));
}

TEST(Sequence, ColumnsKeepWhatFits) {
    TerminalScreen screen({Emulation_Ansi, 100, 3, 0});
    screen.Feed(std::string(100, 'x') + "\033[?3l");
    EXPECT_EQ(screen.Row(0), std::string(80, 'x'));
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 79}));
    screen.Feed("\033[?3h");
    EXPECT_EQ(screen.Row(0), std::string(80, 'x'));
    EXPECT_EQ(screen.Record().nRows, 3);
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Sequence, ColumnsThatTheScreenRefusesStillClearTheRegion) {
    TerminalScreen screen({Emulation_Ansi, 2, 1000, 0});
    screen.Feed("\033[2;4r\033[?3h");
    EXPECT_EQ(screen.Record().nColumns, 2);
    EXPECT_EQ(screen.Record().nScrollBottom, 0);
}

// The scroll region

struct RegionCase {
    const char* name;
    CursorPlace start;
    std::string bytes;
    int top;
    int bottom;
    CursorPlace end;
};

class SequenceRegion : public testing::TestWithParam<RegionCase> {};

TEST_P(SequenceRegion, FollowsTheTable) {
    const RegionCase& row = GetParam();
    for (const int emulation : finalEmulations) {
        TerminalScreen screen({emulation, 6, 10, 0});
        screen.Place(row.start.row, row.start.column);
        screen.Record().nScrollTop = 1;
        screen.Record().nScrollBottom = 2;
        screen.Record().bWrapPending = 1;
        screen.Feed(row.bytes);
        EXPECT_EQ(screen.Record().nScrollTop, row.top);
        EXPECT_EQ(screen.Record().nScrollBottom, row.bottom);
        EXPECT_EQ(screen.Cursor(), row.end);
        EXPECT_EQ(screen.Record().bWrapPending, 0);
    }
}

const RegionCase regionCases[] = {
    {"Set", {4, 3}, "\033[3;8r", 2, 7, {4, 3}},
    {"CursorOnTheTopStays", {2, 3}, "\033[3;8r", 2, 7, {2, 3}},
    {"CursorAboveGoesToTheTop", {1, 3}, "\033[3;8r", 2, 7, {2, 0}},
    {"CursorAboveTheBottomRowStays", {6, 3}, "\033[3;8r", 2, 7, {6, 3}},
    {"CursorOnTheBottomRowGoesToTheTop", {7, 3}, "\033[3;8r", 2, 7, {2, 0}},
    {"CursorBelowGoesToTheTop", {9, 3}, "\033[3;8r", 2, 7, {2, 0}},
    {"WithoutParametersItIsCleared", {4, 3}, "\033[r", 0, 0, {4, 3}},
    {"TopZeroClears", {4, 3}, "\033[0;8r", 0, 0, {4, 3}},
    {"BottomZeroClears", {4, 3}, "\033[3;0r", 0, 0, {4, 3}},
    {"TopAloneClears", {4, 3}, "\033[3r", 0, 0, {4, 3}},
    {"BottomAloneClears", {4, 3}, "\033[;8r", 0, 0, {4, 3}},
    {"LastRowButOne", {4, 3}, "\033[1;9r", 0, 8, {4, 3}},
    {"LastRowIsRefused", {4, 3}, "\033[1;10r", 1, 2, {4, 3}},
    {"BeyondTheScreenIsRefused", {4, 3}, "\033[3;99r", 1, 2, {4, 3}},
    {"BeyondAllNumbersIsRefused", {4, 3}, "\033[3;4294967297r", 1, 2, {4, 3}},
    {"TopIsNotComparedWithTheBottom", {4, 3}, "\033[8;3r", 7, 2, {7, 0}},
    {"OneRow", {4, 3}, "\033[5;5r", 4, 4, {4, 0}},
    {"FirstRowAloneIsNoRegion", {4, 3}, "\033[1;1r", 0, 0, {0, 0}},
};

RUN_TABLE(SequenceRegion, regionCases);

TEST(Sequence, LineFeedOverARegionThatEndsAboveTheLastRow) {
    TerminalScreen screen;
    screen.Fill();
    screen.Feed("\033[2;24r");
    screen.Place(22, 5);
    screen.Feed("\n");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{22, 5}));
    EXPECT_EQ(screen.Row(0), std::string(80, 'a'));
    EXPECT_EQ(screen.Row(1), std::string(80, 'c'));
    EXPECT_EQ(screen.Row(22), std::string(80, 'x'));
    EXPECT_EQ(screen.Row(23), "");
    EXPECT_EQ(screen.Row(24), std::string(80, 'y'));
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Sequence, RegionBeyondTheScreenByItsTopBlanksItsLastRow) {
    TerminalScreen screen({Emulation_Ansi, 2, 4, 1});
    screen.Fill();
    screen.Feed("\033[9;2r");
    EXPECT_EQ(screen.Record().nScrollTop, 8);
    EXPECT_EQ(screen.Record().nScrollBottom, 1);
    screen.Feed("\n");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"aa", "", "cc", "dd"}));
    EXPECT_EQ(screen.History(), std::vector<std::string>{"aa"});
    EXPECT_TRUE(screen.PictureIsRight());
}

// Finals without a row, and those that are ignored

constexpr std::string_view alphabet = "ABCDEFGHIJKLMPSUXYZ<=>@fmncqsrulh";
constexpr std::string_view ignoredFinals = "@PX";
constexpr std::string_view unhandledFinals = "EFGILMYZ<=>q";

TEST(Sequence, IgnoredFinalsChangeNothingAndSayNothing) {
    for (const int emulation : finalEmulations)
        for (const char final : ignoredFinals) {
            TerminalScreen screen({emulation, 6, 5, 0});
            screen.Fill();
            screen.Record().bWrapPending = 1;
            const auto before = screen.Portrait();
            screen.Feed(std::string("\033[2") + final);
            EXPECT_EQ(screen.Portrait(), before) << final;
        }
}

TEST(Sequence, FinalsWithoutARowAreReportedAndChangeNothing) {
    for (const int emulation : finalEmulations)
        for (const char final : unhandledFinals) {
            TerminalScreen screen({emulation, 6, 5, 0});
            screen.Fill();
            screen.Record().bWrapPending = 1;
            const auto before = screen.Portrait();
            screen.Feed(std::string("\033[2") + final);
            const std::vector<std::string> report = {std::string("Unhandled character: ") + final + "\r\n"};
            EXPECT_EQ(screen.world.messages, report);
            EXPECT_EQ(screen.world.debugTexts, report);
            screen.world.messages.clear();
            EXPECT_EQ(screen.Portrait(), before) << final;
        }
}

TEST(Sequence, BytesOutsideTheAlphabetEndNoSequence) {
    for (const int emulation : finalEmulations)
        for (int byte = 32; byte < 256; ++byte) {
            if (alphabet.find(static_cast<char>(byte)) != std::string_view::npos)
                continue;
            TerminalScreen screen({emulation, 6, 5, 0});
            screen.Feed(std::string("\033[") + static_cast<char>(byte));
            EXPECT_EQ(screen.Record().nEscape, 3) << byte;
            EXPECT_TRUE(screen.world.messages.empty());
        }
}

TEST(Sequence, EveryFinalOfTheTableIsInTheAlphabetOnce) {
    std::set<char> named;
    for (const FinalRow& row : SequenceFinals()) {
        EXPECT_TRUE(named.insert(row.final).second) << row.final;
        EXPECT_NE(alphabet.find(row.final), std::string_view::npos) << row.final;
        EXPECT_EQ(unhandledFinals.find(row.final), std::string_view::npos) << row.final;
        EXPECT_TRUE(*row.mnemonic && *row.meaning) << row.final;
    }
    EXPECT_EQ(named.size() + unhandledFinals.size(), alphabet.size());
}

TEST(Sequence, WithTheCursorOffTheScreenNothingRuns) {
    for (const int emulation : finalEmulations) {
        TerminalScreen screen({emulation, 6, 5, 0});
        screen.Record().nEndOfLineMode = 9;
        screen.Feed("123456");
        ASSERT_EQ(screen.Cursor(), (CursorPlace{0, 6}));
        const auto before = screen.Portrait();
        for (const char final : alphabet)
            screen.Feed(std::string("\033[5") + final);
        EXPECT_EQ(screen.Portrait(), before);
        screen.Feed("\r\033[2B");
        EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 0}));
    }
}

TEST(Sequence, RestoredPlaceThatAShrunkScreenHasLostIsTheNearest) {
    TerminalScreen screen(smallAnsi);
    screen.Feed("\033[5;6H\033[s\033[H");
    ResizeTerminal(screen.Record(), 4, 3);
    screen.Feed("\033[u");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 3}));
    ResizeTerminal(screen.Record(), 6, 5);
    screen.Feed("\033[u");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{4, 5})) << "what was saved stays";
}

// Parameters

struct ParameterCase {
    const char* name;
    std::string sequence;
    int index;
    int value; // with the fallback -7
};

class SequenceParameter : public testing::TestWithParam<ParameterCase> {};

TEST_P(SequenceParameter, FollowsTheTable) {
    COMCTL record;
    const std::string& text = GetParam().sequence;
    text.copy(record.szEscape, text.size());
    record.nEscape = static_cast<int>(text.size());
    EXPECT_EQ(SequenceParam(record, GetParam().index, -7), GetParam().value);
}

const ParameterCase parameterCases[] = {
    {"First", "\033[12;34m", 0, 12},
    {"Second", "\033[12;34m", 1, 34},
    {"Third", "\033[12;34m", 2, -7},
    {"EmptyList", "\033[m", 0, -7},
    {"EmptyFirst", "\033[;5m", 0, -7},
    {"EmptyMiddle", "\033[1;;3m", 1, -7},
    {"BehindAnEmptyMiddle", "\033[1;;3m", 2, 3},
    {"EmptyLast", "\033[1;m", 1, -7},
    {"ZeroIsZero", "\033[0m", 0, 0},
    {"LeadingZeros", "\033[007m", 0, 7},
    {"QuestionMark", "\033[?5m", 0, 5},
    {"SecondBehindAQuestionMark", "\033[?5;6m", 1, 6},
    {"QuestionMarkBeforeTheSecond", "\033[5;?6m", 1, -7},
    {"EightBitIntroducer", "\x9B\x31;2m", 0, 1},
    {"SecondBehindTheEightBitIntroducer", "\x9B\x31;2m", 1, 2},
    {"NegativeIsNoNumber", "\033[-5m", 0, -7},
    {"LargestNumber", "\033[2147483647m", 0, INT_MAX},
    {"NumbersEndAt31Bits", "\033[2147483648m", 0, INT_MAX},
    {"NumbersEndAt31BitsHoweverLong", "\033[9999999999999999m", 0, INT_MAX},
    {"EscapeAndFinalAlone", "\033A", 0, -7},
    {"ByteBehindTheEscapeIsSkipped",
     "\033"
     "55A",
     0, 5},
};

RUN_TABLE(SequenceParameter, parameterCases);

struct ScanCase {
    const char* name;
    std::string bytes;
    int end;
};

class SequenceScan : public testing::TestWithParam<ScanCase> {};

TEST_P(SequenceScan, FollowsTheTable) {
    EXPECT_EQ(ScanForFinal(GetParam().bytes.data(), static_cast<int>(GetParam().bytes.size())),
              GetParam().end);
}

const ScanCase scanCases[] = {
    {"Nothing", "", 0},
    {"FinalFirst", "A", 1},
    {"FinalBehindDigits", "12;3Hx", 5},
    {"NoFinal", "12;3", 0},
    {"ControlFirst", "\r12H", 0},
    {"ControlInside", "12\rH", 2},
    {"NulInside", std::string("1\0H", 3), 1},
    {"EscapeInside", "1\033[H", 1},
    {"HighBytesAreInside", "\x80\x9B\xFFH", 4},
    {"DeleteIsInside", "\x7FH", 2},
    {"SpaceIsInside", " H", 2},
};

RUN_TABLE(SequenceScan, scanCases);

} // namespace
