// The VT52 emulation: codes of three bytes.
#include "caseprint.h"
#include "terminal/codes.h"
#include "terminalscreen.h"

#include <set>

namespace {

constexpr TerminalShape shape = {Emulation_VT52, 6, 5, 3};

struct CodeCase {
    const char* name;
    CursorPlace start;
    std::string bytes;
    CursorPlace end;
};

// No code touches a pending wrap.
class Vt52Code : public testing::TestWithParam<CodeCase> {};

TEST_P(Vt52Code, FollowsTheTable) {
    for (const int wrapPending : {0, 1}) {
        TerminalScreen screen(shape);
        screen.Fill();
        screen.Place(GetParam().start.row, GetParam().start.column);
        screen.Record().bWrapPending = wrapPending;
        const auto rows = screen.Rows();
        screen.Feed(GetParam().bytes);
        EXPECT_EQ(screen.Cursor(), GetParam().end);
        EXPECT_EQ(screen.Record().bWrapPending, wrapPending);
        EXPECT_EQ(screen.Record().nEscape, 0);
        EXPECT_EQ(screen.Rows(), rows);
        EXPECT_EQ(screen.History(), std::vector<std::string>(3)) << "nothing scrolls";
        EXPECT_TRUE(screen.PictureIsRight());
    }
}

const CodeCase codeCases[] = {
    {"Up", {2, 3}, "\033xA", {1, 3}},
    {"UpAsTheArrowKeysSendIt", {2, 3}, "\033[A", {1, 3}},
    {"UpOnTheFirstRow", {0, 3}, "\033xA", {0, 3}},
    {"ReverseLineFeed", {2, 3}, "\033xI", {1, 3}},
    {"ReverseLineFeedOnTheFirstRow", {0, 3}, "\033xI", {0, 3}},
    {"Down", {2, 3}, "\033xB", {3, 3}},
    {"DownOnTheLastRow", {4, 3}, "\033xB", {4, 3}},
    {"Right", {2, 3}, "\033xC", {2, 4}},
    {"RightOnTheLastColumn", {2, 5}, "\033xC", {2, 5}},
    {"Left", {2, 3}, "\033xD", {2, 2}},
    {"LeftOnTheFirstColumn", {2, 0}, "\033xD", {2, 0}},
    {"Home", {2, 3}, "\033xH", {0, 0}},
    {"SecondByteIsNeverLookedAt", {2, 3}, "\033AB", {3, 3}},
    {"SecondByteMayBeAnEscape", {2, 3}, "\033\033B", {3, 3}},
    {"SecondByteMayBeAControl", {2, 3}, "\033\nB", {3, 3}},
    {"SecondByteMayBeNul", {2, 3}, std::string("\033\0B", 3), {3, 3}},
    {"TwoByteCodeSwallowsTheNextByte", {2, 3}, "\033Aa", {2, 3}},
    {"ThirdByteOutsideTheTable", {2, 3}, "\033xE", {2, 3}},
    {"GraphicsAreAbsent", {2, 3}, "\033xF", {2, 3}},
    {"KeypadIsAbsent", {2, 3}, "\033x=", {2, 3}},
    {"ExitToAnsiIsAbsent", {2, 3}, "\033x<", {2, 3}},
    {"DirectAddressGoesHome", {2, 3}, "\033xY+0", {0, 0}},
    {"DirectAddressOfThePlaceItself", {2, 3}, "\033xY\"#", {0, 0}},
    {"DirectAddressOfTheLastCell", {2, 3}, "\033xY$%", {0, 0}},
    {"DirectAddressBelowItsRange", {2, 3}, "\033xY\x01\x1F", {0, 0}},
    {"DirectAddressOfHighBytes", {2, 3}, "\033xY\xFF\x80", {0, 0}},
    {"DirectAddressTakesAnEscape", {2, 3}, "\033xY\033B", {0, 0}},
};

RUN_TABLE(Vt52Code, codeCases);

TEST(Vt52, DirectAddressGoesHomeForEveryPairOfBytes) {
    TerminalScreen screen(shape);
    for (int row = 0; row < 256; row += 5)
        for (int column = 0; column < 256; column += 3) {
            screen.Place(2, 3);
            const char code[] = {'\033', '!', 'Y', static_cast<char>(row), static_cast<char>(column)};
            screen.Feed({code, sizeof code});
            ASSERT_EQ(screen.Cursor(), (CursorPlace{0, 0})) << row << " " << column;
        }
}

TEST(Vt52, DirectAddressInTwoCalls) {
    TerminalScreen screen(shape);
    screen.Place(2, 3);
    screen.Feed("\033xY+");
    EXPECT_EQ(screen.Record().nEscape, 4);
    EXPECT_EQ(screen.Cursor(), (CursorPlace{2, 3}));
    screen.Feed("0z");
    EXPECT_EQ(screen.Record().nEscape, 0);
    EXPECT_EQ(screen.Row(0), "z");
}

TEST(Vt52, OpenCodeIsKept) {
    TerminalScreen screen(shape);
    screen.Feed("ab\033");
    EXPECT_EQ(screen.Record().nEscape, 1);
    screen.Feed("x");
    EXPECT_EQ(screen.Record().nEscape, 2);
    screen.Feed("Dc");
    EXPECT_EQ(screen.Row(0), "ac");
}

struct EraseCase {
    const char* name;
    CursorPlace start;
    std::string bytes;
    std::vector<std::string> cells;
};

class Vt52Erase : public testing::TestWithParam<EraseCase> {};

TEST_P(Vt52Erase, FollowsTheTable) {
    TerminalScreen screen({Emulation_VT52, 4, 3, 2});
    screen.Fill();
    screen.Place(GetParam().start.row, GetParam().start.column);
    screen.Record().bWrapPending = 1;
    screen.Record().nColor = 0x4E;
    screen.Feed(GetParam().bytes);
    EXPECT_EQ(screen.Cursor(), GetParam().start);
    EXPECT_EQ(screen.Record().bWrapPending, 1);
    for (int row = 0; row < 3; ++row) {
        const std::string cells = screen.Cells(row);
        EXPECT_EQ(cells, GetParam().cells[static_cast<size_t>(row)]);
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(screen.ColorAt(row, column), cells[static_cast<size_t>(column)] == ' ' ? 0x4E : 0x1F);
    }
    EXPECT_EQ(screen.History(), std::vector<std::string>(2));
    EXPECT_TRUE(screen.PictureIsRight());
}

const EraseCase eraseCases[] = {
    {"ToTheEndOfTheScreen", {1, 2}, "\033xJ", {"aaaa", "bb  ", "    "}},
    {"ToTheEndOfTheScreenFromTheCorner", {0, 0}, "\033xJ", {"    ", "    ", "    "}},
    {"ToTheEndOfTheScreenFromTheLastCell", {2, 3}, "\033xJ", {"aaaa", "bbbb", "ccc "}},
    {"ToTheEndOfTheLine", {1, 2}, "\033xK", {"aaaa", "bb  ", "cccc"}},
    {"ToTheEndOfTheLineFromItsStart", {1, 0}, "\033xK", {"aaaa", "    ", "cccc"}},
    {"ToTheEndOfTheLastLine", {2, 3}, "\033xK", {"aaaa", "bbbb", "ccc "}},
};

RUN_TABLE(Vt52Erase, eraseCases);

TEST(Vt52, ErasedRowIsPaintedThoughAPendingWrapLeavesIt) {
    TerminalScreen screen({Emulation_VT52, 4, 3, 0});
    screen.Feed("abcd");
    screen.Repaint();
    screen.Feed("\033xKe");
    EXPECT_EQ(screen.Rows(), (std::vector<std::string>{"abc", "e", ""}));
    EXPECT_TRUE(screen.PictureIsRight());
}

TEST(Vt52, IdentifyAnswersWithoutTheLastCharacter) {
    TerminalScreen screen(shape);
    screen.Feed("\033xZ");
    EXPECT_EQ(screen.world.sent, "\033[?1;2;");
    screen.Record().bPortOpen = 0;
    screen.world.sent.clear();
    screen.Feed("\033xZ");
    EXPECT_EQ(screen.world.sent, "");
}

TEST(Vt52, UnknownCodesSayNothingAndChangeNothing) {
    std::set<int> known;
    for (const CodeRow& row : Vt52Codes())
        known.insert(static_cast<unsigned char>(row.code));
    EXPECT_EQ(known, (std::set<int>{'A', 'B', 'C', 'D', 'H', 'I', 'J', 'K', 'Y', 'Z'}));
    TerminalScreen screen(shape);
    screen.Fill();
    screen.Place(2, 3);
    const auto before = screen.Portrait();
    for (int byte = 0; byte < 256; ++byte)
        if (!known.contains(byte)) {
            const char code[] = {'\033', '[', static_cast<char>(byte)};
            screen.Feed({code, sizeof code});
            ASSERT_EQ(screen.Portrait(), before) << byte;
        }
}

TEST(Vt52, CodesLeaveRegionLineDrawingAndSavedCursor) {
    TerminalScreen screen(shape);
    COMCTL& record = screen.Record();
    record.nScrollTop = 1;
    record.nScrollBottom = 2;
    record.bLineDraw = 1;
    record.nSavedRow = 3;
    record.nSavedColumn = 2;
    for (const CodeRow& row : Vt52Codes())
        screen.Feed(std::string("\033[") + row.code + (row.code == 'Y' ? "!!" : ""));
    EXPECT_EQ(record.nScrollTop, 1);
    EXPECT_EQ(record.nScrollBottom, 2);
    EXPECT_EQ(record.bLineDraw, 1);
    EXPECT_EQ(record.nSavedRow, 3);
    EXPECT_EQ(record.nSavedColumn, 2);
}

TEST(Vt52, CursorPastTheLastColumnErasesNothingAndComesBack) {
    TerminalScreen screen(shape);
    screen.Fill();
    screen.Record().nEndOfLineMode = 7;
    screen.Feed("123456\033xK\033xJ");
    EXPECT_EQ(screen.Row(0), "123456");
    EXPECT_EQ(screen.Row(1), "") << "to the end of the screen begins with the next row";
    screen.Feed("\033xC");
    EXPECT_EQ(screen.Cursor(), (CursorPlace{0, 5}));
}

} // namespace
