// The state block as the device receives it.
#include "support/device/devicetest.h"

#include "core/stateblock.h"
#include "diagnostics/wiretap.h"
#include "unit/diagnostics/logfiles.h"

namespace {

using testing::IsEmpty;

struct FieldRow {
    const char* name;
    void (*change)(COMCTL&);
    int (*read)(const DCB&);
    int expected;
};

#define FIELD(Name) [](const DCB& block) { return static_cast<int>(block.Name); }
#define WITH(Change) [](COMCTL& r) { Change; }
#define AS_MADE [](COMCTL&) {}

// The driver's own block has every bit set, so a field that is left alone shows.
const FieldRow fieldRows[] = {
    {"speed", WITH(r.lBaud = 19200), FIELD(BaudRate), 19200},
    {"speed 0 leaves the driver's", WITH(r.lBaud = 0), FIELD(BaudRate), -1},
    {"binary", AS_MADE, FIELD(fBinary), 1},
    {"parity check, no replacement", WITH(r.nParityReplace = -1), FIELD(fParity), 1},
    {"parity check, replacement 0", WITH(r.nParityReplace = 0), FIELD(fParity), 0},
    {"parity check, replacement 63", WITH(r.nParityReplace = 63), FIELD(fParity), 1},
    {"DSR flow", AS_MADE, FIELD(fOutxDsrFlow), 0},
    {"DTR on", WITH(r.bDTR = -1), FIELD(fDtrControl), DTR_CONTROL_ENABLE},
    {"DTR off", WITH(r.bDTR = 0), FIELD(fDtrControl), DTR_CONTROL_DISABLE},
    {"DSR sensitivity", AS_MADE, FIELD(fDsrSensitivity), 0},
    {"continue on XOff", AS_MADE, FIELD(fTXContinueOnXoff), 0},

    {"CTS flow, none", WITH(r.nHandshaking = 0), FIELD(fOutxCtsFlow), 0},
    {"CTS flow, XOn/XOff", WITH(r.nHandshaking = 1), FIELD(fOutxCtsFlow), 0},
    {"CTS flow, hardware", WITH(r.nHandshaking = 2), FIELD(fOutxCtsFlow), 1},
    {"CTS flow, both", WITH(r.nHandshaking = 3), FIELD(fOutxCtsFlow), 1},
    {"CTS flow, default", WITH(r.nHandshaking = 4), FIELD(fOutxCtsFlow), 0},
    {"CTS flow, left alone", WITH(r.nHandshaking = -1), FIELD(fOutxCtsFlow), 1},
    {"XOff out, none", WITH(r.nHandshaking = 0), FIELD(fInX), 0},
    {"XOff out, XOn/XOff", WITH(r.nHandshaking = 1), FIELD(fInX), 1},
    {"XOff out, hardware", WITH(r.nHandshaking = 2), FIELD(fInX), 0},
    {"XOff out, both", WITH(r.nHandshaking = 3), FIELD(fInX), 1},
    {"XOff out, default", WITH(r.nHandshaking = 4), FIELD(fInX), 0},
    {"XOff out, left alone", WITH(r.nHandshaking = -1), FIELD(fInX), 1},
    {"XOff out in a transfer", WITH(r.nHandshaking = 1; r.nTransferType = 2), FIELD(fInX), 0},
    {"XOff in, XOn/XOff", WITH(r.nHandshaking = 1), FIELD(fOutX), 1},
    {"XOff in, hardware", WITH(r.nHandshaking = 2), FIELD(fOutX), 0},
    {"XOff in, both", WITH(r.nHandshaking = 3), FIELD(fOutX), 1},
    {"XOff in, default", WITH(r.nHandshaking = 4), FIELD(fOutX), 0},
    {"XOff in in a transfer", WITH(r.nHandshaking = 3; r.nTransferType = 1), FIELD(fOutX), 0},
    {"CTS flow in a transfer", WITH(r.nHandshaking = 3; r.nTransferType = 1), FIELD(fOutxCtsFlow), 1},
    {"RTS on", WITH(r.nHandshaking = 0), FIELD(fRtsControl), RTS_CONTROL_ENABLE},
    {"RTS by hardware", WITH(r.nHandshaking = 2), FIELD(fRtsControl), RTS_CONTROL_HANDSHAKE},
    {"RTS off", WITH(r.bRTS = 0), FIELD(fRtsControl), RTS_CONTROL_DISABLE},
    {"RTS off wins", WITH(r.bRTS = 0; r.nHandshaking = 2), FIELD(fRtsControl), RTS_CONTROL_DISABLE},
    {"RTS left alone", WITH(r.bRTS = 0; r.nHandshaking = -1), FIELD(fRtsControl), 3},

    {"replaces, none", WITH(r.nParityReplace = -1), FIELD(fErrorChar), 0},
    {"replaces, 0", WITH(r.nParityReplace = 0), FIELD(fErrorChar), 1},
    {"replaces, 63", WITH(r.nParityReplace = 63), FIELD(fErrorChar), 1},
    {"replacement, none", WITH(r.nParityReplace = -1), FIELD(ErrorChar), 0},
    {"replacement, 63", WITH(r.nParityReplace = 63), FIELD(ErrorChar), 63},
    {"nulls kept", WITH(r.bNullDiscard = 0), FIELD(fNull), 0},
    {"nulls discarded", WITH(r.bNullDiscard = -1), FIELD(fNull), 1},
    {"abort on error", AS_MADE, FIELD(fAbortOnError), 0},
    {"dummy bits", AS_MADE, FIELD(fDummy2), 0},
    {"reserved", AS_MADE, FIELD(wReserved), 0},
    {"second reserved, left alone", AS_MADE, FIELD(wReserved1), 0xFFFF},

    {"XOn limit", WITH(r.cbInBuffer = 2048), FIELD(XonLim), 512},
    {"XOff limit", WITH(r.cbInBuffer = 2048), FIELD(XoffLim), 512},
    {"XOn limit just reached", WITH(r.cbInBuffer = 32768), FIELD(XonLim), 8192},
    {"XOn limit held", WITH(r.cbInBuffer = 100000), FIELD(XonLim), 8192},
    {"XOff limit held", WITH(r.cbInBuffer = 100000), FIELD(XoffLim), 8192},
    {"XOn limit of nothing", WITH(r.cbInBuffer = 3), FIELD(XonLim), 0},
    {"XOn", AS_MADE, FIELD(XonChar), 17},
    {"XOff", AS_MADE, FIELD(XoffChar), 19},

    {"data bits", WITH(r.nDataBits = 7), FIELD(ByteSize), 7},
    {"data bits absent", WITH(r.nDataBits = -1), FIELD(ByteSize), 8},
    {"parity", WITH(r.nParity = 2), FIELD(Parity), EVENPARITY},
    {"parity absent", WITH(r.nParity = -1), FIELD(Parity), NOPARITY},
    {"stop bits", WITH(r.nStopBits = 2), FIELD(StopBits), TWOSTOPBITS},
    {"stop bits absent", WITH(r.nStopBits = -1), FIELD(StopBits), ONESTOPBIT},
};

#undef FIELD
#undef WITH
#undef AS_MADE

using State = host::DeviceTest;

DCB EveryBitSet() {
    DCB block;
    memset(&block, 0xFF, sizeof block);
    block.DCBlength = sizeof block;
    return block;
}

TEST_F(State, EachFieldReachesTheDevice) {
    for (const FieldRow& row : fieldRows) {
        host::CommObject fresh;
        SetInterval(fresh, host::neverTicks);
        SetCommPort(fresh, host::ScriptedDevice::Name);
        row.change(*RecordOf(fresh));
        device.SetState(EveryBitSet());
        device.Forget();
        ASSERT_EQ(SetPortOpen(fresh, 1, nullptr), 1) << row.name;
        ASSERT_EQ(device.StatesGiven().size(), 1u) << row.name;
        EXPECT_EQ(row.read(device.StatesGiven()[0]), row.expected) << row.name;
        RecordOf(fresh)->nTransferType = 0;
    }
}

struct SetterRow {
    const char* name;
    void (*set)(HWND);
    int rebuilds;
    bool speed; // is applied
};

const SetterRow setterRows[] = {
    {"SetSettings", [](HWND h) { SetSettings(h, "4800,n,8,1"); }, 1, true},
    {"SetSettings with a bad text", [](HWND h) { SetSettings(h, "4800,x,8,1"); }, 0, false},
    {"SetCarrierTimeOut", [](HWND h) { SetCarrierTimeOut(h, 1); }, 1, false},
    {"SetCTSTimeOut", [](HWND h) { SetCTSTimeOut(h, 1); }, 1, false},
    {"SetDSRTimeOut", [](HWND h) { SetDSRTimeOut(h, 1); }, 1, false},
    {"SetDiscardNulls", [](HWND h) { SetDiscardNulls(h, 1); }, 1, false},
    {"SetHandshaking", [](HWND h) { SetHandshaking(h, 1); }, 1, false},
    {"SetInputDriverTimeOut", [](HWND h) { SetInputDriverTimeOut(h, 1); }, 1, false},
    {"SetParityReplace", [](HWND h) { SetParityReplace(h, 63); }, 1, false},
    {"SetDTR", [](HWND h) { SetDTR(h, 1); }, 1, false},
    {"SetNullDiscard", [](HWND h) { SetNullDiscard(h, 1); }, 0, false},
    {"SetDriverInputTimeOut", [](HWND h) { SetDriverInputTimeOut(h, 1); }, 0, false},
    {"SetRTS", [](HWND h) { SetRTS(h, 1); }, 0, false},
    {"SetInputTimeOut", [](HWND h) { SetInputTimeOut(h, 1); }, 0, false},
    {"SetRThreshold", [](HWND h) { SetRThreshold(h, 1); }, 0, false},
    {"SetInBufferSize", [](HWND h) { SetInBufferSize(h, 1); }, 0, false},
};

TEST_F(State, SettersRebuildOrDoNot) {
    OpenWithTimer();
    for (const SetterRow& row : setterRows) {
        DCB driver = {};
        driver.DCBlength = sizeof driver;
        driver.BaudRate = 300; // changed behind the object's back
        device.SetState(driver);
        device.Forget();
        row.set(object);
        EXPECT_EQ(device.Count("SetCommState"), row.rebuilds) << row.name;
        EXPECT_EQ(device.Count("GetCommState"), row.rebuilds) << row.name;
        for (const DCB& given : device.StatesGiven())
            EXPECT_EQ(given.BaudRate, row.speed ? 4800u : 300u) << row.name;
    }
}

TEST_F(State, HandshakingChangedInATransferLeavesXOnAndXOffData) {
    OpenWithTimer();
    for (const int transfer : {1, 2, 0}) {
        Record().nTransferType = transfer;
        for (const int handshaking : {1, 3}) {
            SetHandshaking(object, handshaking);
            const DCB given = device.StatesGiven().back();
            EXPECT_EQ(given.fInX, transfer ? 0u : 1u) << handshaking << " in " << transfer;
            EXPECT_EQ(given.fOutX, transfer ? 0u : 1u) << handshaking << " in " << transfer;
        }
    }
}

// The lines of the device's state need no switch.
TEST_F(State, BlockIsLoggedBeforeAndAfterWhateverTheSwitches) {
    OpenWithTimer();
    ASSERT_EQ(Record().bWireTapInput + Record().bWireTapOutput + Record().bWireTapTransfer, 0);
    const DCB before = EveryBitSet();
    device.SetState(before);
    device.Forget();
    ResetWireTap();
    logfiles::RemoveLog();
    SetHandshaking(object, TARN_HANDSHAKING_HARDWARE);
    const std::string log = logfiles::Messages();
    ResetWireTap();
    logfiles::RemoveLog();
    ASSERT_EQ(device.StatesGiven().size(), 1u);
    EXPECT_EQ(log, "<time> " + StateBlockText(before) + "\r\n<time> " +
                       StateBlockText(device.StatesGiven()[0]) + "\r\n");
}

TEST_F(State, SettersLeaveAClosedDeviceAlone) {
    for (const SetterRow& row : setterRows)
        row.set(object);
    EXPECT_THAT(device.CallsOf({"GetCommState", "SetCommState"}), IsEmpty());
}

TEST_F(State, RefusalIsIgnoredBySetters) {
    OpenWithTimer();
    device.RefuseState(true);
    SetHandshaking(object, 2);
    EXPECT_EQ(GetHandshaking(object), 2);
    EXPECT_EQ(SetSettings(object, "2400,e,7,1"), 0);
    EXPECT_EQ(GetSettingsBaud(object), 2400);
    EXPECT_EQ(device.Count("SetCommMask"), 0) << "only the opening answers a refusal with the mask";
}

} // namespace
