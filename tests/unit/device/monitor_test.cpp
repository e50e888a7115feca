// The monitor: when it ticks, that it never spins, and that a tick may close or destroy what it runs for.
#include "support/device/devicetest.h"

#include "core/portmonitor.h"

namespace {

using host::Answer;
using host::PendingKind;

constexpr DWORD watched = 300;       // ms
constexpr int slowedDown = 40;       // waits in that time; a spin makes thousands
constexpr DWORD farBelowLimit = 500; // ms; a monitor that is not answered costs MonitorStopLimit

class Monitor : public host::DeviceTest {
  protected:
    Monitor() { SetRThreshold(object, 1); }

    void OpenAtOnce() { ASSERT_EQ(object.Open(host::ScriptedDevice::Name, "9600,n,8,1"), ""); }

    std::string ReadAll() {
        char bytes[64];
        const int count = GetInput(object, bytes, sizeof bytes);
        return {bytes, static_cast<size_t>(count)};
    }
};

TEST_F(Monitor, WaitsForCharactersAlone) {
    OpenWithMonitor();
    EXPECT_THAT(device.CallsOf({"SetCommMask"}), testing::ElementsAre("SetCommMask 1"));
}

TEST_F(Monitor, CompletedWaitIsOneTick) {
    std::string got;
    object.OnEventDo([&](int) { got += ReadAll(); });
    OpenWithMonitor();
    for (const char* bytes : {"one", "two", "three"}) {
        object.ForgetEvents();
        got.clear();
        device.Forget();
        device.Arrive(bytes);
        EXPECT_TRUE(host::PumpUntil([&] { return got == bytes; }));
        EXPECT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Wait) == 1; }));
        EXPECT_EQ(object.Count(TARN_EVENT_RECEIVE), 1);
        EXPECT_EQ(device.Count("GetCommModemStatus"), 1) << "ticks";
    }
}

TEST_F(Monitor, QuietLineTicksNobody) {
    OpenWithMonitor();
    device.Forget();
    host::Pump(watched);
    EXPECT_EQ(device.Calls().size(), 0u);
}

TEST_F(Monitor, WaitThatEndsAtOnceWithCharactersTicks) {
    std::string got;
    object.OnEventDo([&](int) { got += ReadAll(); });
    device.Lay("already here");
    device.OnWait(Answer::AtOnce, EV_RXCHAR);
    OpenAtOnce();
    EXPECT_TRUE(host::PumpUntil([&] { return got == "already here"; }));
}

TEST_F(Monitor, CharactersThatWereThereBeforeTheWaitAreNotLost) {
    std::string got;
    object.OnEventDo([&](int) { got += ReadAll(); });
    device.Arrive("early");
    OpenAtOnce();
    EXPECT_TRUE(host::PumpUntil([&] { return got == "early"; }));
}

struct SpinRow {
    const char* name;
    Answer answer;
    DWORD mask;
    const char* unread;
};

constexpr SpinRow spinRows[] = {
    {"at once with nothing", Answer::AtOnce, 0, ""},
    {"at once with nothing, bytes unread", Answer::AtOnce, 0, "unread"},
    {"at once with a character, none there", Answer::AtOnce, EV_RXCHAR, ""},
    {"at once with a character, bytes unread", Answer::AtOnce, EV_RXCHAR, "unread"},
    {"fails", Answer::Fails, 0, ""},
};

TEST_F(Monitor, NeverSpins) {
    for (const SpinRow& row : spinRows) {
        ClearInputBuffer(object);
        device.Lay(row.unread);
        device.OnWait(row.answer, row.mask);
        OpenAtOnce();
        device.Forget();
        host::Pump(watched);
        EXPECT_GE(device.Count("WaitCommEvent"), 2) << row.name << ": it goes on all the same";
        EXPECT_LE(device.Count("WaitCommEvent"), slowedDown) << row.name;
        const host::Stopwatch stopwatch;
        object.Close();
        EXPECT_LT(stopwatch.Milliseconds(), farBelowLimit) << row.name;
    }
}

TEST_F(Monitor, NeverSpinsOnBytesThatCannotBeRead) {
    SetAutoProcess(object, TARN_PROCESS_SERIAL);
    device.Lay("counted, and never given");
    device.OnRead(Answer::Fails);
    device.OnWait(Answer::AtOnce, EV_RXCHAR);
    OpenAtOnce();
    device.Forget();
    host::Pump(watched);
    EXPECT_GE(device.Count("ReadFile"), 2) << "it tries again";
    EXPECT_LE(device.Count("WaitCommEvent"), slowedDown);
}

TEST_F(Monitor, NeverSpinsForWantOfAnEvent) {
    host::ScriptedDevice::FailManualEventsElsewhere(true);
    OpenAtOnce();
    EXPECT_TRUE(host::PumpUntil([&] { return device.Saw("SetCommMask 1"); }));
    const DWORD before = host::ProcessorTime();
    host::Pump(watched);
    EXPECT_LT(host::ProcessorTime() - before, watched / 2) << "ms of processor time: some thread spins";
    EXPECT_EQ(device.Count("WaitCommEvent"), 0) << "nothing to wait on";
    const host::Stopwatch stopwatch;
    object.Close();
    EXPECT_LT(stopwatch.Milliseconds(), farBelowLimit);
}

TEST_F(Monitor, UnreadBytesAreTickedForAgain) {
    device.OnWait(Answer::AtOnce, EV_RXCHAR);
    device.Lay("unread");
    OpenAtOnce();
    EXPECT_TRUE(host::PumpUntil([&] { return object.Count(TARN_EVENT_RECEIVE) >= 3; }));
}

TEST_F(Monitor, HandlerMayCloseThePort) {
    OpenWithMonitor();
    DWORD taken = MAXDWORD;
    object.OnEventDo([&](int) {
        const host::Stopwatch stopwatch;
        object.Close();
        taken = stopwatch.Milliseconds();
    });
    device.Arrive("x");
    EXPECT_TRUE(host::PumpUntil([&] { return GetPortOpen(object) == 0; }));
    EXPECT_LT(taken, farBelowLimit);
}

TEST_F(Monitor, HandlerMayCloseAndOpenThePort) {
    OpenWithMonitor();
    object.OnEventDo([&](int) {
        object.OnEventDo(nullptr);
        object.Close();
        OpenAtOnce();
    });
    device.Arrive("x");
    ASSERT_TRUE(host::PumpUntil([&] { return device.Count("CreateFileA") == 2; }));
    object.ForgetEvents();
    ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Wait) == 1; }));
    device.Arrive("y");
    EXPECT_TRUE(host::PumpUntil([&] { return object.Saw(TARN_EVENT_RECEIVE); })) << "the new monitor ticks";
}

TEST_F(Monitor, HandlerMayDestroyTheObject) {
    OpenWithMonitor();
    DWORD taken = MAXDWORD;
    object.OnEventDo([&](int) {
        const host::Stopwatch stopwatch;
        DestroyCommObject(object);
        taken = stopwatch.Milliseconds();
    });
    device.Arrive("x");
    EXPECT_TRUE(host::PumpUntil([&] { return !RecordOf(object); }));
    EXPECT_LT(taken, farBelowLimit);
    EXPECT_FALSE(device.IsOpen());
}

// The handler of one tick waits, and the handler of another tick ends the port or the object in that wait.
class NestedMonitor : public Monitor {
  protected:
    void RunNested(const std::function<void()>& end) {
        OpenWithMonitor();
        int depth = 0;
        DWORD taken = MAXDWORD;
        bool waitIsOver = false;
        object.OnEventDo([&](int) {
            if (++depth == 1) {
                PostMessageA(object, WM_TIMER, 0, 0);
                ComPause(object, 2000);
                waitIsOver = true;
            } else if (depth == 2) {
                const host::Stopwatch stopwatch;
                end();
                SetShutDown(object, 1); // ends the first handler's wait
                taken = stopwatch.Milliseconds();
            }
        });
        device.Arrive("x");
        EXPECT_TRUE(host::PumpUntil([&] { return waitIsOver; }));
        EXPECT_LT(taken, farBelowLimit);
        EXPECT_FALSE(device.IsOpen());
    }
};

TEST_F(NestedMonitor, PortMayBeClosed) {
    RunNested([this] { object.Close(); });
    EXPECT_EQ(GetPortOpen(object), 0);
}

TEST_F(NestedMonitor, ObjectMayBeDestroyed) {
    RunNested([this] { DestroyWindow(object); });
    EXPECT_EQ(RecordOf(object), nullptr);
}

} // namespace
