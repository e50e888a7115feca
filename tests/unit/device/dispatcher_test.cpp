// The input dispatcher: who sees a byte first, how long it goes on, what stops it.
#include "support/device/devicetest.h"

#include "core/rooms.h"
#include "core/writer.h"

namespace {

using host::Answer;
using testing::ElementsAre;
using testing::IsEmpty;

class Dispatcher : public host::DeviceTest {
  protected:
    Dispatcher() {
        current = this;
        upperRooms.terminalWrite = [](HWND, const void* bytes, int count) {
            current->OnTerminal({static_cast<const char*>(bytes), static_cast<size_t>(count)});
        };
        upperRooms.startDownload = [](HWND hWnd, const char* name) {
            EXPECT_EQ(hWnd, current->object.Handle());
            EXPECT_STREQ(name, "");
            current->Note("download");
        };
    }
    ~Dispatcher() override {
        upperRooms.terminalWrite = nullptr;
        upperRooms.startDownload = nullptr;
    }

    void SetUp() override {
        SetAutoProcess(object, TARN_PROCESS_SERIAL);
        SetInputEcho(object, 1);
        device.OnWrite(Answer::Pending);
        OpenWithTimer();
        // A first write that stays pending keeps the writer busy, so that all echoes stay in the ring.
        ASSERT_EQ(Output(object, "x", 1), 1);
        ASSERT_TRUE(host::PumpUntil([this] { return device.PendingCount(host::PendingKind::Write) == 1; }));
        object.OnEventDo([this](int code) {
            if (code == TARN_EVENT_LOOKUP)
                Note("look-up");
        });
        device.Forget();
    }

    // Writes down who was called, and how many bytes had been echoed to the line by then.
    void Note(const std::string& who) {
        const int echoed = Record().lpOverlappedWrite->Held();
        notes.push_back(who + " after " + std::to_string(echoed));
    }
    void OnTerminal(const std::string& bytes) {
        shown += bytes;
        Note("terminal");
        if (inTerminal)
            inTerminal();
    }
    void Feed(const std::string& bytes) {
        device.Lay(bytes);
        Tick();
    }

    static Dispatcher* current;
    std::vector<std::string> notes;
    std::string shown;
    std::function<void()> inTerminal;
};

Dispatcher* Dispatcher::current;

const std::string startSequence("**\x18"
                                "B00",
                                6);

TEST_F(Dispatcher, TerminalThenLineThenLookUpThenZModem) {
    SetCommEcho(object, 1);
    SetLookUpText(object, "B00", ',');
    Feed(startSequence);
    EXPECT_THAT(notes, ElementsAre("terminal after 0", "look-up after 6", "download after 6"));
    EXPECT_EQ(shown, startSequence);
}

TEST_F(Dispatcher, WithoutEchoTheTerminalSeesNothing) {
    SetInputEcho(object, 0);
    Feed("unseen");
    EXPECT_THAT(notes, IsEmpty());
    EXPECT_EQ(GetInBufferCount(object), 0) << "read all the same";
}

struct ProcessRow {
    int nAutoProcess;
    bool dispatches;
};

constexpr ProcessRow processRows[] = {{0, false}, {1, true}, {2, false}, {3, true}};

TEST_F(Dispatcher, RunsForSerialProcessingInPlaceOfTheThresholds) {
    for (const ProcessRow& row : processRows) {
        shown.clear();
        object.ForgetEvents();
        ClearInputBuffer(object);
        SetAutoProcess(object, row.nAutoProcess);
        SetRThreshold(object, 1);
        Feed("abc");
        EXPECT_EQ(shown, row.dispatches ? "abc" : "") << row.nAutoProcess;
        EXPECT_EQ(object.Saw(TARN_EVENT_RECEIVE), !row.dispatches) << row.nAutoProcess;
    }
}

TEST_F(Dispatcher, SignalsAreLookedAtAfterTheInput) {
    device.SetModemStatus(MS_CTS_ON);
    Feed("abc");
    EXPECT_EQ(shown, "abc");
    EXPECT_THAT(object.Events(), ElementsAre(TARN_EVENT_CTS));
}

struct ChunkRow {
    size_t size;
    std::vector<std::string> reads;
};

const ChunkRow chunkRows[] = {
    {0, {}},
    {1, {"ReadFile 1"}},
    {1023, {"ReadFile 1023"}},
    {1024, {"ReadFile 1024"}},
    {1025, {"ReadFile 1024", "ReadFile 1"}},
    {2048, {"ReadFile 1024", "ReadFile 1024"}},
    {3000, {"ReadFile 1024", "ReadFile 1024", "ReadFile 952"}},
};

TEST_F(Dispatcher, FullChunksKeepItGoing) {
    for (const ChunkRow& row : chunkRows) {
        std::string bytes(row.size, '\0');
        for (size_t i = 0; i < row.size; ++i)
            bytes[i] = static_cast<char>('a' + i % 26);
        shown.clear();
        device.Forget();
        Feed(bytes);
        EXPECT_EQ(device.CallsOf({"ReadFile"}), row.reads) << row.size;
        EXPECT_EQ(shown, bytes) << row.size;
    }
}

TEST_F(Dispatcher, BytesBehindAPartialChunkWaitForTheNextTick) {
    inTerminal = [this] {
        if (shown == "first")
            device.Lay("second");
    };
    Feed("first");
    EXPECT_EQ(shown, "first");
    Tick();
    EXPECT_EQ(shown, "firstsecond");
}

TEST_F(Dispatcher, InvalidHandleStopsIt) {
    inTerminal = [this] { object.Close(); };
    Feed(std::string(3000, 'x'));
    EXPECT_THAT(device.CallsOf({"ReadFile"}), ElementsAre("ReadFile 1024"));
    EXPECT_EQ(shown.size(), 1024u);
}

TEST_F(Dispatcher, ObjectMayEndInTheTerminal) {
    inTerminal = [this] { DestroyWindow(object); };
    Feed(std::string(3000, 'x'));
    EXPECT_EQ(RecordOf(object), nullptr);
    EXPECT_THAT(notes, ElementsAre("terminal after 0")) << "and nobody sees more";
}

TEST_F(Dispatcher, ObjectMayEndInALookUpEvent) {
    SetLookUpText(object, "end", ',');
    object.OnEventDo([this](int) { DestroyWindow(object); });
    Feed("the end" + startSequence);
    EXPECT_EQ(RecordOf(object), nullptr);
    EXPECT_THAT(notes, ElementsAre("terminal after 0")) << "no download for an object that is gone";
}

TEST_F(Dispatcher, ObjectMayEndInADeviceError) {
    object.OnEventDo([this](int) { DestroyWindow(object); });
    device.RaiseErrors(CE_FRAME);
    Feed("abc");
    EXPECT_EQ(RecordOf(object), nullptr);
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(Dispatcher, DeviceErrorsOfAReadComeBeforeItsBytes) {
    std::vector<std::string> order;
    object.OnEventDo([&](int code) { order.push_back(std::to_string(code)); });
    inTerminal = [&] { order.push_back("bytes"); };
    device.RaiseErrors(CE_OVERRUN);
    Feed("abc");
    EXPECT_THAT(order, ElementsAre("1006", "bytes"));
}

TEST_F(Dispatcher, QuietLineGivesTheLookUpItsTurnToTimeOut) {
    SetLookUpText(object, "never comes", ',');
    SetLookUpTimeOut(object, 30);
    EXPECT_TRUE(host::PumpUntil([&] {
        Tick();
        return object.Saw(TARN_EVENT_LOOKUP);
    }));
    EXPECT_THAT(device.CallsOf({"ReadFile"}), IsEmpty());
}

TEST_F(Dispatcher, NoTimeOutNoTurn) {
    SetLookUpText(object, "never comes", ',');
    SetLookUpTimeOut(object, 0);
    const host::Stopwatch stopwatch;
    while (stopwatch.Milliseconds() < 100)
        Tick();
    EXPECT_FALSE(object.Saw(TARN_EVENT_LOOKUP));
}

struct SequenceRow {
    const char* name;
    std::vector<std::string> pieces;
    int downloads;
};

const SequenceRow sequenceRows[] = {
    {"whole", {startSequence}, 1},
    {"split", {"**", "\x18", "B0", "0"}, 1},
    {"byte by byte", {"*", "*", "\x18", "B", "0", "0"}, 1},
    {"after other text", {"rz\r" + startSequence}, 1},
    {"cut short",
     {"**\x18"
      "B0"},
     0},
    {"another last byte",
     {"**\x18"
      "B01"},
     0},
    {"a mismatch begins no new match", {"*" + startSequence}, 0},
    {"twice: the byte after a success is compared to NUL", {startSequence + startSequence}, 1},
};

TEST_F(Dispatcher, StartSequenceIsSeen) {
    for (const SequenceRow& row : sequenceRows) {
        Record().nAutoZModemMatch = 0;
        notes.clear();
        shown.clear();
        std::string whole;
        for (const std::string& piece : row.pieces) {
            Feed(piece);
            whole += piece;
        }
        EXPECT_EQ(shown, whole) << row.name << ": the screen has it either way";
        EXPECT_EQ(std::ranges::count(notes, "download after 0"), row.downloads) << row.name;
    }
}

// A host that serves messages in the event lets the next tick in.
TEST_F(Dispatcher, TickInsideALookUpEventOffersTheRestFirst) {
    SetLookUpText(object, "one,two,three", ',');
    std::vector<int> matches;
    object.OnEventDo([&](int) {
        matches.push_back(Record().nLookUpMatch);
        if (matches.size() == 1)
            Feed(" three");
    });
    Feed("one two");
    EXPECT_THAT(matches, ElementsAre(0, 1, 2));
}

TEST_F(Dispatcher, TickInsideALookUpEventLeavesTheStartSequenceWhole) {
    SetLookUpText(object, "B0", ',');
    object.OnEventDo([this](int) { Feed("later"); });
    Feed(startSequence);
    EXPECT_EQ(std::ranges::count(notes, "download after 0"), 1);
}

TEST_F(Dispatcher, StartSequenceIsIgnoredWithTheSwitchOff) {
    SetAutoZModem(object, 0);
    Feed(startSequence);
    EXPECT_THAT(notes, ElementsAre("terminal after 0"));
    EXPECT_EQ(Record().nAutoZModemMatch, 0);
}

} // namespace
