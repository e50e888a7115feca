// What is dirty, and when it is painted.
#include "caseprint.h"
#include "terminalscreen.h"

namespace {

using Rows = std::vector<std::string>;

constexpr TerminalShape small = {Emulation_TTY, 4, 3, 0};

struct DirtyCase {
    const char* name;
    int first;
    int last;
    int row;
    int firstAfter;
    int lastAfter;
};

class RepaintRange : public testing::TestWithParam<DirtyCase> {};

TEST_P(RepaintRange, TakesTheCursorsRow) {
    TerminalScreen screen({Emulation_TTY, 4, 10, 0});
    COMCTL& record = screen.Record();
    record.nDirtyFirst = GetParam().first;
    record.nDirtyLast = GetParam().last;
    record.nCursorRow = GetParam().row;
    MarkDirtyRow(record);
    EXPECT_EQ(record.nDirtyFirst, GetParam().firstAfter);
    EXPECT_EQ(record.nDirtyLast, GetParam().lastAfter);
    EXPECT_EQ(record.bRepaintPosted, 1);
    MarkDirtyRow(record);
    EXPECT_EQ(screen.world.journal, Rows{"post"}) << "one request for both";
}

const DirtyCase dirtyCases[] = {
    {"NothingBefore", 0, 0, 5, 5, 6}, {"NothingBeforeElsewhere", 7, 7, 2, 2, 3},
    {"Above", 3, 5, 1, 1, 5},         {"RightAbove", 3, 5, 2, 2, 5},
    {"First", 3, 5, 3, 3, 5},         {"LastInside", 3, 5, 4, 3, 5},
    {"RightBelow", 3, 5, 5, 3, 6},    {"Below", 3, 5, 8, 3, 9},
};

RUN_TABLE(RepaintRange, dirtyCases);

struct FlushCase {
    const char* name;
    int rows; // that are written to
    bool flushed;
};

class RepaintAtOnce : public testing::TestWithParam<FlushCase> {};

TEST_P(RepaintAtOnce, ComesWithMoreThanFiveDirtyRows) {
    TerminalScreen screen({Emulation_TTY, 4, 10, 0});
    std::string bytes = "x";
    for (int row = 1; row < GetParam().rows; ++row)
        bytes += "\nx";
    screen.Feed(bytes);
    const Rows expected = GetParam().flushed ? Rows{"post", "follow 0", "flush"} : Rows{"post", "follow 0"};
    EXPECT_EQ(screen.world.journal, expected);
    EXPECT_TRUE(screen.PictureIsRight());
}

const FlushCase flushCases[] = {{"One", 1, false}, {"Five", 5, false}, {"Six", 6, true}, {"Ten", 10, true}};

RUN_TABLE(RepaintAtOnce, flushCases);

TEST(Repaint, ManyWritesShareOneRequest) {
    TerminalScreen screen(small);
    screen.Feed("a");
    screen.Feed("b");
    screen.Feed("c");
    EXPECT_EQ(screen.world.journal, (Rows{"post", "follow 0", "follow 0", "follow 0"}));
    screen.Repaint();
    screen.Feed("d");
    EXPECT_EQ(screen.world.journal.size(), 6u);
}

TEST(Repaint, ScrollsAreMergedIntoOneMoveOfThePicture) {
    TerminalScreen screen({Emulation_TTY, 2, 8, 0});
    screen.Fill();
    screen.Repaint();
    screen.world.Forget();
    screen.Place(7, 0);
    screen.Feed("\n\n\n");
    EXPECT_EQ(screen.Record().nPictureScroll, 3);
    EXPECT_EQ(screen.world.journal, (Rows{"post", "follow 0"}));
    EXPECT_TRUE(screen.PictureIsRight());
    EXPECT_EQ(screen.Record().nPictureScroll, 0);
}

TEST(Repaint, RegionScrollMarksItsRowsAndKeepsTheRest) {
    TerminalScreen screen({Emulation_Ansi, 2, 12, 0});
    screen.Fill();
    screen.Repaint();
    screen.world.Forget();
    screen.Record().nScrollTop = 3;
    screen.Record().nScrollBottom = 5;
    ScrollScreen(screen.Record());
    EXPECT_EQ(screen.Record().nDirtyFirst, 3);
    EXPECT_EQ(screen.Record().nDirtyLast, 6);
    EXPECT_EQ(screen.world.journal, Rows{"post"});
}

TEST(Repaint, RegionScrollWithASelectionMarksAllRows) {
    TerminalScreen screen({Emulation_Ansi, 2, 12, 5});
    screen.Fill();
    screen.Repaint();
    screen.Record().nSelEndRow = 1;
    screen.Record().nScrollTop = 3;
    screen.Record().nScrollBottom = 5;
    ScrollScreen(screen.Record());
    EXPECT_EQ(screen.Record().nDirtyFirst, 0);
    EXPECT_EQ(screen.Record().nDirtyLast, 12);
}

struct WholeCase {
    const char* name;
    int emulation;
    std::string bytes;
};

class RepaintOfTheWhole : public testing::TestWithParam<WholeCase> {};

TEST_P(RepaintOfTheWhole, MarksAllRowsOrPaintsAtOnceWhatIsSeenOfTheScrollback) {
    TerminalScreen screen({GetParam().emulation, 4, 5, 3});
    screen.Place(2, 0);
    screen.Feed(GetParam().bytes);
    EXPECT_EQ(screen.Record().nDirtyFirst, 0);
    EXPECT_EQ(screen.Record().nDirtyLast, 5);
    EXPECT_EQ(screen.world.journal, (Rows{"post", "follow 0"}));
    screen.Repaint();
    screen.world.Forget();
    screen.Record().nTopRow = -1;
    screen.Place(2, 0);
    screen.Feed(GetParam().bytes);
    EXPECT_EQ(screen.world.journal, (Rows{"paint all", "post", "follow 0"}));
}

const WholeCase wholeCases[] = {
    {"EraseInDisplay", Emulation_Ansi, "\033[J"}, {"EraseUpTo", Emulation_Ansi, "\033[1J"},
    {"EraseAll", Emulation_VT100, "\033[2J"},     {"FormFeed", Emulation_TTY, "\f"},
    {"Vt52Erase", Emulation_VT52, "\033xJ"},
};

RUN_TABLE(RepaintOfTheWhole, wholeCases);

TEST(Repaint, EraseInLineMarksItsRowAlone) {
    TerminalScreen screen({Emulation_Ansi, 4, 5, 3});
    screen.Place(2, 0);
    screen.Feed("\033[K");
    EXPECT_EQ(screen.Record().nDirtyFirst, 2);
    EXPECT_EQ(screen.Record().nDirtyLast, 3);
}

TEST(Repaint, DirtyRowsOfAShownScrollbackStayDirty) {
    TerminalScreen screen({Emulation_TTY, 4, 3, 5});
    screen.Record().nTopRow = -2;
    screen.Feed("a\r\n\n\n\n\n\n");
    EXPECT_EQ(screen.Record().nDirtyFirst, -2);
    EXPECT_EQ(screen.Record().nDirtyLast, 3);
}

TEST(Repaint, FrameThatIsNotDueIsLeftToTheRequest) {
    TerminalScreen screen({Emulation_TTY, 4, 10, 0});
    screen.world.frameIsDue = false;
    screen.Feed("a\nb\nc\nd\ne\nf\ng");
    EXPECT_EQ(screen.world.journal, (Rows{"post", "follow 0", "flush"}));
    EXPECT_EQ(screen.Record().bRepaintPosted, 1);
    EXPECT_EQ(screen.Record().nDirtyLast, 7);
    EXPECT_TRUE(screen.PictureIsRight());
}

// The row that was changed is left in the same write.
struct LeaveCase {
    const char* name;
    std::string bytes;
};

class RepaintOfALeftRow : public testing::TestWithParam<LeaveCase> {};

TEST_P(RepaintOfALeftRow, ShowsWhatWasErasedInIt) {
    for (const std::string& change : {std::string("\033[K"), std::string("\b")}) {
        TerminalScreen screen({Emulation_VT100, 4, 8, 0});
        screen.Record().nBackspace = 0;
        screen.Fill();
        screen.Feed("\033[2;1H\033[s\033[4;3H");
        screen.Repaint();
        screen.Feed(change + GetParam().bytes);
        EXPECT_NE(screen.Cells(3), "dddd");
        EXPECT_TRUE(screen.PictureIsRight());
    }
}

const LeaveCase leaveCases[] = {
    {"LineFeed", "\n"},
    {"Up", "\033[A"},
    {"Down", "\033[B"},
    {"Position", "\033[H"},
    {"SmallF", "\033[7;1f"},
    {"Restore", "\033[u"},
    {"Region", "\033[6;7r"},
    {"Index", "\033D"},
    {"NextLine", "\033E"},
    {"RestoreWithColor", "\033\070"},
    {"UpAndBack", "\033[A\033[B"},
};

RUN_TABLE(RepaintOfALeftRow, leaveCases);

TEST(Repaint, EveryWriteMarksTheRowWhereTheCursorStopped) {
    for (const int emulation : {Emulation_TTY, Emulation_Ansi, Emulation_VT52, Emulation_VT100}) {
        TerminalScreen screen({emulation, 4, 8, 0});
        screen.Place(2, 3);
        screen.Feed("\r");
        EXPECT_EQ(screen.Record().nDirtyFirst, 2);
        EXPECT_EQ(screen.Record().nDirtyLast, 3);
        EXPECT_EQ(screen.world.journal, (Rows{"post", "follow 0"}));
    }
}

} // namespace
