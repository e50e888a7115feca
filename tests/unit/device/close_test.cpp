// Closing and attaching: the order, the time it takes whatever the device does, what stays.
#include "support/device/devicetest.h"

#include "core/portmonitor.h"
#include "core/writer.h"
#include "unit/diagnostics/logfiles.h"

#include <thread>

namespace {

using host::Answer;
using host::PendingKind;
using testing::ElementsAre;
using testing::IsEmpty;

const auto closingCalls = {std::string_view("PurgeComm"), std::string_view("EscapeCommFunction"),
                           std::string_view("CancelIoEx"), std::string_view("SetCommMask"),
                           std::string_view("CloseHandle")};

class Close : public host::DeviceTest {
  protected:
    void LeaveAWritePending() {
        device.OnWrite(Answer::Pending);
        ASSERT_EQ(Output(object, "stuck", 5), 1);
        ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Write) == 1; }));
    }
    void ExpectClosed() {
        EXPECT_EQ(GetCommID(object), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetPortOpen(object), 0);
        EXPECT_EQ(Record().lpMonitorThread, nullptr);
        EXPECT_FALSE(device.IsOpen());
    }
};

TEST_F(Close, StepsComeInTheirOrder) {
    OpenWithMonitor();
    device.Forget();
    object.Close();
    EXPECT_THAT(device.CallsOf(closingCalls),
                ElementsAre("PurgeComm 8", "PurgeComm 4", "EscapeCommFunction 6", "PurgeComm 15",
                            "SetCommMask 0", "CancelIoEx nothing", "CloseHandle"));
    ExpectClosed();
}

TEST_F(Close, WriterEndsBeforeTheMonitor) {
    OpenWithMonitor();
    LeaveAWritePending();
    device.LetGo(false);
    device.Forget();
    object.Close();
    EXPECT_THAT(device.CallsOf(closingCalls),
                ElementsAre("PurgeComm 8", "PurgeComm 4", "EscapeCommFunction 6", "PurgeComm 15",
                            "CancelIoEx WriteFile", "SetCommMask 0", "CancelIoEx WaitCommEvent",
                            "CloseHandle"));
    ExpectClosed();
}

TEST_F(Close, DestructionClosesInTheSameOrder) {
    OpenWithMonitor();
    device.Forget();
    EXPECT_EQ(DestroyCommObject(object), 1);
    EXPECT_THAT(device.CallsOf(closingCalls),
                ElementsAre("PurgeComm 8", "PurgeComm 4", "EscapeCommFunction 6", "PurgeComm 15",
                            "SetCommMask 0", "CancelIoEx nothing", "CloseHandle"));
}

// Looks while the port is being closed, which takes its time since a write is never let go.
TEST_F(Close, DestructionEndsTheCaptureBeforeThePort) {
    const std::string path = logfiles::WindowsFolderFile("captured.txt");
    OpenWithTimer();
    ASSERT_EQ(SetCaptureFilename(object, path.c_str()), 1);
    LeaveAWritePending();
    device.LetGo(false);
    bool captureIsOver = false;
    std::thread onlooker([&] {
        const host::Stopwatch stopwatch;
        while (!device.Saw("PurgeComm 8") && stopwatch.Milliseconds() < 5000)
            SwitchToThread();
        captureIsOver = DeleteFileA(path.c_str());
    });
    EXPECT_EQ(DestroyCommObject(object), 1);
    onlooker.join();
    EXPECT_TRUE(captureIsOver);
    device.LetGo(true);
    device.CompleteWrite(); // into memory that the writer must have left alone
}

struct TimeRow {
    const char* name;
    bool monitor;
    bool pendingWrite;
    bool letsGo;
    DWORD limit; // ms
};

constexpr TimeRow timeRows[] = {
    {"idle", false, false, true, 500},
    {"a waiting monitor", true, false, true, 500},
    {"a pending write", false, true, true, 500},
    {"both", true, true, true, 500},
    {"a write that is never let go", false, true, false, WriterStopLimit},
    {"a wait that is never let go", true, false, false, MonitorStopLimit},
    {"both, never let go", true, true, false, WriterStopLimit + MonitorStopLimit},
};

TEST_F(Close, EndsInTimeAndTerminatesNobody) {
    for (const TimeRow& row : timeRows) {
        host::CommObject other;
        SetInterval(other, row.monitor ? 0 : host::neverTicks);
        ASSERT_EQ(other.Open(host::ScriptedDevice::Name), "") << row.name;
        if (row.monitor) {
            ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Wait) > 0; }));
        }
        if (row.pendingWrite) {
            device.OnWrite(Answer::Pending);
            Output(other, "stuck", 5);
            ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Write) > 0; }));
        }
        device.LetGo(row.letsGo);
        const host::Stopwatch stopwatch;
        other.Close();
        EXPECT_LT(stopwatch.Milliseconds(), row.limit) << row.name;
        EXPECT_FALSE(device.IsOpen()) << row.name;
        EXPECT_EQ(TerminatedThreadCount(), 0) << row.name;
        device.LetGo(true);
        while (device.CompleteWrite()) // into memory that the writer must have left alone
            continue;
        device.RaiseEvent(EV_RXCHAR);
        device.OnWrite(Answer::AtOnce);
    }
}

TEST_F(Close, DirectWriteThatIsNeverLetGoCostsItsCancelTime) {
    OpenWithTimer();
    device.OnWrite(Answer::Pending);
    EXPECT_EQ(ComOutput(object, "stuck", 5), 0u);
    device.LetGo(false);
    const host::Stopwatch stopwatch;
    object.Close();
    EXPECT_LT(stopwatch.Milliseconds(), 1000u);
    EXPECT_TRUE(device.Saw("CancelIoEx WriteFile"));
    ExpectClosed();
}

TEST_F(Close, WindowTimerStaysAndItsTicksReturnAtOnce) {
    OpenWithTimer();
    object.Close();
    EXPECT_NE(Record().idTimer, 0u);
    device.Forget();
    Tick();
    EXPECT_THAT(device.Calls(), IsEmpty());
}

TEST_F(Close, OpensAgain) {
    OpenWithMonitor();
    object.Close();
    OpenWithMonitor();
    EXPECT_EQ(Output(object, "again", 5), 1);
    EXPECT_TRUE(host::PumpUntil([&] { return device.Written() == "again"; }));
}

class Attach : public host::DeviceTest {
  protected:
    Attach() { SetInterval(object, host::neverTicks); }
    static HANDLE Handle() {
        return CreateFileA("\\\\.\\SCRIPTED", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                           FILE_FLAG_OVERLAPPED, nullptr);
    }
};

TEST_F(Attach, NoneMapsToAllOnes) {
    for (const HANDLE none : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        SetCommID(object, none);
        EXPECT_EQ(GetCommID(object), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetPortOpen(object), 0);
    }
    EXPECT_THAT(device.CallsOf(closingCalls), IsEmpty());
}

TEST_F(Attach, ValidHandleIsOpenAndLeftAsItIs) {
    const HANDLE handle = Handle();
    device.Forget();
    SetCommID(object, handle);
    EXPECT_EQ(GetCommID(object), handle);
    EXPECT_EQ(GetPortOpen(object), 1);
    EXPECT_NE(Record().idTimer, 0u) << "the tick is set up";
    EXPECT_THAT(device.Calls(), IsEmpty()) << "no state, no sizes, no time-outs";
    Output(object, "sent", 4);
    EXPECT_TRUE(host::PumpUntil([&] { return device.Written() == "sent"; }));
}

TEST_F(Attach, AnotherHandleReplacesTheFirst) {
    SetCommID(object, Handle());
    const HANDLE second = Handle();
    SetCommID(object, second);
    EXPECT_EQ(GetCommID(object), second);
    EXPECT_EQ(GetPortOpen(object), 1);
    EXPECT_EQ(device.Count("CloseHandle"), 0) << "the first belongs to whoever attached it";
    Output(object, "sent", 4);
    EXPECT_TRUE(host::PumpUntil([&] { return device.Written() == "sent"; }));
}

// Kept so: whoever replaces it may have asked for it, and attach it again.
TEST_F(Attach, PortThatTheObjectOpenedStaysOpen) {
    ASSERT_EQ(object.Open(host::ScriptedDevice::Name), "");
    const HANDLE opened = GetCommID(object);
    const HANDLE other = Handle();
    SetCommID(object, other);
    EXPECT_EQ(device.Count("CloseHandle"), 0);
    SetCommID(object, opened);
    EXPECT_EQ(GetCommID(object), opened);
    Output(object, "sent", 4);
    EXPECT_TRUE(host::PumpUntil([&] { return device.Written() == "sent"; }));
    CloseHandle(other);
}

TEST_F(Attach, WorkerThatIsHeldUpInTheDriverKeepsTheDevice) {
    const HANDLE first = Handle();
    SetCommID(object, first);
    host::HeldDevice held(Record());
    const host::Stopwatch stopwatch;
    const HANDLE second = Handle();
    SetCommID(object, second);
    EXPECT_LT(stopwatch.Milliseconds(), 4000u);
    EXPECT_EQ(GetCommID(object), first);
    EXPECT_EQ(GetPortOpen(object), 1);
    Output(object, "sent", 4);
    EXPECT_TRUE(host::PumpUntil([&] { return device.Written() == "sent"; }));
    held.LetGo();
    SetCommID(object, second);
    EXPECT_EQ(GetCommID(object), second);
    CloseHandle(first);
}

TEST_F(Attach, NoneDetachesAndCloses) {
    for (const HANDLE none : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        SetCommID(object, Handle());
        device.Forget();
        SetCommID(object, none);
        EXPECT_THAT(device.CallsOf(closingCalls), ElementsAre("PurgeComm 15", "CloseHandle"))
            << "DTR stays as it is";
        EXPECT_EQ(GetCommID(object), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetPortOpen(object), 0);
    }
}

TEST_F(Attach, MonitorFollowsTheHandle) {
    SetInterval(object, 0);
    SetCommID(object, Handle());
    ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Wait) == 1; }));
    SetCommID(object, Handle());
    EXPECT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Wait) == 1; }));
    SetCommID(object, nullptr);
    EXPECT_EQ(Record().lpMonitorThread, nullptr);
}

} // namespace
