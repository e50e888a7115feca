// Opening: the steps and their order, a refused state, the texts of failures.
#include "support/device/devicetest.h"

#include "core/portmonitor.h"
#include "core/writer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Open = host::DeviceTest;

TEST_F(Open, StepsComeInTheirOrder) {
    OpenWithTimer();
    EXPECT_THAT(device.Calls(),
                ElementsAre("CreateFileA c0000000 0 3 40000000", "SetupComm 2048 2048", "SetCommTimeouts",
                            "GetCommModemStatus", "GetCommState", "SetCommState"));
}

TEST_F(Open, ReadsReturnAtOnce) {
    OpenWithTimer();
    ASSERT_EQ(device.TimeoutsGiven().size(), 1u);
    const COMMTIMEOUTS timeouts = device.TimeoutsGiven()[0];
    EXPECT_EQ(timeouts.ReadIntervalTimeout, MAXDWORD);
    EXPECT_EQ(timeouts.ReadTotalTimeoutMultiplier, 0u);
    EXPECT_EQ(timeouts.ReadTotalTimeoutConstant, 0u);
    EXPECT_EQ(timeouts.WriteTotalTimeoutMultiplier, 0u);
    EXPECT_EQ(timeouts.WriteTotalTimeoutConstant, 0u);
}

TEST_F(Open, BufferSizesReachTheDriver) {
    SetInBufferSize(object, 4096);
    SetOutBufferSize(object, 512);
    OpenWithTimer();
    EXPECT_TRUE(device.Saw("SetupComm 4096 512"));
}

TEST_F(Open, SignalsOfTheMomentAreNoChange) {
    device.SetModemStatus(MS_CTS_ON | MS_RLSD_ON);
    OpenWithTimer();
    EXPECT_EQ(Record().dwModemStat, static_cast<DWORD>(MS_CTS_ON | MS_RLSD_ON));
    Tick();
    EXPECT_THAT(object.Events(), IsEmpty());
}

TEST_F(Open, StateCarriesTheSpeed) {
    OpenWithTimer();
    ASSERT_EQ(device.StatesGiven().size(), 1u);
    EXPECT_EQ(device.StatesGiven()[0].BaudRate, 9600u);
}

TEST_F(Open, WriterRuns) {
    OpenWithTimer();
    EXPECT_EQ(Output(object, "on its way", 10), 1);
    EXPECT_TRUE(host::PumpUntil([&] { return device.Written() == "on its way"; }));
}

TEST_F(Open, AcceptedStateLeavesTheEventMaskAlone) {
    OpenWithTimer();
    EXPECT_EQ(device.Count("SetCommMask"), 0);
}

TEST_F(Open, RefusedStateSetsTheSignalMaskAndTheTickUp) {
    device.RefuseState(true);
    OpenWithTimer();
    EXPECT_THAT(device.CallsOf({"SetCommState", "SetCommMask"}),
                ElementsAre("SetCommState", "SetCommMask 248"));
    EXPECT_NE(Record().idTimer, 0u);
    EXPECT_EQ(GetPortOpen(object), 1) << "a refused state fails nothing";
    EXPECT_EQ(GetBreak(object), 1) << "the mask has the break in it";
}

// A mask of signals that came last would leave the monitor deaf to bytes.
TEST_F(Open, RefusedStateLeavesTheLastMaskToTheMonitor) {
    device.RefuseState(true);
    OpenWithMonitor();
    EXPECT_THAT(device.CallsOf({"SetCommMask"}), ElementsAre("SetCommMask 248", "SetCommMask 1"));
    SetRThreshold(object, 1);
    device.Arrive("x");
    EXPECT_TRUE(host::PumpUntil([&] { return object.Saw(TARN_EVENT_RECEIVE); }));
}

TEST_F(Open, StateItHasAlreadyDoesNothing) {
    EXPECT_EQ(SetPortOpen(object, 0, nullptr), 1);
    EXPECT_THAT(device.Calls(), IsEmpty());
    OpenWithTimer();
    device.Forget();
    EXPECT_EQ(SetPortOpen(object, 1, nullptr), 1);
    EXPECT_EQ(SetPortOpen(object, -1, nullptr), 1) << "any non-zero is open";
    EXPECT_THAT(device.Calls(), IsEmpty());
}

std::string SystemText(DWORD error) {
    char text[1024] = {};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                   sizeof text, nullptr);
    return text;
}

struct FailureRow {
    DWORD error;
    std::string text;
};

const FailureRow failureRows[] = {
    {ERROR_FILE_NOT_FOUND, "Port not found"},
    {ERROR_ACCESS_DENIED, "Port unavailable"},
    {ERROR_SHARING_VIOLATION, SystemText(ERROR_SHARING_VIOLATION)},
    {ERROR_GEN_FAILURE, SystemText(ERROR_GEN_FAILURE)},
    {0x3FFFFFFF, ""}, // the system knows no text
};

TEST_F(Open, FailureIsTold) {
    for (const FailureRow& row : failureRows) {
        device.FailOpen(row.error);
        device.Forget();
        char error[TARN_ERROR_TEXT_SIZE] = "old text";
        SetCommPort(object, host::ScriptedDevice::Name);
        EXPECT_EQ(SetPortOpen(object, 1, error), 0) << row.error;
        EXPECT_EQ(error, row.text.substr(0, TARN_ERROR_TEXT_SIZE - 1)) << row.error;
        EXPECT_EQ(GetCommID(object), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetPortOpen(object), 0);
        EXPECT_EQ(device.Calls().size(), 1u) << "nothing but the attempt";
    }
}

TEST_F(Open, WorkerThatIsHeldUpInTheDriverMakesThePortUnavailable) {
    host::HeldDevice held(Record());
    const host::Stopwatch stopwatch;
    SetInterval(object, host::neverTicks);
    EXPECT_EQ(object.Open(host::ScriptedDevice::Name), "failed: Port unavailable");
    EXPECT_LT(stopwatch.Milliseconds(), 4000u);
    EXPECT_EQ(GetPortOpen(object), 0);
    EXPECT_FALSE(device.IsOpen());
    held.LetGo();
    EXPECT_EQ(object.Open(host::ScriptedDevice::Name), "");
}

TEST_F(Open, SuccessEmptiesTheText) {
    char error[TARN_ERROR_TEXT_SIZE] = "old text";
    SetInterval(object, host::neverTicks);
    SetCommPort(object, host::ScriptedDevice::Name);
    EXPECT_EQ(SetPortOpen(object, 1, error), 1);
    EXPECT_STREQ(error, "");
}

TEST_F(Open, TextIsNotAskedForWithNull) {
    device.FailOpen(ERROR_ACCESS_DENIED);
    SetCommPort(object, host::ScriptedDevice::Name);
    EXPECT_EQ(SetPortOpen(object, 1, nullptr), 0);
}

TEST_F(Open, LongTextIsCutToTheBuffer) {
    for (const DWORD length : {126u, 127u, 128u, 129u, 300u}) {
        host::ScriptedDevice::LengthenSystemTexts(length);
        device.FailOpen(ERROR_GEN_FAILURE);
        char error[TARN_ERROR_TEXT_SIZE + 1];
        memset(error, '#', sizeof error);
        SetCommPort(object, host::ScriptedDevice::Name);
        EXPECT_EQ(SetPortOpen(object, 1, error), 0);
        EXPECT_EQ(error, std::string(length, 'x').substr(0, TARN_ERROR_TEXT_SIZE - 1)) << length;
        EXPECT_EQ(error[TARN_ERROR_TEXT_SIZE], '#') << "nothing behind the buffer is touched";
    }
}

} // namespace
