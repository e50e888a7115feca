// The ANSI emulation: where sequences begin and end, and what becomes of those that are too long or cut.
#include "caseprint.h"
#include "terminalscreen.h"

namespace {

constexpr TerminalShape shape = {Emulation_Ansi, 10, 5, 0};

// Pieces that come one after the other, and what is to be seen after the last.
struct PiecesCase {
    const char* name;
    std::vector<std::string> pieces;
    CursorPlace cursor;
    int open; // bytes of an open sequence
    std::string rowThree;
    std::vector<std::string> messages;
};

class AnsiPieces : public testing::TestWithParam<PiecesCase> {};

TEST_P(AnsiPieces, FollowTheTable) {
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
    {"TextAroundASequence", {"ab\033[2Dc"}, {3, 1}, 0, "cb", {}},
    {"AnyByteBehindTheEscape", {"\033(B"}, {4, 0}, 0, "", {}},
    {"FinalBehindTheEscape", {"\033A"}, {2, 0}, 0, "", {}},
    {"EightBitIntroducerIsText",
     {"\x9B"
      "2A"},
     {3, 3},
     0,
     "\x9B"
     "2A",
     {}},
    {"EscapeAlone", {"ab\033"}, {3, 2}, 1, "ab", {}},
    {"EscapeThenTheRest", {"ab\033", "[2D", "c"}, {3, 1}, 0, "cb", {}},
    {"OpenParameters", {"\033[1;2"}, {3, 0}, 5, "", {}},
    {"BytesOfEightBitsAreCollected", {"\033[\xC4\xFF"}, {3, 0}, 4, "", {}},

    // Control characters inside a sequence: together with it they end it, on their own they become part of
    // it.
    {"ControlEndsASequenceInItsPiece", {"\033[1\rA"}, {3, 1}, 0, "A", {Unhandled('1')}},
    {"ControlInAPieceOfItsOwnIsCollected", {"\033[1", "\r", "A"}, {2, 0}, 0, "", {}},
    {"ControlAtTheStartOfAPieceIsCollected", {"\033[1", "\rA"}, {3, 0}, 5, "", {}},
    {"ControlRightBehindTheEscape", {"\033\rA"}, {3, 0}, 3, "", {}},
    {"ControlRightBehindTheBracket", {"\033[\rA"}, {3, 1}, 0, "A", {Unhandled('[')}},
    {"EscapeInsideASequence", {"\033[1\033[2C"}, {3, 2}, 0, "", {Unhandled('1')}},
    {"EscapeInsideInAPieceOfItsOwn", {"\033[1", "\033", "[2C"}, {3, 1}, 0, "", {}},
    {"FinalBeforeAControlRuns", {"\033[2C\r"}, {3, 0}, 0, "", {}},
    {"EscapeTwice", {"\033\033[A"}, {3, 0}, 4, "", {}},
    {"NulInsideEndsTheParameters", {"\033[2", std::string(1, '\0'), "3A"}, {1, 0}, 0, "", {}},

    // Nineteen bytes are the most that a sequence may have.
    {"NineteenBytesRun", {"\033[" + digits.substr(0, 16) + "A"}, {0, 0}, 0, "", {}},
    {"TwentyBytesAreDropped", {"\033[" + digits.substr(0, 17) + "A"}, {3, 0}, 0, "", {}},
    {"TwentyFiveParameterBytesAreDropped", {"\033[" + digits.substr(0, 25) + "A", "x"}, {3, 1}, 0, "x", {}},
    {"TooLongAndCutByAControlIsDropped", {"\033[" + digits.substr(0, 25) + "\rx"}, {3, 1}, 0, "x", {}},
    {"NineteenBytesWithoutAFinalAreKept", {"\033[" + digits.substr(0, 17)}, {3, 0}, 19, "", {}},
    {"TwentyBytesWithoutAFinalAreLost", {"\033[" + digits.substr(0, 18)}, {3, 0}, 1, "", {}},
    {"WhatFollowsALossGoesOn", {"\033[" + digits.substr(0, 25), "5A"}, {2, 0}, 0, "", {}},
    {"WhatFollowsALossGoesOnWithItsOwnBracket", {"\033[" + digits.substr(0, 25), "[2A"}, {1, 0}, 0, "", {}},
    {"FullSequenceDropsItsFinal", {"\033[" + digits.substr(0, 17), "A", "x"}, {3, 1}, 0, "x", {}},
    {"FullSequenceLosesWhatIsNoFinal", {"\033[" + digits.substr(0, 17), "111", "\r"}, {3, 0}, 19, "", {}},
    {"FullSequenceEndsOnTheNextFinal", {"\033[" + digits.substr(0, 17), "111", "m", "x"}, {3, 1}, 0, "x", {}},
};

RUN_TABLE(AnsiPieces, piecesCases);

TEST(Ansi, OverlongSequenceByteByByteEndsOnItsFinal) {
    TerminalScreen screen(shape);
    screen.Place(3, 0);
    screen.FeedByteByByte("\033[" + digits + "Ax");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{3, 1}));
    EXPECT_EQ(screen.Row(3), "x");
    EXPECT_EQ(screen.Record().nEscape, 0);
}

TEST(Ansi, ChangeOfEmulationCarriesAnOpenSequenceOver) {
    TerminalScreen screen(shape);
    screen.Place(3, 0);
    screen.Feed("\033[2");
    SwitchEmulation(screen.Record(), Emulation_VT100);
    screen.Feed("A");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{1, 0}));
    screen.Feed("\033[");
    SwitchEmulation(screen.Record(), Emulation_VT52);
    screen.Feed("B");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 0}));
}

TEST(Ansi, LongOpenSequenceUnderVt52RunsItsThirdByte) {
    TerminalScreen screen(shape);
    screen.Place(3, 0);
    screen.Feed("\033");
    screen.Feed("\rA!!"); // collected, since a control character comes first
    SwitchEmulation(screen.Record(), Emulation_VT52);
    screen.Feed("x");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 1}));
    EXPECT_EQ(screen.Row(2), "x");
}

TEST(Ansi, TtyLeavesAnOpenSequenceAlone) {
    TerminalScreen screen(shape);
    screen.Feed("\033[2");
    SwitchEmulation(screen.Record(), Emulation_TTY);
    screen.Feed("C");
    EXPECT_EQ(screen.Row(0), "C");
    SwitchEmulation(screen.Record(), Emulation_Ansi);
    screen.Feed("C");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 3}));
}

TEST(Ansi, WithoutPlanesNothingIsCollected) {
    TerminalScreen screen({Emulation_None, 10, 5, 0});
    screen.Record().nEmulation = Emulation_Ansi;
    screen.Feed("\033[2");
    EXPECT_EQ(screen.Record().nEscape, 0);
}

} // namespace
