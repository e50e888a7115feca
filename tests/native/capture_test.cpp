// Capture: which bytes reach the file in each mode, and the file's life.
#include "caseprint.h"
#include "terminal/capture.h"
#include "terminalscreen.h"

namespace {

constexpr char name[] = "capture.txt";

struct CaptureCase {
    const char* name;
    int emulation;
    int mode;
    std::string bytes;
    std::string captured; // before the capture ends
    std::string atEnd;    // what its end adds
};

class CaptureModeTable : public testing::TestWithParam<CaptureCase> {};

TEST_P(CaptureModeTable, Holds) {
    const CaptureCase& row = GetParam();
    TerminalScreen screen({row.emulation, 6, 3, 0});
    screen.Record().nCaptureMode = row.mode;
    ASSERT_EQ(SetCaptureFilename(screen.Handle(), name), 1);
    screen.Feed(row.bytes);
    const std::string& file = screen.world.disk.files[name];
    EXPECT_EQ(file, row.captured);
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), nullptr), 1);
    EXPECT_EQ(file, row.captured + row.atEnd);
    screen.Feed("behind the end");
    EXPECT_EQ(file, row.captured + row.atEnd);
}

const std::string mixed = "a\033[1mb\r\nc\f\ad";

const CaptureCase captureCases[] = {
    {"StandardLeavesSequencesOut", Emulation_Ansi, Capture_Standard, mixed, "ab\r\nc\f\ad", ""},
    {"StandardUnderTtyHoldsAll", Emulation_TTY, Capture_Standard, mixed, mixed, ""},
    {"StandardUnderVt52", Emulation_VT52, Capture_Standard, "a\033[Ab\r\n", "ab\r\n", ""},
    {"StandardUnderVt100", Emulation_VT100, Capture_Standard,
     "a\x9B"
     "1mb\033(0q\r\n",
     "abq\r\n", ""},
    {"StandardWithoutEmulation", Emulation_None, Capture_Standard, mixed, "", ""},
    {"BinaryHoldsAll", Emulation_Ansi, Capture_Binary, mixed, mixed, ""},
    {"BinaryUnderTty", Emulation_TTY, Capture_Binary, mixed, mixed, ""},
    {"BinaryUnderVt52", Emulation_VT52, Capture_Binary, mixed, mixed, ""},
    {"BinaryUnderVt100", Emulation_VT100, Capture_Binary, mixed, mixed, ""},
    {"BinaryWithoutEmulation", Emulation_None, Capture_Binary, mixed, mixed, ""},
    {"VisibleHoldsNothingYet", Emulation_Ansi, Capture_Visible, "ab\r\ncd", "", "ab\r\ncd\r\n\r\n"},
    {"VisibleBlankScreen", Emulation_Ansi, Capture_Visible, "", "", "\r\n\r\n\r\n"},
    {"VisibleScrolledRow", Emulation_Ansi, Capture_Visible, "a \r\nb\r\nc\r\nd", "a\r\n", "b\r\nc\r\nd\r\n"},
    {"VisibleWrappedRow", Emulation_Ansi, Capture_Visible, "\n\n123456x", "\r\n", "\r\n123456\r\nx\r\n"},
    {"VisibleFormFeed", Emulation_Ansi, Capture_Visible, "a\r\nb\fc", "a\r\nb\r\n\r\n", "c\r\n\r\n\r\n"},
    {"VisibleEraseDisplay", Emulation_Ansi, Capture_Visible, "a\033[2Jb", "a\r\n\r\n\r\n", "b\r\n\r\n\r\n"},
    {"VisibleEraseOfAPart", Emulation_Ansi, Capture_Visible, "a\033[1J\033[J", "", "\r\n\r\n\r\n"},
    {"VisibleReverseScroll", Emulation_VT100, Capture_Visible, "a\033M", "a\r\n", "a\r\na\r\n\r\n"},
    {"VisibleRegionScroll", Emulation_Ansi, Capture_Visible, "a\r\nb\033[1;2r\n\n", "a\r\nb\r\n",
     "\r\n\r\n\r\n"},
    {"VisibleWithoutEmulation", Emulation_None, Capture_Visible, "a\fb", "", ""},
    {"UnknownMode", Emulation_Ansi, 3, "a\r\n\n\n\n", "", ""},
};

RUN_TABLE(CaptureModeTable, captureCases);

TEST(Capture, ModeMayChangeWhileAFileIsOpen) {
    TerminalScreen screen({Emulation_Ansi, 6, 3, 0});
    SetCaptureFilename(screen.Handle(), name);
    screen.Feed("a\033[1m");
    screen.Record().nCaptureMode = Capture_Binary;
    screen.Feed("b\033[0m");
    screen.Record().nCaptureMode = Capture_Visible;
    screen.Feed("c\f");
    screen.Record().nCaptureMode = Capture_Standard;
    screen.Feed("d\033[m");
    SetCaptureFilename(screen.Handle(), "");
    EXPECT_EQ(screen.world.disk.files[name], "ab\033[0mabc\r\n\r\n\r\nd");
}

TEST(Capture, ExistingFileIsAppendedTo) {
    TerminalScreen screen({Emulation_TTY, 6, 3, 0});
    screen.world.disk.files[name] = "old ";
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), name), 1);
    screen.Feed("new");
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), name), 1);
    screen.Feed(" again");
    EXPECT_EQ(screen.world.disk.files[name], "old new again");
}

TEST(Capture, SwitchOfFilesEndsTheFirst) {
    TerminalScreen screen({Emulation_TTY, 6, 1, 0});
    screen.Record().nCaptureMode = Capture_Visible;
    SetCaptureFilename(screen.Handle(), "one");
    screen.Feed("ab");
    SetCaptureFilename(screen.Handle(), "two");
    screen.Feed("\r\n");
    EXPECT_EQ(screen.world.disk.files["one"], "ab\r\n");
    EXPECT_EQ(screen.world.disk.files["two"], "ab\r\n");
    EXPECT_EQ(screen.world.disk.OpenFiles(), 1u);
}

TEST(Capture, FileSwitchedFromVisibleIsNotFlushedAtItsEnd) {
    TerminalScreen screen({Emulation_TTY, 6, 1, 0});
    screen.Record().nCaptureMode = Capture_Visible;
    SetCaptureFilename(screen.Handle(), name);
    screen.Feed("ab");
    screen.Record().nCaptureMode = Capture_Standard;
    SetCaptureFilename(screen.Handle(), nullptr);
    EXPECT_EQ(screen.world.disk.files[name], "");
}

using Calls = std::vector<std::string>;

TEST(Capture, CallsForAFileThatIsThere) {
    TerminalScreen screen;
    screen.world.disk.files[name];
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), name), 1);
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), ""), 1);
    EXPECT_EQ(screen.world.disk.journal,
              (Calls{"open capture.txt 33", "end of capture.txt", "close capture.txt"}));
    EXPECT_EQ(screen.Record().hCaptureFile, HFILE_ERROR);
}

TEST(Capture, NewFileIsMadeClosedAndOpened) {
    TerminalScreen screen;
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), name), 1);
    Calls calls = screen.world.disk.journal;
    std::erase(calls, "end of capture.txt");
    EXPECT_EQ(calls, (Calls{"open capture.txt 33", "create capture.txt 0", "close capture.txt",
                            "open capture.txt 33"}));
    EXPECT_EQ(screen.world.disk.OpenFiles(), 1u);
}

TEST(Capture, FileThatCannotBeMade) {
    TerminalScreen screen;
    screen.world.disk.creates = false;
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), name), 0);
    EXPECT_EQ(screen.Record().hCaptureFile, HFILE_ERROR);
    screen.Feed("abc");
    EXPECT_FALSE(screen.world.disk.files.contains(name));
}

TEST(Capture, FileThatSomebodyElseHasOpen) {
    TerminalScreen screen;
    screen.world.disk.locked.insert(name);
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), name), 0);
    EXPECT_EQ(screen.world.disk.OpenFiles(), 0u);
}

TEST(Capture, FailedOpenEndsTheOneBefore) {
    TerminalScreen screen;
    SetCaptureFilename(screen.Handle(), name);
    screen.world.disk.creates = false;
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), "other"), 0);
    EXPECT_EQ(screen.Record().hCaptureFile, HFILE_ERROR);
    EXPECT_EQ(screen.world.disk.OpenFiles(), 0u);
}

TEST(Capture, NothingToEnd) {
    TerminalScreen screen;
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), nullptr), 1);
    EXPECT_EQ(SetCaptureFilename(screen.Handle(), ""), 1);
    EXPECT_TRUE(screen.world.disk.journal.empty());
}

TEST(Capture, DeadHandle) {
    TerminalScreen screen;
    EXPECT_EQ(SetCaptureFilename(nullptr, name), 0);
    EXPECT_EQ(SetCaptureFilename(reinterpret_cast<HWND>(8), name), 0);
    EXPECT_TRUE(screen.world.disk.journal.empty());
}

struct FullCase {
    const char* name;
    int mode;
    std::string captured;
};

class CaptureFullDisk : public testing::TestWithParam<FullCase> {};

TEST_P(CaptureFullDisk, LosesBytesAndGoesOn) {
    TerminalScreen screen({Emulation_TTY, 6, 1, 0});
    screen.Record().nCaptureMode = GetParam().mode;
    SetCaptureFilename(screen.Handle(), name);
    screen.Feed("a\r\n");
    screen.world.disk.diskFull = true;
    screen.Feed("b\r\n");
    EXPECT_EQ(screen.world.disk.OpenFiles(), 1u);
    screen.world.disk.diskFull = false;
    screen.Feed("c\r\n");
    EXPECT_EQ(screen.world.disk.files[name], GetParam().captured);
    EXPECT_TRUE(screen.world.messages.empty());
}

const FullCase fullCases[] = {
    {"Standard", Capture_Standard, "a\r\nc\r\n"},
    {"Binary", Capture_Binary, "a\r\nc\r\n"},
    {"Visible", Capture_Visible, "a\r\nc\r\n"},
};

RUN_TABLE(CaptureFullDisk, fullCases);

struct FlushCase {
    const char* name;
    int count;
    std::string written;
};

class CaptureFlush : public testing::TestWithParam<FlushCase> {};

TEST_P(CaptureFlush, WritesTheFirstRows) {
    TerminalScreen screen({Emulation_TTY, 4, 3, 0});
    screen.Feed("aa\r\n b  \r\nc");
    screen.Record().nCaptureMode = Capture_Visible;
    SetCaptureFilename(screen.Handle(), name);
    const auto rows = screen.Rows();
    FlushVisibleRows(screen.Record(), GetParam().count);
    EXPECT_EQ(screen.world.disk.files[name], GetParam().written);
    EXPECT_EQ(screen.Rows(), rows);
}

const FlushCase flushCases[] = {
    {"None", 0, ""},
    {"One", 1, "aa\r\n"},
    {"Two", 2, "aa\r\n b\r\n"},
    {"All", 3, "aa\r\n b\r\nc\r\n"},
    {"MoreThanAll", 4, "aa\r\n b\r\nc\r\n"},
    {"MinusOneIsAll", -1, "aa\r\n b\r\nc\r\n"},
    {"MinusTwoIsNone", -2, ""},
};

RUN_TABLE(CaptureFlush, flushCases);

TEST(Capture, EndOfTheObjectFlushesAndCloses) {
    TerminalScreen screen({Emulation_TTY, 4, 2, 0});
    screen.Record().nCaptureMode = Capture_Visible;
    SetCaptureFilename(screen.Handle(), name);
    screen.Feed("ab");
    EndCapture(screen.Record());
    EndCapture(screen.Record());
    EXPECT_EQ(screen.world.disk.files[name], "ab\r\n\r\n");
    EXPECT_EQ(screen.world.disk.OpenFiles(), 0u);
}

// What standard mode writes for every single byte.
TEST(Capture, StandardHoldsEveryByteOfTtyText) {
    TerminalScreen screen({Emulation_TTY, 6, 3, 0});
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    SetCaptureFilename(screen.Handle(), name);
    screen.Feed(all);
    EXPECT_EQ(screen.world.disk.files[name], all);
}

} // namespace
