// The one read that all input comes down to.
#include "support/device/devicetest.h"

#include "core/input.h"
#include "diagnostics/logpath.h"
#include "diagnostics/wiretap.h"

#include <fstream>
#include <iterator>
#include <thread>

namespace {

using host::Answer;
using host::PendingKind;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int bufferSize = 8;

class Read : public host::DeviceTest {
  protected:
    void SetUp() override {
        OpenWithTimer();
        device.Forget();
        memset(buffer, '#', sizeof buffer);
    }

    int ReadNow(int size = bufferSize) { return ReadInput(Record(), buffer, size); }
    std::string Buffer(int size = bufferSize) const { return {buffer, static_cast<size_t>(size)}; }

    char buffer[bufferSize + 1];
};

TEST_F(Read, NothingThereReadsNothing) {
    EXPECT_EQ(ReadNow(), 0);
    EXPECT_THAT(device.Calls(), ElementsAre("ClearCommError"));
    EXPECT_EQ(Buffer(), "########") << "the buffer is not touched";
}

struct SizeRow {
    const char* there;
    int size;
    const char* read;
    const char* call;
};

constexpr SizeRow sizeRows[] = {
    {"abc", 8, "abc", "ReadFile 3"},
    {"abcdefgh", 8, "abcdefgh", "ReadFile 8"},
    {"abcdefghi", 8, "abcdefgh", "ReadFile 8"},
    {"abc", 1, "a", "ReadFile 1"},
};

TEST_F(Read, AsksForTheLesserOfCountAndSizeAndZeroesTheBuffer) {
    for (const SizeRow& row : sizeRows) {
        ClearInputBuffer(object);
        device.Forget();
        device.Lay(row.there);
        memset(buffer, '#', sizeof buffer);
        const int count = static_cast<int>(strlen(row.read));
        EXPECT_EQ(ReadNow(row.size), count) << row.there;
        std::string expected = row.read;
        expected.resize(static_cast<size_t>(row.size), '\0');
        EXPECT_EQ(Buffer(row.size), expected) << row.there;
        EXPECT_EQ(buffer[row.size], '#') << "nothing behind the buffer is touched";
        EXPECT_THAT(device.CallsOf({"ReadFile"}), ElementsAre(row.call));
    }
}

TEST_F(Read, PendingReadIsWaitedFor) {
    device.OnRead(Answer::Pending);
    device.Lay("late");
    std::thread line([this] { host::PumpUntil([this] { return device.CompleteRead(); }); });
    EXPECT_EQ(ReadNow(), 4);
    line.join();
    EXPECT_EQ(Buffer(4), "late");
}

// What the host does in its idle loop while a read stays pending.
std::function<void()> inIdleLoop;

void CALLBACK OnIdle() {
    if (inIdleLoop)
        inIdleLoop();
}

class PendingRead : public Read {
  protected:
    PendingRead() { SetIdleLoop(object, OnIdle); }
    ~PendingRead() override { inIdleLoop = nullptr; }

    // Reads while the device does not answer; ms that it took.
    DWORD ReadForEver(std::function<void()> idle) {
        inIdleLoop = std::move(idle);
        device.OnRead(Answer::Pending);
        device.Lay("never");
        const host::Stopwatch stopwatch;
        EXPECT_EQ(GetInput(object, buffer, bufferSize), 0);
        return stopwatch.Milliseconds();
    }
};

constexpr DWORD withinReason = 2500; // ms: 500 of waiting, 500 for the cancel, 500 for each thread

TEST_F(PendingRead, IsFinishedFromTheIdleLoop) {
    device.OnRead(Answer::Pending);
    device.Lay("late");
    int turns = 0;
    inIdleLoop = [&] {
        if (++turns == 3)
            device.CompleteRead();
    };
    EXPECT_EQ(ReadNow(), 4);
    EXPECT_EQ(turns, 3);
    EXPECT_EQ(Buffer(4), "late");
    EXPECT_EQ(GetBusy(object), 0);
}

TEST_F(PendingRead, EndsWithTheClosingOfThePort) {
    for (const bool letsGo : {true, false}) {
        device.LetGo(letsGo);
        EXPECT_LT(ReadForEver([this] { object.Close(); }), withinReason) << letsGo;
        EXPECT_EQ(GetPortOpen(object), 0);
        device.LetGo(true);
        device.CompleteRead(); // into memory that the object must have left alone
        OpenWithTimer();
    }
}

TEST_F(PendingRead, EndsWithTheObject) {
    EXPECT_LT(ReadForEver([this] { DestroyWindow(object); }), withinReason);
    EXPECT_EQ(RecordOf(object), nullptr);
}

TEST_F(PendingRead, EndsWithTheObjectWhenTheDeviceDoesNotLetGo) {
    device.LetGo(false);
    EXPECT_LT(ReadForEver([this] { DestroyWindow(object); }), withinReason);
    device.CompleteRead(); // into memory that must have outlived the object
    EXPECT_EQ(RecordOf(object), nullptr);
}

TEST_F(PendingRead, EndsWithTheShutDown) {
    EXPECT_LT(ReadForEver([this] { SetShutDown(object, 1); }), withinReason);
    EXPECT_EQ(device.PendingCount(PendingKind::Read), 0);
}

TEST_F(Read, FailurePurgesWithReceiveAbort) {
    device.OnRead(Answer::Fails);
    device.Lay("abc");
    EXPECT_EQ(ReadNow(), 0);
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), ElementsAre("PurgeComm 2"));
    device.OnRead(Answer::AtOnce);
    EXPECT_EQ(ReadNow(), 3) << "the next read works";
}

TEST_F(Read, FailureOfAPendingReadReturnsWhatArrived) {
    device.OnRead(Answer::Pending);
    device.Lay("abcdef");
    std::thread line([this] { host::PumpUntil([this] { return device.FailPendingRead(ERROR_CRC, 2); }); });
    EXPECT_EQ(ReadNow(), 2);
    line.join();
    EXPECT_EQ(Buffer(), std::string("ab\0\0\0\0\0\0", 8));
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), ElementsAre("PurgeComm 2"));
}

TEST_F(Read, SoftParityClearsTheTopBit) {
    Record().bSoftParity = 1;
    device.Lay("\xE1\x62\xE3");
    EXPECT_EQ(ReadNow(), 3);
    EXPECT_EQ(Buffer(3), "abc");
    Record().bSoftParity = 0;
    device.Lay("\xE1");
    EXPECT_EQ(ReadNow(), 1);
    EXPECT_EQ(Buffer(1), "\xE1");
}

// What is written into the log from here on.
class LogWatch {
  public:
    LogWatch() : start_(Whole().size()) {}
    bool Has(const char* text) const { return Whole().find(text, start_) != std::string::npos; }

  private:
    static std::string Whole() {
        std::ifstream file(PathInWindowsFolder("wiretap.txt").data(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    size_t start_;
};

TEST_F(Read, LogSaysWhoReadHowMuch) {
    ResetWireTap();
    const LogWatch log;
    SetWindowTextA(object, "Comm1");
    device.Lay("off");
    ReadNow();
    EXPECT_FALSE(log.Has(" reads ")) << "the switch is off";
    SetWireTapInput(object, 1);
    ReadNow();
    EXPECT_FALSE(log.Has(" reads ")) << "nothing came";
    device.Lay("xyz");
    ReadNow();
    EXPECT_TRUE(log.Has("Comm1 reads 3 bytes: "));
    EXPECT_TRUE(log.Has("xyz"));
    ResetWireTap();
}

TEST_F(Read, RefusesWhatItCannotDo) {
    device.Lay("abc");
    EXPECT_EQ(GetInput(object, nullptr, 3), 0);
    EXPECT_EQ(GetInput(object, buffer, 0), 0);
    EXPECT_EQ(GetInput(object, buffer, -1), 0);
    EXPECT_THAT(device.CallsOf({"ReadFile"}), IsEmpty());
    object.Close();
    EXPECT_EQ(GetInput(object, buffer, 3), 0);
}

// The monitor's tick waits for the host all the while.
TEST(StallingHost, LosesWhatTheDriverHasNoRoomFor) {
    constexpr size_t room = 4096;
    const host::NoThreadIsTerminated noThreadIsTerminated;
    host::ScriptedDevice device;
    host::CommObject object;
    std::string got;
    object.OnEventDo([&](int code) {
        char bytes[1000];
        while (code == TARN_EVENT_RECEIVE && GetInBufferCount(object))
            got.append(bytes, static_cast<size_t>(GetInput(object, bytes, sizeof bytes)));
    });
    SetRThreshold(object, 1);
    device.HoldOnly(room);
    ASSERT_EQ(object.Open(host::ScriptedDevice::Name, "9600,n,8,1"), "");
    const auto monitorWaits = [&] { return device.PendingCount(PendingKind::Wait) == 1; };
    ASSERT_TRUE(host::PumpUntil(monitorWaits));

    std::string sent;
    for (int piece = 0; piece < 10; ++piece) { // nothing is pumped meanwhile
        sent += std::string(1000, static_cast<char>('0' + piece));
        device.Arrive(sent.substr(sent.size() - 1000));
    }
    EXPECT_EQ(got, "");
    EXPECT_TRUE(host::PumpUntil([&] { return got.size() >= room; }));
    EXPECT_EQ(got, sent.substr(0, room));
    EXPECT_EQ(object.Count(TARN_ERROR_RECEIVE_FULL), 1);

    ASSERT_TRUE(host::PumpUntil(monitorWaits)) << "it goes on";
    device.Arrive("after");
    EXPECT_TRUE(host::PumpUntil([&] { return got.size() >= room + 5; }));
    EXPECT_EQ(got.substr(room), "after");
    EXPECT_EQ(object.Count(TARN_ERROR_RECEIVE_FULL), 1);
    const host::Stopwatch watch;
    object.Close();
    EXPECT_LT(watch.Milliseconds(), 1000u);
}

} // namespace
