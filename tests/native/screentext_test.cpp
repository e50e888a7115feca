// The characters of screen and scrollback as text.
#include "caseprint.h"
#include "terminal/screentext.h"
#include "terminalscreen.h"

namespace {

std::string Contents(const TerminalScreen& screen, int size = 65535) {
    std::string buffer(static_cast<size_t>(std::max(size, 0)) + 1, '#');
    const int length = GetContents(screen.Handle(), buffer.data(), size);
    EXPECT_EQ(buffer[static_cast<size_t>(size)], '#') << "written behind the buffer";
    EXPECT_EQ(buffer[static_cast<size_t>(length)], '\0');
    return buffer.substr(0, static_cast<size_t>(length));
}

std::string ScrollContents(const TerminalScreen& screen, int size = 65535) {
    std::string buffer(static_cast<size_t>(std::max(size, 0)) + 1, '#');
    const int length = GetScrollContents(screen.Handle(), buffer.data(), size);
    EXPECT_EQ(buffer[static_cast<size_t>(size)], '#') << "written behind the buffer";
    EXPECT_EQ(buffer[static_cast<size_t>(length)], '\0');
    return buffer.substr(0, static_cast<size_t>(length));
}

struct TextCase {
    const char* name;
    std::string bytes;
    std::string contents;
    std::string scrollContents;
};

class ScreenTextOf : public testing::TestWithParam<TextCase> {};

TEST_P(ScreenTextOf, FollowsTheTable) {
    TerminalScreen screen({Emulation_TTY, 6, 3, 4});
    screen.Feed(GetParam().bytes);
    EXPECT_EQ(Contents(screen), GetParam().contents);
    EXPECT_EQ(ScrollContents(screen), GetParam().scrollContents);
    EXPECT_EQ(GetContentsLength(screen.Handle()), static_cast<int>(GetParam().contents.size()));
    EXPECT_EQ(GetScrollContentsLength(screen.Handle()), static_cast<int>(GetParam().scrollContents.size()));
}

const TextCase textCases[] = {
    {"Blank", "", "\r\n\r\n\r\n", ""},
    {"SpacesAreBlank", "   ", "\r\n\r\n\r\n", ""},
    {"TrailingSpacesAreCut", "a b  \r\n  c", "a b\r\n  c\r\n\r\n", ""},
    {"FullRow", "123456", "123456\r\n\r\n\r\n", ""},
    {"OneRowScrolled", "a\r\nb\r\nc\r\nd", "b\r\nc\r\nd\r\n", "a\r\n"},
    {"BlankRowsBeforeTheFirstLineAreSkipped", "\r\n\r\n\r\n\r\na\r\n\r\n\r\n", "\r\n\r\n\r\n", "a\r\n"},
    {"BlankRowsWithinStay", "a\r\n\r\nb\r\n\r\n\r\n", "\r\n\r\n\r\n", "a\r\n\r\nb\r\n"},
    {"BlankRowsBehindStay", "a\r\n\r\n\r\n\r\n", "\r\n\r\n\r\n", "a\r\n\r\n"},
    {"OldestAreLost", "a\r\nb\r\nc\r\nd\r\ne\r\nf\r\ng\r\n", "f\r\ng\r\n\r\n", "b\r\nc\r\nd\r\ne\r\n"},
    {"NulIsNoSpace", "\x01", "\x01\r\n\r\n\r\n", ""},
};

RUN_TABLE(ScreenTextOf, textCases);

struct SizeCase {
    const char* name;
    int size;
    std::string text;
};

class ScreenTextInto : public testing::TestWithParam<SizeCase> {};

// "ab", "c" and a blank row: 4, 3 and 2 bytes, and a NUL that has to fit too.
TEST_P(ScreenTextInto, TakesWholeRowsThatFit) {
    TerminalScreen screen({Emulation_TTY, 6, 3, 3});
    screen.Feed("ab\r\nc");
    EXPECT_EQ(Contents(screen, GetParam().size), GetParam().text);
    screen.Feed("\f");
    EXPECT_EQ(ScrollContents(screen, GetParam().size), GetParam().text);
}

const SizeCase sizeCases[] = {
    {"OneByteHoldsTheNul", 1, ""},
    {"FourBytesHoldNoRow", 4, ""},
    {"FiveBytesHoldTheFirst", 5, "ab\r\n"},
    {"SevenBytesHoldTheFirst", 7, "ab\r\n"},
    {"EightBytesHoldTwo", 8, "ab\r\nc\r\n"},
    {"NineBytesHoldTwo", 9, "ab\r\nc\r\n"},
    {"TenBytesHoldAll", 10, "ab\r\nc\r\n\r\n"},
    {"MoreThanAll", 100, "ab\r\nc\r\n\r\n"},
};

RUN_TABLE(ScreenTextInto, sizeCases);

TEST(ScreenText, RowThatDoesNotFitEndsTheTextThoughTheNextWould) {
    TerminalScreen screen({Emulation_TTY, 6, 3, 0});
    screen.Feed("a\r\n123456\r\nb");
    EXPECT_EQ(Contents(screen, 8), "a\r\n");
}

TEST(ScreenText, BufferWithoutRoomStaysUntouched) {
    TerminalScreen screen({Emulation_TTY, 6, 3, 3});
    screen.Feed("ab\f");
    char byte = '#';
    for (const int size : {0, -1}) {
        EXPECT_EQ(GetContents(screen.Handle(), &byte, size), 0);
        EXPECT_EQ(GetScrollContents(screen.Handle(), &byte, size), 0);
        EXPECT_EQ(byte, '#');
    }
}

TEST(ScreenText, WithoutABufferTheSizeStopsNothing) {
    TerminalScreen screen({Emulation_TTY, 6, 3, 3});
    screen.Feed("ab\r\nc");
    EXPECT_EQ(GetContents(screen.Handle(), nullptr, 0), 9);
    screen.Feed("\f");
    EXPECT_EQ(GetScrollContents(screen.Handle(), nullptr, 3), 9);
}

TEST(ScreenText, UsualSizes) {
    TerminalScreen screen({Emulation_Ansi, 80, 25, 100});
    EXPECT_EQ(GetContentsLength(screen.Handle()), 50);
    EXPECT_EQ(GetScrollContentsLength(screen.Handle()), 0);
}

TEST(ScreenText, WithoutPlanesThereIsNone) {
    TerminalScreen screen({Emulation_None, 80, 25, 0});
    char buffer[4] = "###";
    EXPECT_EQ(GetContents(screen.Handle(), buffer, sizeof buffer), 0);
    EXPECT_EQ(GetScrollContents(screen.Handle(), buffer, sizeof buffer), 0);
    EXPECT_EQ(GetContentsLength(screen.Handle()), 0);
    EXPECT_EQ(GetScrollContentsLength(screen.Handle()), 0);
}

TEST(ScreenText, LengthsHaveSixteenBits) {
    TerminalScreen screen({Emulation_TTY, 1, 65534, 0});
    EXPECT_EQ(GetContentsLength(screen.Handle()), 2 * 65534 - 65536);
}

TEST(ScreenText, BufferOfMoreThanSixteenBitsIsFilledUpToThem) {
    TerminalScreen screen({Emulation_TTY, 1, 40000, 0});
    const std::string text = Contents(screen, 100000);
    EXPECT_EQ(text.size(), 65534u) << "rows of two bytes, below 65535";
}

TEST(ScreenText, DeadHandles) {
    char buffer[4] = "###";
    for (const HWND handle : {HWND{}, reinterpret_cast<HWND>(8)}) {
        EXPECT_EQ(GetContents(handle, buffer, sizeof buffer), 0);
        EXPECT_EQ(GetScrollContents(handle, buffer, sizeof buffer), 0);
        EXPECT_EQ(GetContentsLength(handle), 0);
        EXPECT_EQ(GetScrollContentsLength(handle), 0);
    }
}

} // namespace
