// The writer: blocks, takes, partial and failing writes, stopping and starting.
#include "support/device/devicetest.h"

#include "core/writer.h"

namespace {

using host::Answer;
using host::PendingKind;
using testing::Each;
using testing::ElementsAre;

constexpr DWORD watched = 300; // ms

class Writer : public testing::Test {
  protected:
    static HANDLE Handle() {
        return CreateFileA("\\\\.\\SCRIPTED", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                           FILE_FLAG_OVERLAPPED, nullptr);
    }
    bool Write(const std::string& bytes) {
        return writer.Write(bytes.data(), static_cast<int>(bytes.size()));
    }
    bool HasWritten(const std::string& bytes) {
        return host::PumpUntil([&] { return device.Written() == bytes; });
    }
    bool HasPendingWrite() {
        return host::PumpUntil([&] { return device.PendingCount(PendingKind::Write) == 1; });
    }

    host::NoThreadIsTerminated noThreadIsTerminated;
    host::ScriptedDevice device;
    COverlappedWrite writer;
    HANDLE handle = Handle();
};

// Bytes that tell their place, so that a piece in the wrong place shows.
std::string Pattern(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 256);
    return bytes;
}

struct BlockRow {
    size_t held; // before
    size_t block;
    bool taken;
};

constexpr BlockRow blockRows[] = {
    {0, 0, true},      {0, 1, true},      {0, 16383, true},   {0, 16384, true},    {0, 16385, false},
    {0, 40000, false}, {1, 16383, true},  {1, 16384, false},  {16383, 1, true},    {16383, 2, false},
    {16384, 0, true},  {16384, 1, false}, {8000, 8384, true}, {8000, 8385, false},
};

TEST_F(Writer, TakesTheWholeBlockOrNothing) {
    for (const BlockRow& row : blockRows) {
        writer.Purge();
        ASSERT_TRUE(Write(Pattern(row.held)));
        EXPECT_EQ(Write(Pattern(row.block)), row.taken) << row.block << " on " << row.held;
        const size_t held = row.held + (row.taken ? row.block : 0);
        EXPECT_EQ(writer.Held(), static_cast<int>(held)) << row.block << " on " << row.held;
        EXPECT_EQ(writer.Free(), WriterRingSize - static_cast<int>(held)) << row.block << " on " << row.held;
    }
}

TEST_F(Writer, HandsTheDeviceAtMost1024BytesAtATime) {
    const std::string bytes = Pattern(3000);
    ASSERT_TRUE(Write(bytes));
    ASSERT_TRUE(writer.Start(handle));
    ASSERT_TRUE(HasWritten(bytes));
    EXPECT_THAT(device.CallsOf({"WriteFile"}),
                ElementsAre("WriteFile 1024", "WriteFile 1024", "WriteFile 952"));
}

TEST_F(Writer, TakeNeverWraps) {
    ASSERT_TRUE(writer.Start(handle));
    const std::string first = Pattern(16000);
    ASSERT_TRUE(Write(first));
    ASSERT_TRUE(HasWritten(first));
    writer.Stop();
    device.Forget();
    const std::string second = Pattern(1000); // 384 to the end of the store, 616 from its start
    ASSERT_TRUE(Write(second));
    ASSERT_TRUE(writer.Start(handle));
    ASSERT_TRUE(HasWritten(second));
    EXPECT_THAT(device.CallsOf({"WriteFile"}), ElementsAre("WriteFile 384", "WriteFile 616"));
}

using WriterFlush = host::DeviceTest;

// The driver may still have bytes when the writer has none; it has no event for its last.
TEST_F(WriterFlush, SlowDriverIsAskedEveryTwoMilliseconds) {
    OpenWithTimer();
    device.SetOutputQueue(10);
    ASSERT_EQ(Output(object, "x", 1), 1);
    ASSERT_TRUE(host::PumpUntil([&] { return device.Written() == "x"; }));
    device.Forget();
    EXPECT_EQ(FlushOutputBuffer(object, 300), 0);
    EXPECT_LT(device.Count("ClearCommError"), 170);
    device.SetOutputQueue(0);
    EXPECT_EQ(FlushOutputBuffer(object, 300), 1);
}

// The oddity that is kept: the rest of a partial write is taken from the start of the take again.
TEST_F(Writer, PartialWriteStartsAgainAtTheHeadWithTheReducedCount) {
    device.TakeOnly(3);
    ASSERT_TRUE(Write("abcdefgh"));
    ASSERT_TRUE(writer.Start(handle));
    EXPECT_TRUE(HasWritten("abcabcde"));
    EXPECT_THAT(device.WriteAttempts(), ElementsAre("abcdefgh", "abcde"));
}

TEST_F(Writer, PendingPartialWriteDoesTheSame) {
    device.OnWrite(Answer::Pending);
    device.TakeOnly(3);
    ASSERT_TRUE(Write("abcdefgh"));
    ASSERT_TRUE(writer.Start(handle));
    ASSERT_TRUE(HasPendingWrite());
    device.CompleteWrite();
    ASSERT_TRUE(HasPendingWrite());
    EXPECT_EQ(writer.InHand(), 5);
    device.CompleteWrite();
    EXPECT_TRUE(HasWritten("abcabcde"));
}

TEST_F(Writer, FailingWriteClearsTheErrorAndTriesTheSameBytesAgain) {
    device.FailWrites(3);
    ASSERT_TRUE(Write("again"));
    ASSERT_TRUE(writer.Start(handle));
    EXPECT_TRUE(HasWritten("again"));
    EXPECT_THAT(device.CallsOf({"WriteFile", "ClearCommError"}),
                ElementsAre("WriteFile 5", "ClearCommError", "WriteFile 5", "ClearCommError", "WriteFile 5",
                            "ClearCommError", "WriteFile 5"));
    EXPECT_THAT(device.WriteAttempts(), Each("again"));
}

TEST_F(Writer, WriteThatFailsForEverBacksOff) {
    device.OnWrite(Answer::Fails);
    ASSERT_TRUE(Write("never"));
    ASSERT_TRUE(writer.Start(handle));
    host::Pump(watched);
    EXPECT_GE(device.Count("WriteFile"), 3);
    EXPECT_LE(device.Count("WriteFile"), 30);
    const host::Stopwatch stopwatch;
    writer.Stop();
    EXPECT_LT(stopwatch.Milliseconds(), 500u);
}

TEST_F(Writer, WriteThatTakesNothingBacksOff) {
    device.OnWrite(Answer::Pending);
    device.TakeOnly(0); // in force before the thread's first write
    ASSERT_TRUE(Write("never"));
    ASSERT_TRUE(writer.Start(handle));
    const host::Stopwatch stopwatch;
    while (stopwatch.Milliseconds() < watched) {
        device.TakeOnly(0);
        device.CompleteWrite();
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 1, QS_ALLINPUT);
    }
    EXPECT_GE(device.Count("WriteFile"), 2);
    EXPECT_LE(device.Count("WriteFile"), 30);
}

TEST_F(Writer, WantOfAnEventBacksOffAndStops) {
    host::ScriptedDevice::FailManualEventsElsewhere(true);
    ASSERT_TRUE(Write("never"));
    ASSERT_TRUE(writer.Start(handle));
    const DWORD before = host::ProcessorTime();
    host::Pump(watched);
    EXPECT_LT(host::ProcessorTime() - before, watched / 2) << "ms of processor time: the writer spins";
    const host::Stopwatch stopwatch;
    writer.Stop();
    EXPECT_LT(stopwatch.Milliseconds(), 500u);
    EXPECT_EQ(device.Count("WriteFile"), 0);
}

TEST_F(Writer, PendingWriteIsWaitedFor) {
    device.OnWrite(Answer::Pending);
    ASSERT_TRUE(writer.Start(handle));
    ASSERT_TRUE(Write("first"));
    ASSERT_TRUE(HasPendingWrite());
    ASSERT_TRUE(Write("second"));
    EXPECT_EQ(writer.Held(), 6);
    EXPECT_EQ(writer.InHand(), 5);
    device.CompleteWrite();
    ASSERT_TRUE(HasPendingWrite());
    device.CompleteWrite();
    EXPECT_TRUE(HasWritten("firstsecond"));
    EXPECT_TRUE(host::PumpUntil([&] { return writer.InHand() == 0; }));
    EXPECT_EQ(WaitForSingleObject(writer.DrainedEvent(), 2000), WAIT_OBJECT_0);
}

TEST_F(Writer, StopCancelsThePendingWriteAndKeepsTheRing) {
    device.OnWrite(Answer::Pending);
    ASSERT_TRUE(writer.Start(handle));
    ASSERT_TRUE(Write("in hand"));
    ASSERT_TRUE(HasPendingWrite());
    ASSERT_TRUE(Write("kept"));
    writer.Stop();
    EXPECT_TRUE(device.Saw("CancelIoEx WriteFile"));
    EXPECT_EQ(device.PendingCount(PendingKind::Write), 0);
    EXPECT_EQ(writer.Held(), 4);
    EXPECT_EQ(writer.InHand(), 0);
    device.OnWrite(Answer::AtOnce);
    ASSERT_TRUE(writer.Start(handle));
    EXPECT_TRUE(HasWritten("kept"));
}

TEST_F(Writer, StartIsRefusedWhileAttached) {
    EXPECT_FALSE(writer.Start(nullptr));
    EXPECT_FALSE(writer.Start(INVALID_HANDLE_VALUE));
    EXPECT_TRUE(writer.Start(handle));
    EXPECT_FALSE(writer.Start(handle));
    EXPECT_FALSE(writer.Start(Handle()));
    writer.Stop();
    writer.Stop(); // a second time is harmless
    EXPECT_TRUE(writer.Start(handle));
}

TEST_F(Writer, PurgeDropsRingAndDevice) {
    ASSERT_TRUE(Write("idle"));
    writer.Purge();
    EXPECT_EQ(writer.Held(), 0);
    EXPECT_EQ(device.Count("PurgeComm"), 0) << "no device to purge";
    device.OnWrite(Answer::Pending);
    ASSERT_TRUE(writer.Start(handle));
    ASSERT_TRUE(Write("in hand"));
    ASSERT_TRUE(HasPendingWrite());
    ASSERT_TRUE(Write("held"));
    writer.Purge();
    EXPECT_EQ(writer.Held(), 0);
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), ElementsAre("PurgeComm 5"));
}

TEST_F(Writer, ResizeEmptiesAndReplacesTheStore) {
    ASSERT_TRUE(Write("lost"));
    writer.Resize(8);
    EXPECT_EQ(writer.Held(), 0);
    EXPECT_EQ(writer.Free(), 8);
    EXPECT_FALSE(Write("123456789"));
    EXPECT_TRUE(Write("12345678"));
    ASSERT_TRUE(writer.Start(handle));
    EXPECT_TRUE(HasWritten("12345678"));
    writer.Resize(WriterRingSize);
    EXPECT_TRUE(Write("more than eight"));
    EXPECT_TRUE(HasWritten("12345678more than eight"));
}

using ObjectWriter = host::DeviceTest;

TEST_F(ObjectWriter, RingSurvivesACloseAndGoesOutAtTheNextOpening) {
    OpenWithTimer();
    device.OnWrite(Answer::Pending);
    Output(object, "in hand", 7);
    ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Write) == 1; }));
    EXPECT_EQ(Output(object, "kept", 4), 1);
    object.Close();
    device.OnWrite(Answer::AtOnce);
    device.Forget();
    OpenWithTimer();
    EXPECT_TRUE(host::PumpUntil([&] { return device.Written() == "kept"; }));
}

TEST_F(ObjectWriter, OutputNeverWaitsForTheLine) {
    OpenWithTimer();
    device.OnWrite(Answer::Pending);
    const std::string block(1000, 'x');
    const host::Stopwatch stopwatch;
    int taken = 0;
    for (int i = 0; i < 40; ++i)
        taken += Output(object, block.data(), 1000);
    EXPECT_LT(stopwatch.Milliseconds(), 500u);
    EXPECT_GE(taken, 16);
    EXPECT_LE(taken, 17) << "the ring, and a take in the writer's hand";
}

} // namespace
