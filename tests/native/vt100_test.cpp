// The VT100 emulation: control sequences with either introducer, character sets, codes of one byte.
#include "caseprint.h"
#include "terminal/codes.h"
#include "terminalscreen.h"

#include <set>

namespace {

constexpr TerminalShape shape = {Emulation_VT100, 10, 5, 3};

struct PiecesCase {
    const char* name;
    std::vector<std::string> pieces;
    CursorPlace cursor;
    int open;
    std::string rowThree;
    std::vector<std::string> messages;
};

class Vt100Pieces : public testing::TestWithParam<PiecesCase> {};

TEST_P(Vt100Pieces, FollowTheTable) {
    TerminalScreen screen(shape);
    screen.Place(3, 0);
    for (const std::string& piece : GetParam().pieces)
        screen.Feed(piece);
    EXPECT_EQ(screen.Cursor(), GetParam().cursor);
    EXPECT_EQ(screen.Record().nEscape, GetParam().open);
    EXPECT_EQ(screen.Row(3), GetParam().rowThree);
    EXPECT_EQ(screen.world.messages, GetParam().messages);
    EXPECT_TRUE(screen.PictureIsRight());
}

const std::string digits(40, '1');

std::string Unhandled(char final) {
    return std::string("Unhandled character: ") + final + "\r\n";
}

const PiecesCase piecesCases[] = {
    {"TextAlone", {"abc"}, {3, 3}, 0, "abc", {}},
    {"SequenceWithEscape", {"ab\033[2Dc"}, {3, 1}, 0, "cb", {}},
    {"SequenceOfEightBits",
     {"ab\x9B"
      "2Dc"},
     {3, 1},
     0,
     "cb",
     {}},
    {"EightBitsThenTheRest", {"ab\x9B", "2", "D", "c"}, {3, 1}, 0, "cb", {}},
    {"FinalRightBehindEightBitsIsNone", {"\x9BmAx"}, {2, 1}, 0, "", {}},
    {"BracketBehindEightBitsIsNoIntroducer", {"\x9B[2Ax"}, {2, 1}, 0, "", {}},
    {"EscapeAlone", {"ab\033"}, {3, 2}, 1, "ab", {}},
    {"EightBitsAlone", {"ab\x9B"}, {3, 2}, 1, "ab", {}},
    {"EscapeAndBracketAlone", {"ab\033["}, {3, 2}, 2, "ab", {}},
    {"DesignationWaitsForItsThird", {"ab\033("}, {3, 2}, 2, "ab", {}},
    {"AnyByteMayBeTheSecond", {"ab\033\rc"}, {3, 3}, 0, "abc", {}},
    {"EscapeAsTheSecond", {"ab\033\033[c"}, {3, 4}, 0, "ab[c", {}},
    {"UnknownSecondSaysNothing", {"ab\033Zc"}, {3, 3}, 0, "abc", {}},
    {"ResetIsAbsent", {"ab\033cd"}, {3, 3}, 0, "abd", {}},
    {"TabSettingIsAbsent", {"ab\033Hd"}, {3, 3}, 0, "abd", {}},
    {"AlignmentDoesNothing", {"ab\033#8c"}, {3, 3}, 0, "abc", {}},
    {"SecondSetDoesNothing", {"ab\033)0q"}, {3, 3}, 0, "abq", {}},
    {"LineDrawingOn", {"\033(0q"}, {3, 1}, 0, "\xC4", {}},
    {"LineDrawingOff", {"\033(0q\033(Bq"}, {3, 2}, 0, "\xC4q", {}},
    {"AnyOtherSetIsOff", {"\033(0q\033(1q"}, {3, 2}, 0, "\xC4q", {}},
    {"LineDrawingInPieces", {"\033", "(", "0", "q"}, {3, 1}, 0, "\xC4", {}},
    {"ShiftOut", {"\x0Ex"}, {3, 1}, 0, "\xB3", {}},
    {"SequenceWithAnUnhandledFinal", {"\033[5q"}, {3, 0}, 0, "", {Unhandled('q')}},

    // Control characters inside a sequence
    {"ControlEndsASequenceInItsPiece", {"\033[1\rA"}, {3, 1}, 0, "A", {Unhandled('1')}},
    {"ControlInAPieceOfItsOwnIsCollected", {"\033[1", "\r", "A"}, {2, 0}, 0, "", {}},
    {"ControlRightBehindTheBracketIsCollected", {"\033[\rA"}, {3, 0}, 4, "", {}},
    {"EscapeInsideASequence", {"\033[1\033[2C"}, {3, 2}, 0, "", {Unhandled('1')}},
    {"EightBitsInsideAreCollected",
     {"\033[1\x9B"
      "2C"},
     {3, 1},
     0,
     "",
     {}},

    // Nineteen bytes are the most.
    {"NineteenBytesRun", {"\033[" + digits.substr(0, 16) + "A"}, {0, 0}, 0, "", {}},
    {"TwentyBytesAreDropped", {"\033[" + digits.substr(0, 17) + "A", "x"}, {3, 1}, 0, "x", {}},
    {"NineteenBytesWithoutAFinalAreKept", {"\033[" + digits.substr(0, 17)}, {3, 0}, 19, "", {}},
    {"TwentyBytesWithoutAFinalAreLost", {"\033[" + digits.substr(0, 18)}, {3, 0}, 2, "", {}},
    {"WhatFollowsALossGoesOn", {"\033[" + digits.substr(0, 25), "2A"}, {1, 0}, 0, "", {}},
    {"FullSequenceDropsItsFinal", {"\033[" + digits.substr(0, 17), "A", "x"}, {3, 1}, 0, "x", {}},
};

RUN_TABLE(Vt100Pieces, piecesCases);

TEST(Vt100, OverlongSequenceByteByByteEndsOnItsFinal) {
    TerminalScreen screen(shape);
    screen.FeedByteByByte("\x9B" + digits + "Ax");
    EXPECT_EQ(screen.Row(0), "x");
    EXPECT_EQ(screen.Record().nEscape, 0);
}

TEST(Vt100, EightBitIntroducerSetsBright) {
    TerminalScreen screen(shape);
    screen.Record().nColor = 0x17;
    screen.Feed("\x9B"
                "1m");
    EXPECT_EQ(screen.Record().nColor, 0x1F);
}

// The codes of one byte leave a pending wrap alone.
struct CodeCase {
    const char* name;
    CursorPlace start;
    std::string bytes;
    CursorPlace end;
};

class Vt100Code : public testing::TestWithParam<CodeCase> {};

TEST_P(Vt100Code, FollowsTheTable) {
    for (const int wrapPending : {0, 1}) {
        TerminalScreen screen(shape);
        screen.Fill();
        screen.Place(GetParam().start.row, GetParam().start.column);
        screen.Record().bWrapPending = wrapPending;
        const auto rows = screen.Rows();
        screen.Feed(GetParam().bytes);
        EXPECT_EQ(screen.Cursor(), GetParam().end);
        EXPECT_EQ(screen.Record().bWrapPending, wrapPending);
        EXPECT_EQ(screen.Rows(), rows);
        EXPECT_EQ(screen.History(), std::vector<std::string>(3)) << "nothing scrolls";
        EXPECT_TRUE(screen.PictureIsRight());
    }
}

const CodeCase codeCases[] = {
    {"IndexGoesUp", {3, 4}, "\033D", {2, 0}},
    {"IndexOnTheFirstRow", {0, 4}, "\033D", {0, 0}},
    {"NextLine", {2, 4}, "\033E", {3, 0}},
    {"NextLineOnTheLastRow", {4, 4}, "\033E", {4, 0}},
    {"Save", {2, 4}, "\033\067", {2, 4}},
    {"RestoreWithoutSaveGoesHome", {2, 4}, "\033\070", {0, 0}},
    {"SaveAndRestore", {2, 4}, "\033\067\033D\033\070", {2, 4}},
    {"KeypadCodes", {2, 4}, "\033=\033>", {2, 4}},
};

RUN_TABLE(Vt100Code, codeCases);

TEST(Vt100, IndexFromTheTenthRow) {
    TerminalScreen screen({Emulation_VT100, 80, 25, 0});
    screen.Place(10, 7);
    screen.Feed("\033D");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{9, 0}));
}

TEST(Vt100, SaveKeepsCursorAndColor) {
    TerminalScreen screen(shape);
    screen.Place(2, 4);
    screen.Feed("\033\067\033[31m\033[H\033\070");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 4}));
    EXPECT_EQ(screen.Record().nColor, 0x1F);
}

TEST(Vt100, SequenceSaveKeepsTheCursorAlone) {
    TerminalScreen screen(shape);
    screen.Place(2, 4);
    screen.Feed("\033[s\033[31m\033[H\033[u");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 4}));
    EXPECT_EQ(screen.Record().nColor, 0x1C);
}

TEST(Vt100, PlaceSavedOnATallScreenIsHeldOnAWideOne) {
    TerminalScreen screen({Emulation_VT100, 1, 60000, 0});
    screen.Feed("\033[59999;1H\033\067");
    ResizeTerminal(screen.Record(), 60000, 1);
    screen.Feed("ab\033\070c");
    EXPECT_EQ(screen.Row(0), "cb");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 1}));
}

TEST(Vt100, RestoreBringsACursorPastTheLastColumnBack) {
    TerminalScreen screen({Emulation_VT100, 3, 2, 0});
    screen.Record().nEndOfLineMode = 9;
    screen.Feed("abcd\033\067\033\070");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 2}));
}

TEST(Vt100, SaveKeepsNoFlags) {
    TerminalScreen screen(shape);
    COMCTL& record = screen.Record();
    screen.Feed("\033\067\033[5;7m\033(0\033\070");
    EXPECT_EQ(record.bReverse, 1);
    EXPECT_EQ(record.bBlink, 1);
    EXPECT_EQ(record.bLineDraw, 1);
}

TEST(Vt100, RestoreWithoutSaveTakesTheColorOfTheBeginning) {
    TerminalScreen screen(shape);
    screen.Feed("\033\070");
    EXPECT_EQ(screen.Record().nColor, 7);
}

// The reverse of the published meanings.
TEST(Vt100, EqualsSetsTheNumericKeypadAndGreaterClearsIt) {
    TerminalScreen screen(shape);
    EXPECT_EQ(screen.Record().bKeypadNumeric, 1);
    screen.Feed("\033>");
    EXPECT_EQ(screen.Record().bKeypadNumeric, 0);
    screen.Feed("\033=");
    EXPECT_EQ(screen.Record().bKeypadNumeric, 1);
}

TEST(Vt100, TheTableHoldsTheseCodes) {
    std::set<char> known;
    for (const CodeRow& row : Vt100Codes())
        known.insert(row.code);
    EXPECT_EQ(known, (std::set<char>{'7', '8', '=', '>', 'D', 'E', 'M'}));
}

TEST(Vt100, UnknownCodesChangeNothing) {
    TerminalScreen screen(shape);
    screen.Fill();
    screen.Place(2, 4);
    const auto before = screen.Portrait();
    for (int byte = 0; byte < 256; ++byte)
        if (std::string_view("78=>DEM[#()").find(static_cast<char>(byte)) == std::string_view::npos) {
            const char code[] = {'\033', static_cast<char>(byte)};
            screen.Feed({code, sizeof code});
            ASSERT_EQ(screen.Portrait(), before) << byte;
        }
    EXPECT_TRUE(screen.world.debugTexts.empty());
}

// ESC M

struct ReverseCase {
    const char* name;
    CursorPlace start;
};

class Vt100ReverseScroll : public testing::TestWithParam<ReverseCase> {};

TEST_P(Vt100ReverseScroll, DoublesTheFirstRowWhereverTheCursorIs) {
    TerminalScreen screen({Emulation_VT100, 2, 4, 3});
    screen.Fill();
    screen.Place(GetParam().start.row, GetParam().start.column);
    screen.Record().bWrapPending = 1;
    screen.Record().nColor = 0x4E;
    screen.Feed("\033M");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"aa", "aa", "bb", ""}));
    EXPECT_EQ(screen.History(), (std::vector<std::string>{"", "", "aa"}));
    EXPECT_EQ(screen.Colors(3), "\x4E\x4E");
    EXPECT_EQ(screen.Colors(0), "\x1F\x1F");
    EXPECT_EQ(screen.Cursor(), GetParam().start);
    EXPECT_EQ(screen.Record().bWrapPending, 1);
}

TEST_P(Vt100ReverseScroll, InARegionScrollsForward) {
    TerminalScreen screen({Emulation_VT100, 2, 4, 3});
    screen.Fill();
    screen.Feed("\033[2;3r");
    screen.Place(GetParam().start.row, GetParam().start.column);
    screen.Feed("\033M");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"aa", "cc", "", "dd"}));
    EXPECT_EQ(screen.History(), (std::vector<std::string>{"", "", "aa"}));
    EXPECT_EQ(screen.Cursor(), GetParam().start);
    EXPECT_TRUE(screen.PictureIsRight());
}

const ReverseCase reverseCases[] = {
    {"OnTheFirstRow", {0, 0}},
    {"InTheMiddle", {1, 1}},
    {"OnTheLastRow", {3, 1}},
};

RUN_TABLE(Vt100ReverseScroll, reverseCases);

TEST(Vt100, ReverseScrollMovesThePictureUpUntilTheNextFullPaint) {
    TerminalScreen screen({Emulation_VT100, 2, 4, 3});
    screen.Fill();
    screen.Repaint();
    screen.Place(3, 0);
    screen.Feed("\033M");
    screen.Repaint();
    EXPECT_EQ(screen.world.picture.text, (std::vector<std::string>{"bb", "cc", "dd", "  "}));
    RepaintAll(screen.Record(), Erase::No);
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Vt100, ReverseScrollOfOneRowBlanksIt) {
    TerminalScreen screen({Emulation_VT100, 4, 1, 2});
    screen.Feed("ab\033M");
    EXPECT_EQ(screen.Row(0), "");
    EXPECT_EQ(screen.History(), (std::vector<std::string>{"", "ab"}));
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 2}));
}

} // namespace
