// Device errors: which event, in which order, what the host sees of them, and what it may do meanwhile.
#include "support/device/devicetest.h"

namespace {

using host::Answer;
using host::PendingKind;
using testing::ElementsAre;
using testing::IsEmpty;

class DeviceError : public host::DeviceTest {
  protected:
    void SetUp() override { OpenWithTimer(); }
};

struct ErrorRow {
    DWORD bit;
    int code;
};

constexpr ErrorRow errorRows[] = {
    {CE_BREAK, TARN_ERROR_BREAK},     {CE_FRAME, TARN_ERROR_FRAME},
    {CE_OVERRUN, TARN_ERROR_OVERRUN}, {CE_RXOVER, TARN_ERROR_RECEIVE_FULL},
    {CE_RXPARITY, TARN_ERROR_PARITY}, {CE_TXFULL, TARN_ERROR_TRANSMIT_FULL},
};

constexpr DWORD allErrors = CE_BREAK | CE_FRAME | CE_OVERRUN | CE_RXOVER | CE_RXPARITY | CE_TXFULL;

TEST_F(DeviceError, EachBitHasItsEvent) {
    for (const ErrorRow& row : errorRows) {
        object.ForgetEvents();
        int inside = 0;
        object.OnEventDo([&](int) { inside = GetLastCommError(object); });
        device.RaiseErrors(row.bit);
        Tick();
        EXPECT_THAT(object.Events(), ElementsAre(row.code));
        EXPECT_EQ(inside, row.code) << "seen inside the event";
        EXPECT_EQ(GetLastCommError(object), 0) << "and no more afterwards";
        EXPECT_EQ(GetLastCommEvent(object), row.code);
    }
}

TEST_F(DeviceError, AllBitsComeInOrder) {
    device.RaiseErrors(allErrors);
    Tick();
    EXPECT_THAT(object.Events(), ElementsAre(1001, 1004, 1006, 1008, 1009, 1010));
}

TEST_F(DeviceError, BitWithoutAnEventIsSilent) {
    device.RaiseErrors(CE_IOE | CE_MODE);
    Tick();
    EXPECT_THAT(object.Events(), IsEmpty());
}

TEST_F(DeviceError, IsToldOnce) {
    device.RaiseErrors(CE_BREAK);
    Tick();
    Tick();
    EXPECT_THAT(object.Events(), ElementsAre(TARN_ERROR_BREAK));
}

struct ActionRow {
    const char* name;
    void (*act)(HWND);
};

char buffer[16];

const ActionRow statusReaders[] = {
    {"the tick", [](HWND h) { SendMessageA(h, WM_TIMER, 0, 0); }},
    {"GetInput", [](HWND h) { GetInput(h, buffer, sizeof buffer); }},
    {"GetInBufferCount", [](HWND h) { GetInBufferCount(h); }},
    {"GetOutBufferCount", [](HWND h) { GetOutBufferCount(h); }},
    {"GetLastCommError", [](HWND h) { GetLastCommError(h); }},
    {"Output", [](HWND h) { Output(h, "x", 1); }},
    {"ComOutput", [](HWND h) { ComOutput(h, "x", 1); }},
    {"WaitForInput", [](HWND h) { WaitForInput(h, 0); }},
    {"FlushInputBuffer", [](HWND h) { FlushInputBuffer(h, 0); }},
};

TEST_F(DeviceError, SurfacesWithEveryStatusRead) {
    for (const ActionRow& row : statusReaders) {
        object.ForgetEvents();
        device.RaiseErrors(CE_FRAME);
        row.act(object);
        EXPECT_EQ(object.Count(TARN_ERROR_FRAME), 1) << row.name;
    }
}

TEST_F(DeviceError, GetLastCommErrorInsideClearsIt) {
    std::vector<int> seen;
    object.OnEventDo([&](int) {
        seen.push_back(GetLastCommError(object));
        seen.push_back(GetLastCommError(object));
    });
    device.RaiseErrors(CE_OVERRUN);
    Tick();
    EXPECT_THAT(seen, ElementsAre(TARN_ERROR_OVERRUN, 0));
}

TEST_F(DeviceError, HandlerThatClosesThePortIsTakenAtItsWord) {
    for (const ActionRow& row : statusReaders) {
        object.ForgetEvents();
        object.OnEventDo([&](int) { object.Close(); });
        device.RaiseErrors(allErrors);
        row.act(object);
        EXPECT_EQ(GetPortOpen(object), 0) << row.name;
        EXPECT_EQ(object.Count(TARN_ERROR_BREAK), 1) << row.name;
        object.OnEventDo(nullptr);
        ASSERT_EQ(object.Open(host::ScriptedDevice::Name), "") << row.name;
    }
}

TEST_F(DeviceError, HandlerThatDestroysTheObjectHearsNoMore) {
    for (const ActionRow& row : statusReaders) {
        host::CommObject other;
        SetInterval(other, host::neverTicks);
        ASSERT_EQ(other.Open(host::ScriptedDevice::Name), "");
        other.OnEventDo([&](int) { DestroyWindow(other); });
        device.RaiseErrors(allErrors);
        row.act(other);
        EXPECT_THAT(other.Events(), ElementsAre(TARN_ERROR_BREAK)) << row.name;
        EXPECT_EQ(RecordOf(other), nullptr) << row.name;
    }
}

TEST_F(DeviceError, FailedStatusReadCountsNothing) {
    device.Lay("waiting");
    device.SetOutputQueue(9);
    device.RaiseErrors(CE_BREAK);
    device.FailStatus(true);
    EXPECT_EQ(GetInBufferCount(object), 0);
    EXPECT_EQ(GetOutBufferCount(object), 0);
    EXPECT_EQ(GetInput(object, buffer, sizeof buffer), 0);
    EXPECT_THAT(object.Events(), IsEmpty());
    device.FailStatus(false);
    EXPECT_EQ(GetInBufferCount(object), 7);
    EXPECT_EQ(GetOutBufferCount(object), 9);
}

TEST_F(DeviceError, OutputCountIsTheDriversAndTheRings) {
    device.OnWrite(Answer::Pending);
    Output(object, "1", 1);
    ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Write) == 1; }));
    EXPECT_EQ(GetOutBufferCount(object), 1) << "in the writer's hand, not yet counted by the driver";
    Output(object, "12345", 5);
    device.SetOutputQueue(7);
    EXPECT_EQ(GetOutBufferCount(object), 12);
}

TEST_F(DeviceError, ClearingTheOutputLeavesTheRing) {
    device.OnWrite(Answer::Pending);
    Output(object, "1", 1);
    ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(PendingKind::Write) == 1; }));
    Output(object, "12345", 5);
    device.Forget();
    ClearOutputBuffer(object);
    ClearInputBuffer(object);
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), ElementsAre("PurgeComm 4", "PurgeComm 8"));
    EXPECT_EQ(GetOutBufferCount(object), 6);
}

TEST_F(DeviceError, ClosedPortIsNotPurged) {
    device.Forget();
    Record().bPortOpen = 0; // and the handle still there
    ClearOutputBuffer(object);
    ClearInputBuffer(object);
    EXPECT_THAT(device.Calls(), IsEmpty());
    Record().bPortOpen = 1;
}

} // namespace
