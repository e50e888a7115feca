// What makes an open object tick, and what never changes it again.
#include "support/device/devicetest.h"

#include "core/portmonitor.h"
#include "core/rooms.h"

namespace {

constexpr DWORD watched = 300; // ms

class TickSource : public host::DeviceTest {
  protected:
    ~TickSource() override { upperRooms.isConnected = nullptr; }

    // Each tick reads the modem status once.
    int TicksIn(DWORD milliseconds) {
        device.Forget();
        host::Pump(milliseconds);
        return device.Count("GetCommModemStatus");
    }
    void OpenAtOnce() { ASSERT_EQ(object.Open(host::ScriptedDevice::Name), ""); }
};

TEST_F(TickSource, IntervalIsATimerAndNoneIsTheMonitor) {
    OpenWithMonitor();
    EXPECT_EQ(Record().idTimer, 0u);
    EXPECT_NE(Record().lpMonitorThread, nullptr);
    object.Close();
    OpenWithTimer(20);
    EXPECT_NE(Record().idTimer, 0u);
    EXPECT_EQ(Record().lpMonitorThread, nullptr);
    EXPECT_GE(TicksIn(watched), 2);
}

TEST_F(TickSource, ClosedPortStartsNothing) {
    SetInterval(object, 20);
    SetInterval(object, 0);
    SetRThreshold(object, 3);
    EXPECT_EQ(Record().idTimer, 0u);
    EXPECT_EQ(Record().lpMonitorThread, nullptr);
}

TEST_F(TickSource, RunningTimerIsNeverChangedNotEvenByAnotherOpening) {
    OpenWithTimer();
    SetInterval(object, 20);
    EXPECT_EQ(TicksIn(watched), 0);
    object.Close();
    OpenAtOnce();
    EXPECT_EQ(TicksIn(watched), 0);
    SetInterval(object, 0);
    EXPECT_EQ(Record().lpMonitorThread, nullptr) << "the monitor doesn't take over";
}

TEST_F(TickSource, IntervalOfARunningMonitorCountsFromTheNextOpening) {
    OpenWithMonitor();
    SetInterval(object, 20);
    EXPECT_EQ(Record().idTimer, 0u);
    object.Close();
    OpenAtOnce();
    EXPECT_NE(Record().idTimer, 0u);
    EXPECT_EQ(Record().lpMonitorThread, nullptr);
}

struct ThresholdRow {
    int nAutoProcess;
    bool forces;
};

constexpr ThresholdRow thresholdRows[] = {{0, false}, {1, true}, {2, false}, {3, true}};

TEST_F(TickSource, SerialProcessingForcesTheThresholdOfAnOpenPort) {
    for (const ThresholdRow& row : thresholdRows) {
        object.Close();
        SetAutoProcess(object, 0);
        SetRThreshold(object, 5);
        SetAutoProcess(object, row.nAutoProcess);
        EXPECT_EQ(GetRThreshold(object), 5) << row.nAutoProcess << " on a closed port";
        OpenWithTimer();
        EXPECT_EQ(GetRThreshold(object), row.forces ? 1 : 5) << row.nAutoProcess << " at the opening";
        SetRThreshold(object, 5);
        EXPECT_EQ(GetRThreshold(object), row.forces ? 1 : 5) << row.nAutoProcess << " on an open port";
    }
}

struct SetterRow {
    const char* name;
    void (*set)(HWND);
};

constexpr SetterRow setterRows[] = {
    {"SetAutoProcess", [](HWND h) { SetAutoProcess(h, 1); }},
    {"SetInterval", [](HWND h) { SetInterval(h, 9); }},
    {"SetRThreshold", [](HWND h) { SetRThreshold(h, 7); }},
    {"SetSThreshold", [](HWND h) { SetSThreshold(h, 7); }},
    {"SetCaptureMode", [](HWND h) { SetCaptureMode(h, 1); }},
};

TEST_F(TickSource, EachSetterOfItsFamilySetsItUpAgain) {
    SetAutoProcess(object, TARN_PROCESS_SERIAL);
    OpenWithTimer();
    for (const SetterRow& row : setterRows) {
        Record().nRThreshold = 5;
        row.set(object);
        EXPECT_EQ(GetRThreshold(object), 1) << row.name;
    }
}

TEST_F(TickSource, TransferKeepsTheTickAway) {
    SetRThreshold(object, 1);
    OpenWithTimer();
    device.Lay("x");
    device.RaiseErrors(CE_BREAK);
    device.Forget();
    Record().nTransferType = 1;
    Tick();
    EXPECT_EQ(device.Calls().size(), 0u);
    Record().nTransferType = 0;
    Tick();
    EXPECT_THAT(object.Events(), testing::ElementsAre(TARN_ERROR_BREAK, TARN_EVENT_RECEIVE));
}

// A control in a connection of its own has a timer whatever the interval says.
class ConnectedControl : public TickSource {
  protected:
    ConnectedControl() {
        upperRooms.isConnected = [](const CTarnCommCtl&) { return connected; };
        connected = true;
        Record().lpControl = reinterpret_cast<CTarnCommCtl*>(&connected); // its address is all that is used
    }
    ~ConnectedControl() override {
        if (COMCTL* record = RecordOf(object))
            record->lpControl = nullptr;
    }
    static bool connected;
};

bool ConnectedControl::connected;

TEST_F(ConnectedControl, HasATimerOfAtLeast55MillisecondsBesideTheMonitor) {
    OpenWithMonitor();
    EXPECT_NE(Record().idTimer, 0u);
    EXPECT_NE(Record().lpMonitorThread, nullptr);
    const int ticks = TicksIn(550);
    EXPECT_GE(ticks, 2);
    EXPECT_LE(ticks, 11);
}

TEST_F(ConnectedControl, LongIntervalIsOneTimer) {
    OpenWithTimer();
    EXPECT_NE(Record().idTimer, 0u);
    EXPECT_EQ(Record().lpMonitorThread, nullptr);
    EXPECT_EQ(TicksIn(watched), 0);
}

TEST_F(ConnectedControl, ShortIntervalTakesThePlaceOfThe55Milliseconds) {
    OpenWithTimer(10);
    EXPECT_GE(TicksIn(550), 12);
}

TEST_F(ConnectedControl, ObjectWithoutAControlIsLikeNone) {
    Record().lpControl = nullptr;
    OpenWithMonitor();
    EXPECT_EQ(Record().idTimer, 0u);
}

TEST_F(ConnectedControl, WithoutAConnectionIsLikeNone) {
    connected = false;
    OpenWithMonitor();
    EXPECT_EQ(Record().idTimer, 0u);
}

TEST_F(ConnectedControl, RoomThatIsMissingIsLikeNone) {
    upperRooms.isConnected = nullptr;
    OpenWithMonitor();
    EXPECT_EQ(Record().idTimer, 0u);
}

} // namespace
