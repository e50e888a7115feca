// Modem signals and the break, as the device is told of them.
#include "support/device/devicetest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Signals = host::DeviceTest;

struct SetRow {
    const char* name;
    void (*set)(HWND);
    std::vector<std::string> whenOpen;
    std::vector<std::string> whenClosed;
};

const SetRow setRows[] = {
    {"DTR on",
     [](HWND h) { SetDTR(h, 1); },
     {"SetCommState", "EscapeCommFunction 5"},
     {"EscapeCommFunction 5 on no device"}},
    {"DTR off",
     [](HWND h) { SetDTR(h, 0); },
     {"SetCommState", "EscapeCommFunction 6"},
     {"EscapeCommFunction 6 on no device"}},
    {"RTS on", [](HWND h) { SetRTS(h, 1); }, {"EscapeCommFunction 3"}, {}},
    {"RTS off", [](HWND h) { SetRTS(h, 0); }, {"EscapeCommFunction 4"}, {}},
    {"break on", [](HWND h) { SetBreak(h, 1); }, {"SetCommBreak"}, {}},
    {"break off", [](HWND h) { SetBreak(h, 0); }, {"ClearCommBreak"}, {}},
};

const auto signalCalls = {std::string_view("SetCommState"), std::string_view("EscapeCommFunction"),
                          std::string_view("SetCommBreak"), std::string_view("ClearCommBreak")};

TEST_F(Signals, SettersTellTheOpenDevice) {
    OpenWithTimer();
    for (const SetRow& row : setRows) {
        device.Forget();
        row.set(object);
        EXPECT_EQ(device.CallsOf(signalCalls), row.whenOpen) << row.name;
    }
}

TEST_F(Signals, OnlyDtrTriesAClosedPort) {
    OpenWithTimer();
    object.Close();
    for (const SetRow& row : setRows) {
        device.Forget();
        row.set(object);
        EXPECT_EQ(device.CallsOf(signalCalls), row.whenClosed) << row.name;
    }
}

TEST_F(Signals, SettersStoreOnAClosedPort) {
    SetDTR(object, 0);
    SetRTS(object, 0);
    EXPECT_EQ(GetDTR(object), 0);
    EXPECT_EQ(GetRTS(object), 0);
    SetDTR(object, 7);
    SetRTS(object, 7);
    EXPECT_EQ(GetDTR(object), 7) << "as given";
    EXPECT_EQ(GetRTS(object), 7);
}

struct StatusRow {
    DWORD status;
    int(TARNAPI* ask)(HWND);
    int event;
};

constexpr StatusRow statusRows[] = {
    {MS_CTS_ON, GetCTS, TARN_EVENT_CTS},
    {MS_DSR_ON, GetDSR, TARN_EVENT_DSR},
    {MS_RLSD_ON, GetCarrier, TARN_EVENT_CARRIER},
};

TEST_F(Signals, GettersReadTheirBit) {
    OpenWithTimer();
    for (const StatusRow& row : statusRows)
        for (const StatusRow& on : statusRows) {
            device.SetModemStatus(on.status);
            EXPECT_EQ(row.ask(object), row.status == on.status) << row.status << " while " << on.status;
        }
    object.Close();
    for (const StatusRow& row : statusRows) {
        device.SetModemStatus(row.status);
        EXPECT_EQ(row.ask(object), 0) << "closed";
    }
}

TEST_F(Signals, ChangesAreEventsBothWays) {
    OpenWithTimer();
    for (const StatusRow& row : statusRows)
        for (const DWORD status : {row.status, DWORD{0}}) {
            object.ForgetEvents();
            device.SetModemStatus(status);
            Tick();
            EXPECT_THAT(object.Events(), ElementsAre(row.event)) << "status " << status;
            Tick();
            EXPECT_THAT(object.Events(), ElementsAre(row.event)) << "no change, no event";
        }
}

TEST_F(Signals, RingIsAnEventWhenItTurnsOnOnly) {
    OpenWithTimer();
    device.SetModemStatus(MS_RING_ON);
    Tick();
    EXPECT_THAT(object.Events(), ElementsAre(TARN_EVENT_RING));
    device.SetModemStatus(0);
    Tick();
    EXPECT_THAT(object.Events(), ElementsAre(TARN_EVENT_RING));
}

TEST_F(Signals, AllChangesComeInOrder) {
    OpenWithTimer();
    device.SetModemStatus(MS_CTS_ON | MS_DSR_ON | MS_RING_ON | MS_RLSD_ON);
    Tick();
    EXPECT_THAT(object.Events(), ElementsAre(3, 4, 6, 5));
}

TEST_F(Signals, BreakGetterReadsTheMaskNotTheLine) {
    OpenWithTimer();
    SetBreak(object, 1);
    EXPECT_EQ(GetBreak(object), 0) << "a break is being sent";
    SetCommMask(GetCommID(object), EV_BREAK | EV_RXCHAR);
    SetBreak(object, 0);
    EXPECT_EQ(GetBreak(object), 1) << "no break is being sent";
    SetCommMask(GetCommID(object), EV_RXCHAR);
    EXPECT_EQ(GetBreak(object), 0);
    SetCommMask(GetCommID(object), EV_BREAK);
    object.Close();
    EXPECT_EQ(GetBreak(object), 0);
}

} // namespace
