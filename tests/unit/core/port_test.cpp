// Opening, closing, settings and signals on the virtual line.
#include "support/line.h"

#include "core/comctl.h"
#include "core/live.h"
#include "core/thread.h"

namespace {

class Port : public host::LineTest {};

TEST_F(Port, MissingDeviceIsNotFound) {
    host::CommObject object;
    char error[TARN_ERROR_TEXT_SIZE] = "old text";
    SetCommPort(object, "COM99");
    EXPECT_EQ(SetPortOpen(object, 1, error), 0);
    EXPECT_STREQ(error, "Port not found");
    EXPECT_EQ(GetPortOpen(object), 0);
    EXPECT_EQ(GetCommID(object), INVALID_HANDLE_VALUE);
}

TEST_F(Port, DeviceThatIsDeniedIsUnavailable) {
    host::CommObject object;
    EXPECT_EQ(object.Open("COM7"), "failed: Port unavailable");
}

TEST_F(Port, OpeningEmptiesTheErrorText) {
    host::CommObject object;
    char error[TARN_ERROR_TEXT_SIZE] = "old text";
    SetCommPort(object, host::nearPort);
    EXPECT_EQ(SetPortOpen(object, 1, error), 1);
    EXPECT_STREQ(error, "");
}

TEST_F(Port, StateItHasAlreadyIsASuccess) {
    host::CommObject object;
    EXPECT_EQ(SetPortOpen(object, 0, nullptr), 1) << "closed already";
    ASSERT_EQ(object.Open(host::nearPort), "");
    const HANDLE device = GetCommID(object);
    EXPECT_EQ(SetPortOpen(object, 1, nullptr), 1) << "open already";
    EXPECT_EQ(GetCommID(object), device);
}

TEST_F(Port, HandleGoesFromNullToAllOnes) {
    host::CommObject object;
    EXPECT_EQ(GetCommID(object), nullptr);
    ASSERT_EQ(object.Open(host::nearPort), "");
    EXPECT_NE(GetCommID(object), INVALID_HANDLE_VALUE);
    object.Close();
    EXPECT_EQ(GetCommID(object), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetPortOpen(object), 0);
}

TEST_F(Port, NameStaysWhileOpen) {
    host::CommObject object;
    ASSERT_EQ(object.Open(host::nearPort), "");
    SetCommPort(object, "COM6");
    EXPECT_STREQ(GetCommPort(object), host::nearPort);
    EXPECT_EQ(RecordOf(object)->nPortSetState, 2);
    object.Close();
    SetPort(object, "COM6");
    EXPECT_STREQ(GetPort(object), "COM6");
}

TEST_F(Port, BufferSizesStayWhileOpen) {
    host::CommObject object;
    SetInBufferSize(object, 4096);
    ASSERT_EQ(object.Open(host::nearPort), "");
    SetInBufferSize(object, 8192);
    SetOutBufferSize(object, 8192);
    EXPECT_EQ(GetInBufferSize(object), 4096);
    EXPECT_EQ(GetOutBufferSize(object), 2048);
}

TEST_F(Port, LongNameIsCut) {
    host::CommObject object;
    SetCommPort(object, std::string(1000, 'C').c_str());
    EXPECT_EQ(GetCommPort(object), std::string(255, 'C'));
}

struct SettingsRow {
    const char* text;
    int result;
    const char* formatted;
};

const SettingsRow settingsRows[] = {
    {"19200,e,7,2", 0, "19200,e,7,2"},
    {"9600 N 8 1", 0, "9600,n,8,1"},
    {"9600,,8,1", 0, "9600,,8,1"},
    {",n,8,1", 0, ",n,8,1"},
    {"9600,x,8,1", TARN_BAD_SETTINGS, "300,o,5,1.5"},
};

TEST_F(Port, SettingsAreStoredOnAClosedPort) {
    for (const SettingsRow& row : settingsRows) {
        const host::CommObject object;
        ASSERT_EQ(SetSettings(object, "300,o,5,1.5"), 0);
        EXPECT_EQ(SetSettings(object, row.text), row.result) << row.text;
        char text[TARN_SETTINGS_TEXT_SIZE] = {};
        EXPECT_EQ(GetSettings(object, text), static_cast<int>(strlen(row.formatted))) << row.text;
        EXPECT_STREQ(text, row.formatted) << row.text;
    }
}

TEST_F(Port, SettingsReachTheDevice) {
    host::CommObject object;
    // What a pty can keep: its bytes have 8 bits and no parity whatever it is told.
    ASSERT_EQ(object.Open(host::nearPort, "19200,n,8,2"), "");
    DCB block = {};
    block.DCBlength = sizeof block;
    ASSERT_TRUE(GetCommState(GetCommID(object), &block));
    EXPECT_EQ(block.BaudRate, 19200u);
    EXPECT_EQ(block.StopBits, TWOSTOPBITS);
    SetSettings(object, ",n,8,1");
    ASSERT_TRUE(GetCommState(GetCommID(object), &block));
    EXPECT_EQ(block.BaudRate, 19200u) << "no speed leaves the driver's";
    EXPECT_EQ(block.StopBits, ONESTOPBIT);
}

TEST_F(Port, SignalsFollowTheCable) {
    host::CommObject object;
    host::FarEnd peer;
    ASSERT_EQ(object.Open(host::nearPort), "");
    struct Row {
        DWORD farAction;
        int(TARNAPI* ask)(HWND);
        int expected;
    };
    const Row rows[] = {
        {SETDTR, GetDSR, 1},     {SETDTR, GetCarrier, 1}, {CLRDTR, GetDSR, 0},
        {CLRDTR, GetCarrier, 0}, {SETRTS, GetCTS, 1},     {CLRRTS, GetCTS, 0},
    };
    for (const Row& row : rows) {
        EscapeCommFunction(peer.Handle(), row.farAction);
        EXPECT_EQ(row.ask(object), row.expected) << "after far action " << row.farAction;
    }
    SetDTR(object, 0);
    SetRTS(object, 0);
    EXPECT_EQ(cable.Signal("a.dtr"), 0);
    EXPECT_EQ(cable.Signal("a.rts"), 0);
    SetDTR(object, -1);
    SetRTS(object, -1);
    EXPECT_EQ(cable.Signal("a.dtr"), 1);
    EXPECT_EQ(cable.Signal("a.rts"), 1);
}

TEST_F(Port, CloseDropsDtr) {
    host::CommObject object;
    ASSERT_EQ(object.Open(host::nearPort), "");
    SetDTR(object, -1);
    ASSERT_EQ(cable.Signal("a.dtr"), 1);
    object.Close();
    EXPECT_EQ(cable.Signal("a.dtr"), 0);
}

TEST_F(Port, SignalGettersAreSilentWhileClosed) {
    const host::CommObject object;
    EXPECT_EQ(GetCTS(object) + GetDSR(object) + GetCarrier(object) + GetBreak(object), 0);
    SetBreak(object, 1);
    SetRTS(object, 0);
    EXPECT_EQ(GetRTS(object), 0) << "stored all the same";
}

TEST_F(Port, AttachedHandleIsOpenAndNullDetachesIt) {
    host::CommObject object;
    const HANDLE device = CreateFileA("\\\\.\\COM5", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_OVERLAPPED, nullptr);
    ASSERT_NE(device, INVALID_HANDLE_VALUE);
    SetCommID(object, device);
    EXPECT_EQ(GetPortOpen(object), 1);
    host::FarEnd peer;
    EXPECT_EQ(Output(object, "via", 3), 1);
    EXPECT_EQ(peer.Read(3), "via");
    SetCommID(object, nullptr);
    EXPECT_EQ(GetPortOpen(object), 0);
    EXPECT_EQ(GetCommID(object), INVALID_HANDLE_VALUE);
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(device, &flags)) << "the device was closed";
}

TEST_F(Port, SettingsDialogFailsForWantOfATemplate) {
    const host::CommObject object;
    SetSettings(object, "7200,e,7,2");
    SetHandshaking(object, TARN_HANDSHAKING_BOTH);
    EXPECT_EQ(PortSettingsDialog(object, nullptr), -1);
    char settings[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(object, settings);
    EXPECT_STREQ(settings, "7200,e,7,2");
    EXPECT_EQ(GetHandshaking(object), TARN_HANDSHAKING_BOTH);
}

TEST_F(Port, VanishedDeviceHangsNothingAndComesBack) {
    host::CommObject object;
    ASSERT_EQ(object.Open(host::nearPort), "");
    SetRThreshold(object, 1);
    cable.HangUp('a');
    host::Pump(100);
    char bytes[16];
    EXPECT_EQ(GetInput(object, bytes, sizeof bytes), 0);
    Output(object, "lost", 4);
    SetInputTimeOut(object, 50);
    EXPECT_EQ(GetLineInput(object, bytes, sizeof bytes), 0);

    FILETIME created, ended, kernel[2], user[2];
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel[0], &user[0]);
    host::Pump(500);
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel[1], &user[1]);
    const DWORD used =
        (kernel[1].dwLowDateTime - kernel[0].dwLowDateTime) + (user[1].dwLowDateTime - user[0].dwLowDateTime);
    EXPECT_LT(used / 10000, 200u) << "ms of processor time in 500: some thread spins";

    const DWORD start = GetTickCount();
    object.Close();
    EXPECT_LT(GetTickCount() - start, 3000u);
    EXPECT_EQ(TerminatedThreadCount(), 0);
    cable.Restore('a');
    ASSERT_EQ(object.Open(host::nearPort), "");
    host::FarEnd peer;
    EXPECT_EQ(Output(object, "back", 4), 1);
    EXPECT_EQ(peer.Read(4), "back");
}

} // namespace
