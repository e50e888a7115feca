// Bytes out and in on the virtual line, and the waits.
#include "support/every.h"
#include "support/line.h"

#include "core/comctl.h"
#include "core/live.h"
#include "core/rooms.h"
#include "core/writer.h"
#include "unit/diagnostics/logfiles.h"

namespace {

class Data : public host::LineTest {
  protected:
    void SetUp() override {
        host::LineTest::SetUp();
        ASSERT_EQ(object.Open(host::nearPort), "");
        ASSERT_TRUE(peer.IsOpen());
        shown.clear();
        upperRooms.terminalWrite = [](HWND, const void* bytes, int count) {
            shown.append(static_cast<const char*>(bytes), static_cast<size_t>(count));
        };
    }
    void TearDown() override { upperRooms.terminalWrite = nullptr; }

    // Sends from the far end and waits until the driver has it all.
    void Arrive(const std::string& bytes) {
        ASSERT_TRUE(peer.Send(bytes));
        const int wanted = static_cast<int>(bytes.size());
        ASSERT_TRUE(host::PumpUntil([&] { return GetInBufferCount(object) >= wanted; }));
    }

    static std::string shown; // what the terminal was given
    host::FarEnd peer;
    host::CommObject object;
};

std::string Data::shown;

TEST_F(Data, OutputReachesTheFarEnd) {
    EXPECT_EQ(Output(object, "hello", 5), 1);
    EXPECT_EQ(peer.Read(5), "hello");
}

TEST_F(Data, AllByteValuesPassBothWays) {
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    EXPECT_EQ(Output(object, all.data(), 256), 1);
    EXPECT_EQ(peer.Read(256), all);
    Arrive(all);
    char bytes[300] = {};
    EXPECT_EQ(GetInput(object, bytes, sizeof bytes), 256);
    EXPECT_EQ(std::string(bytes, 256), all);
}

TEST_F(Data, BlockLargerThanTheRingIsRefusedWholeEachTime) {
    const std::string block(WriterRingSize + 1, 'x');
    for (int attempt = 0; attempt < 3; ++attempt)
        EXPECT_EQ(Output(object, block.data(), static_cast<int>(block.size())), 0);
    EXPECT_EQ(Output(object, block.data(), WriterRingSize), 1) << "just fits";
    EXPECT_EQ(peer.Read(WriterRingSize).size(), static_cast<size_t>(WriterRingSize));
}

TEST_F(Data, OutputWithEchoOnAClosedPortShowsAndReturnsZero) {
    object.Close();
    SetEcho(object, 1);
    EXPECT_EQ(Output(object, "seen", 4), 0);
    EXPECT_EQ(shown, "seen");
}

TEST_F(Data, RingSurvivesACloseAndGoesOutAtTheNextOpening) {
    object.Close();
    RecordOf(object)->lpOverlappedWrite->Write("kept", 4);
    ASSERT_EQ(object.Open(host::nearPort), "");
    EXPECT_EQ(peer.Read(4), "kept");
}

TEST_F(Data, CountsAreZeroWhileClosed) {
    Arrive("abc");
    object.Close();
    EXPECT_EQ(GetInBufferCount(object), 0);
    EXPECT_EQ(GetOutBufferCount(object), 0);
}

TEST_F(Data, GetInputReadsWhatIsThere) {
    Arrive("abcdef");
    char bytes[4] = {};
    EXPECT_EQ(GetInput(object, bytes, 4), 4);
    EXPECT_EQ(std::string(bytes, 4), "abcd");
    EXPECT_EQ(GetInput(object, bytes, 4), 2);
    EXPECT_EQ(std::string(bytes, 4), std::string("ef\0\0", 4)) << "the buffer is zeroed first";
    EXPECT_EQ(GetInput(object, bytes, 4), 0);
    EXPECT_EQ(GetInput(object, bytes, 0), 0);
}

TEST_F(Data, GetInputShowsAndSendsBack) {
    SetInputEcho(object, 1);
    SetCommEcho(object, 1);
    Arrive("twice");
    char bytes[16];
    EXPECT_EQ(GetInput(object, bytes, sizeof bytes), 5);
    EXPECT_EQ(shown, "twice");
    EXPECT_EQ(peer.Read(5), "twice");
}

HWND readFrom;
int readInWait;

void CALLBACK ReadInWait() {
    char bytes[16];
    readInWait = GetInput(readFrom, bytes, sizeof bytes);
}

TEST_F(Data, GetInputIsRefusedInAnEventOfAWait) {
    Arrive("waiting");
    readFrom = object;
    readInWait = -1;
    SetIdleLoop(object, ReadInWait);
    ComPause(object, 1);
    EXPECT_EQ(readInWait, 0);
    char bytes[16];
    EXPECT_EQ(GetInput(object, bytes, sizeof bytes), 7) << "the bytes are still there";
}

struct LineRow {
    const char* name;
    const char* sent;
    int size;
    const char* line;
};

const LineRow lineRows[] = {
    {"CR ends it", "one\rtwo", 16, "one"},
    {"LF is dropped anywhere", "\no\nn\ne\r", 16, "one"},
    {"LF after CR belongs to the next line", "\ntwo\r", 16, "two"},
    {"exactly the size ends without the CR", "four\r", 4, "four"},
    {"longer than the size is continued by the next call", "sixsix\r", 3, "six"},
    {"an empty line", "\r", 16, ""},
    {"a time-out gives what came", "half", 16, "half"},
};

TEST_F(Data, LinesAreReadAsTheyEnd) {
    for (const LineRow& row : lineRows) {
        SetInputTimeOut(object, 100);
        ClearInputBuffer(object);
        Arrive(row.sent);
        char text[32];
        memset(text, '#', sizeof text);
        EXPECT_EQ(GetLineInput(object, text, row.size), static_cast<int>(strlen(row.line))) << row.name;
        EXPECT_EQ(std::string(text, strlen(row.line)), row.line) << row.name;
        EXPECT_EQ(text[row.size], '#') << row.name << ": nothing behind the buffer is touched";
        if (static_cast<int>(strlen(row.line)) < row.size) {
            EXPECT_EQ(text[strlen(row.line)], '\0') << row.name;
        }
        char rest[64];
        host::Pump(5);
        GetInput(object, rest, sizeof rest);
    }
}

TEST_F(Data, LinesAreShownAndSentBackWithTheirEnds) {
    SetInputTimeOut(object, 1000);
    SetInputEcho(object, 1);
    SetCommEcho(object, 1);
    Arrive("\none\r");
    char text[16];
    EXPECT_EQ(GetLineInput(object, text, sizeof text), 3);
    EXPECT_STREQ(text, "one");
    EXPECT_EQ(shown, "\none\r");
    EXPECT_EQ(peer.Read(5), "\none\r");
}

TEST_F(Data, LineTimeOutOfZeroTakesOnlyWhatIsThere) {
    SetInputTimeOut(object, 0);
    char text[16];
    const DWORD start = GetTickCount();
    EXPECT_EQ(GetLineInput(object, text, sizeof text), 0);
    EXPECT_LT(GetTickCount() - start, 100u);
    Arrive("now");
    EXPECT_EQ(GetLineInput(object, text, sizeof text), 3);
}

TEST_F(Data, LineDeadlineIsNotRenewedByBytes) {
    cable.Baud(300); // 33 ms a byte
    SetInputTimeOut(object, 200);
    ASSERT_TRUE(peer.Send(std::string(60, 'x')));
    char text[64];
    const DWORD start = GetTickCount();
    const int length = GetLineInput(object, text, sizeof text);
    EXPECT_LT(length, 30);
    EXPECT_LT(GetTickCount() - start, 1000u);
}

TEST_F(Data, WaitForInputEndsWithTheFirstByte) {
    EXPECT_EQ(WaitForInput(object, 30), 0);
    cable.Latency(60);
    ASSERT_TRUE(peer.Send("!"));
    const DWORD start = GetTickCount();
    EXPECT_EQ(WaitForInput(object, 5000), 1);
    EXPECT_LT(GetTickCount() - start, 1000u);
    object.Close();
    EXPECT_EQ(WaitForInput(object, 5000), 0) << "a closed port has nothing to wait for";
}

TEST_F(Data, FlushInputWaitsButDoesNotPurge) {
    EXPECT_EQ(FlushInputBuffer(object, 1000), 1) << "empty already";
    Arrive("unread");
    const DWORD start = GetTickCount();
    EXPECT_EQ(FlushInputBuffer(object, 120), 0);
    EXPECT_GE(GetTickCount() - start, 110u);
    EXPECT_EQ(GetInBufferCount(object), 6);
}

TEST_F(Data, ClosedPortHasNothingToFlush) {
    Arrive("unread");
    object.Close();
    RecordOf(object)->lpOverlappedWrite->Write("kept", 4);
    EXPECT_EQ(FlushInputBuffer(object, 5000), 1);
    EXPECT_EQ(FlushOutputBuffer(object, 5000), 1);
}

TEST_F(Data, FlushOutputWaitsForTheLine) {
    cable.Baud(115200);
    const std::string block(4000, 'o');
    ASSERT_EQ(Output(object, block.data(), 4000), 1);
    EXPECT_EQ(FlushOutputBuffer(object, 5000), 1);
    EXPECT_EQ(GetOutBufferCount(object), 0);
    EXPECT_EQ(peer.Read(4000).size(), 4000u);
}

TEST_F(Data, ClearInputThrowsAwayTheDriversQueue) {
    Arrive("old");
    ClearInputBuffer(object);
    EXPECT_EQ(GetInBufferCount(object), 0);
}

TEST_F(Data, ShutDownEndsEachWait) {
    Arrive("unread");
    SetShutDown(object, 1);
    char text[16];
    const DWORD start = GetTickCount();
    ComPause(object, 20000);
    EXPECT_EQ(FlushInputBuffer(object, 20000), 0);
    GetLineInput(object, text, sizeof text);
    DiscardUntilLookUp(object, "never\0");
    ClearInputBuffer(object);
    EXPECT_EQ(WaitForInput(object, 20000), 0);
    EXPECT_LT(GetTickCount() - start, 1000u);
}

TEST_F(Data, PauseTakesItsTime) {
    const DWORD start = GetTickCount();
    ComPause(object, 120);
    const DWORD gone = GetTickCount() - start;
    EXPECT_GE(gone, 110u);
    EXPECT_LT(gone, 1000u);
}

TEST_F(Data, PauseWithAQuitMessageKeepsItAndDoesNotSpin) {
    PostQuitMessage(7);
    FILETIME created, ended, kernel[2], user[2];
    GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel[0], &user[0]);
    const DWORD start = GetTickCount();
    ComPause(object, 300);
    EXPECT_GE(GetTickCount() - start, 290u);
    GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel[1], &user[1]);
    EXPECT_LT(
        (user[1].dwLowDateTime - user[0].dwLowDateTime + kernel[1].dwLowDateTime - kernel[0].dwLowDateTime) /
            10000,
        150u)
        << "ms of processor time";
    MSG message = {};
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

bool timerRan;

void CALLBACK RunTimer(HWND, UINT, UINT_PTR, DWORD) {
    timerRan = true;
}

TEST_F(Data, PauseRunsTheMessagesOfTheThread) {
    timerRan = false;
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, RunTimer);
    ComPause(object, 100);
    KillTimer(nullptr, timer);
    EXPECT_TRUE(timerRan);
}

TEST_F(Data, PauseEndsThoughThereIsAlwaysAMessageMore) {
    const auto restless = host::Restless();
    const host::Clock clock;
    ComPause(object, 200);
    EXPECT_LT(clock.Gone(), 1500u);
}

WPARAM typed;

LRESULT CALLBACK TakeTyped(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CHAR)
        typed = wParam;
    return DefWindowProcW(window, message, wParam, lParam);
}

TEST_F(Data, PauseLeavesTheHostsWideCharactersWhole) {
    constexpr WPARAM sha = 0x0428; // a letter that few code pages of the system have
    WNDCLASSW wide = {};
    wide.lpfnWndProc = TakeTyped;
    wide.lpszClassName = L"HostOfWideCharacters";
    ASSERT_TRUE(RegisterClassW(&wide));
    const HWND window =
        CreateWindowW(wide.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    typed = 0;
    PostMessageW(window, WM_CHAR, sha, 1);
    ComPause(object, 50);
    EXPECT_EQ(typed, sha);
    DestroyWindow(window);
    UnregisterClassW(wide.lpszClassName, nullptr);
}

HWND victim;

void CALLBACK DestroyVictim() {
    DestroyWindow(victim);
}

TEST_F(Data, DestructionInsideAPauseEndsIt) {
    auto other = std::make_unique<host::CommObject>();
    victim = *other;
    SetIdleLoop(victim, DestroyVictim);
    const DWORD start = GetTickCount();
    ComPause(victim, 20000);
    EXPECT_LT(GetTickCount() - start, 1000u);
    EXPECT_EQ(RecordOf(victim), nullptr);
}

TEST_F(Data, TimerIsPinnedWhereItWouldWrap) {
    EXPECT_EQ(CreateTimer(MAXDWORD), MAXDWORD);
    EXPECT_NEAR(static_cast<double>(CreateTimer(1000)), static_cast<double>(GetTickCount()) + 1000, 100);
}

TEST_F(Data, DirectWriteReachesTheFarEnd) {
    ComOutput(object, "direct", 6);
    EXPECT_EQ(peer.Read(6), "direct");
    ComOutput(object, "again", 5);
    EXPECT_EQ(peer.Read(5), "again");
    EXPECT_EQ(ComOutput(object, "", 0), 0u);
    object.Close();
    EXPECT_EQ(ComOutput(object, "x", 1), 0u);
}

TEST_F(Data, LogShowsWhatCrossesTheLine) {
    SetWireTapInput(object, 1);
    SetWireTapOutput(object, 1);
    SetCommEcho(object, 1);
    const size_t before = logfiles::ReadWholeFile(logfiles::WireTapPath()).size();
    Output(object, "AT\r", 3);
    ComOutput(object, "+++", 3);
    Arrive("OK");
    char bytes[8];
    GetInput(object, bytes, sizeof bytes);
    const std::string log = logfiles::ReadWholeFile(logfiles::WireTapPath()).substr(before);
    const std::string name = RecordOf(object)->szName;
    for (const char* line : {" writes 3 bytes: \"AT\" + Chr(13)\r\n", " writes 3 bytes: \"+++\"\r\n",
                             " reads 2 bytes: \"OK\"\r\n", " writes 2 bytes: \"OK\"\r\n"})
        EXPECT_NE(log.find(name + line), log.npos) << line << "in\n" << log;
}

} // namespace
