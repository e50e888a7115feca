#include "logtest.h"

#include "support/memorylimit.h"

#include <thread>

using namespace logfiles;

namespace {

void LogPlain(const char* szText) {
    WireTapMsg(nullptr, WireTapText, szText, nullptr, 0);
}

class TestWindow {
  public:
    TestWindow()
        : hWnd_(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr)) {}
    ~TestWindow() { DestroyWindow(hWnd_); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    HWND Handle() const { return hWnd_; }

  private:
    HWND hWnd_;
};

} // namespace

using WireTapMessage = LogTest;
using WireTapBanner = LogTest;
using WireTapSilence = LogTest;
using WireTapDebugger = LogTest;
using WireTapAtOnce = LogTest;
using WireTapWide = LogTest;

TEST_F(WireTapMessage, WithoutDataIsTimeTextLineEnd) {
    LogPlain("hello");
    EXPECT_EQ(Messages(), "<time> hello\r\n");
}

TEST_F(WireTapMessage, DataFollowsItsText) {
    WireTapMsg(nullptr, WireTapData, "Comm1 writes 3 bytes: ", "AT\r", 3);
    EXPECT_EQ(Messages(), "<time> Comm1 writes 3 bytes: \"AT\" + Chr(13)\r\n");
}

TEST_F(WireTapMessage, HundredBytesAreJoinedOverFourLines) {
    const std::string bytes(100, 'x');
    WireTapMsg(nullptr, WireTapData, "Comm1 reads: ", bytes.data(), 100);
    const std::string full = '"' + std::string(32, 'x') + '"';
    const std::string join = " + _\r\n          ";
    EXPECT_EQ(Messages(), "<time> Comm1 reads: " + full + join + full + join + full + join + "\"xxxx\"\r\n");
}

TEST_F(WireTapMessage, DataWithoutBytesIsAnEmptyString) {
    WireTapMsg(nullptr, WireTapData, "text ", "", 0);
    EXPECT_EQ(Messages(), "<time> text \"\"\r\n");
}

TEST_F(WireTapMessage, CountWithoutDataCountsAsNoData) {
    WireTapMsg(nullptr, WireTapData, "text ", nullptr, 10);
    EXPECT_EQ(Messages(), "<time> text \r\n");
}

TEST_F(WireTapMessage, NullTextIsEmpty) {
    LogPlain(nullptr);
    WireTapMsg(nullptr, WireTapText, nullptr, "A", 1);
    EXPECT_EQ(Messages(), "<time> \r\n<time> \"A\"\r\n");
}

TEST_F(WireTapMessage, TextIsNoFormat) {
    LogPlain("100%s %n %d");
    EXPECT_EQ(Messages(), "<time> 100%s %n %d\r\n");
}

TEST_F(WireTapMessage, TextLongerThanItsLineStillEnds) {
    const std::string text(300, 't');
    WireTapMsg(nullptr, WireTapData, text.c_str(), "ABC", 3);
    EXPECT_EQ(Messages(), "<time> " + text + "\"A\" + _\r\n          \"BC\"\r\n");
}

TEST_F(WireTapMessage, ClassChangesNothing) {
    for (const int nClass : {-1, 0, 1, 2, 4, 5, 99})
        WireTapMsg(nullptr, nClass, "t", nullptr, 0);
    std::string expected;
    for (int i = 0; i < 7; ++i)
        expected += "<time> t\r\n";
    EXPECT_EQ(Messages(), expected);
}

TEST_F(WireTapMessage, OfAnObjectWithItsWindowIsWritten) {
    const TestWindow window;
    COMCTL record;
    AddLiveObject(window.Handle(), record);
    WireTapMsg(window.Handle(), WireTapText, "ours", nullptr, 0);
    RemoveLiveObject(window.Handle());
    EXPECT_EQ(Messages(), "<time> ours\r\n");
}

TEST_F(WireTapMessage, OfAHandleThatIsNoWindowIsWritten) {
    WireTapMsg(reinterpret_cast<HWND>(ULONG_PTR{0xDEAD}), WireTapText, "dead", nullptr, 0);
    EXPECT_EQ(Messages(), "<time> dead\r\n");
}

TEST_F(WireTapMessage, FileIsClosedAfterEach) {
    LogPlain("one");
    const FileHandle alone(CreateFileA(WireTapPath().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_TRUE(alone);
}

TEST_F(WireTapMessage, AppendsToAnOlderLog) {
    std::ofstream(WireTapPath(), std::ios::binary) << "01:02:03.004 <time> older\r\n";
    LogPlain("newer");
    EXPECT_EQ(Messages(), "<time> older\r\n<time> newer\r\n");
}

TEST_F(WireTapMessage, ReaderThatAllowsWritingDoesNotDisturb) {
    LogPlain("one");
    const FileHandle reader(CreateFileA(WireTapPath().c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(reader);
    LogPlain("two");
    EXPECT_EQ(Messages(), "<time> one\r\n<time> two\r\n");
}

TEST_F(WireTapBanner, OfAModuleOfAnotherNameIsTheTimeAlone) {
    ASSERT_EQ(GetModuleHandleA("Lantry.OCX"), nullptr);
    LogPlain("x");
    EXPECT_EQ(Untimed(ReadWholeFile(WireTapPath())), "<time> <time> x\r\n");
}

TEST_F(WireTapBanner, FirstLineCarriesTheTimeOfTheLatestMessage) {
    LogPlain("one");
    const std::string before = ReadWholeFile(WireTapPath());
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 50)
        Sleep(1); // the clock must move on
    LogPlain("two");
    const std::string after = ReadWholeFile(WireTapPath());
    const size_t secondLine = before.size();
    EXPECT_NE(after.substr(0, StampLength), before.substr(0, StampLength));
    EXPECT_EQ(after.substr(0, StampLength), after.substr(secondLine, StampLength));
    EXPECT_EQ(after.substr(StampLength, secondLine - StampLength), before.substr(StampLength));
}

// Kept on purpose: a message for a window that is not ours ends the log.
TEST_F(WireTapSilence, FollowsAMessageForAForeignWindow) {
    LogPlain("before");
    const TestWindow window;
    WireTapMsg(window.Handle(), WireTapText, "foreign", nullptr, 0);
    LogPlain("after");
    EXPECT_EQ(Messages(), "<time> before\r\n");
}

// Kept on purpose: a log that could not be opened once stays silent when it could be opened again.
TEST_F(WireTapSilence, FollowsAFileThatCannotBeOpened) {
    LogPlain("before");
    {
        const FileHandle alone(CreateFileA(WireTapPath().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                           FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(alone);
        LogPlain("refused");
    }
    LogPlain("after");
    EXPECT_EQ(Messages(), "<time> before\r\n");
}

TEST_F(WireTapSilence, FollowsAFolderInTheFilesPlace) {
    ASSERT_TRUE(CreateDirectoryA(WireTapPath().c_str(), nullptr));
    LogPlain("refused");
    ASSERT_TRUE(RemoveDirectoryA(WireTapPath().c_str()));
    LogPlain("after");
    EXPECT_FALSE(FileExists(WireTapPath()));
}

TEST_F(WireTapSilence, EndsWithAFreshStart) {
    const TestWindow window;
    WireTapMsg(window.Handle(), WireTapText, "foreign", nullptr, 0);
    ResetWireTap();
    LogPlain("again");
    EXPECT_EQ(Messages(), "<time> again\r\n");
}

TEST_F(WireTapDebugger, GetsTimeTextAndLineEndButNoData) {
    const DebuggerOutput output;
    WireTapMsg(nullptr, WireTapData, "Comm1 reads 1 bytes: ", "A", 1);
    EXPECT_EQ(Untimed(output.Text()), "<time> Comm1 reads 1 bytes: \r\n");
}

TEST_F(WireTapDebugger, GetsNothingWhenTheLogIsSilent) {
    const TestWindow window;
    WireTapMsg(window.Handle(), WireTapText, "foreign", nullptr, 0);
    const DebuggerOutput output;
    LogPlain("lost");
    EXPECT_EQ(output.Text(), "");
}

TEST_F(WireTapAtOnce, MessageFromInsideAMessageIsLost) {
    {
        const DebuggerOutput output([] { LogPlain("inner"); });
        LogPlain("outer");
        EXPECT_EQ(Untimed(output.Text()), "<time> outer\r\n");
    }
    LogPlain("next");
    EXPECT_EQ(Messages(), "<time> outer\r\n<time> next\r\n");
}

TEST_F(WireTapAtOnce, MessageOfAnotherThreadDuringAMessageIsLost) {
    {
        const DebuggerOutput output([] { std::thread([] { LogPlain("other"); }).join(); });
        LogPlain("outer");
    }
    LogPlain("next");
    EXPECT_EQ(Messages(), "<time> outer\r\n<time> next\r\n");
}

TEST_F(WireTapAtOnce, ThreadsNeverMixTheirLines) {
    constexpr int perThread = 300;
    const auto logMany = [](const char* szText) {
        for (int i = 0; i < perThread; ++i)
            WireTapMsg(nullptr, WireTapData, szText, "data\r", 5);
    };
    std::thread first(logMany, "first ");
    std::thread second(logMany, "second ");
    first.join();
    second.join();

    const std::string messages = Messages();
    const std::regex line(R"(<time> (first|second) "data" \+ Chr\(13\)\r\n)");
    std::string rest = std::regex_replace(messages, line, "");
    EXPECT_EQ(rest, "");
    const auto lines = std::count(messages.begin(), messages.end(), '\n');
    EXPECT_GE(lines, perThread);
    EXPECT_LE(lines, 2 * perThread);
}

TEST_F(WireTapWide, StringIsLoggedInEightBits) {
    WireTapMsgW(nullptr, WireTapTrace, "Comm1.Settings = ", L"9600,n\r");
    EXPECT_EQ(Messages(), "<time> Comm1.Settings = \"9600,n\" + Chr(13)\r\n");
}

TEST_F(WireTapWide, EmptyStringIsDataWithoutBytes) {
    WireTapMsgW(nullptr, WireTapTrace, "t ", L"");
    EXPECT_EQ(Messages(), "<time> t \"\"\r\n");
}

TEST_F(WireTapWide, NullIsNoData) {
    WireTapMsgW(nullptr, WireTapTrace, "t ", nullptr);
    EXPECT_EQ(Messages(), "<time> t \r\n");
}

TEST_F(WireTapWide, WithoutMemoryForItsBytesThereIsNoData) {
    constexpr size_t length = 100000;
    const std::wstring text(length, L'x');
    {
        const host::MemoryLimit limit(length / 2);
        WireTapMsgW(nullptr, WireTapTrace, "t ", text.c_str());
        EXPECT_EQ(limit.Refusals(), 1);
    }
    EXPECT_EQ(Messages(), "<time> t \r\n");
    WireTapMsgW(nullptr, WireTapTrace, "t ", L"next");
    EXPECT_EQ(Messages(), "<time> t \r\n<time> t \"next\"\r\n");
}

TEST_F(WireTapWide, CharacterOutsideTheCodePageStillLogs) {
    WireTapMsgW(nullptr, WireTapTrace, "t ", L"a\x4E2Dz");
    const std::string messages = Messages();
    EXPECT_TRUE(messages.starts_with("<time> t \"a")) << messages;
    EXPECT_TRUE(messages.ends_with("z\"\r\n")) << messages;
}
