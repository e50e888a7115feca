// Properties of the port and its line.
#include "controltest.h"

#include "core/live.h"
#include "support/sinks.h"

#include <limits>

namespace {

using host::Failure;
using host::FailureOf;

class PortProperties : public host::ControlTest {
  protected:
    std::string Port() {
        _variant_t value;
        EXPECT_EQ(control->get_CommPort(&value), S_OK);
        EXPECT_EQ(V_VT(&value), VT_BSTR);
        return AnsiOf(static_cast<const wchar_t*>(_bstr_t(value)));
    }
};

const host::PlainRow plainRows[] = {
    FLAT_ROW(Handshaking, 2, GetHandshaking),
    FLAT_ROW(Handshaking, 9, GetHandshaking),
    FLAT_ROW(InBufferSize, 2048, GetInBufferSize),
    FLAT_ROW(OutBufferSize, 4096, GetOutBufferSize),
    FLAT_ROW(RThreshold, 4, GetRThreshold),
    FLAT_ROW(SThreshold, 3, GetSThreshold),
    FLAT_ROW(NullDiscard, -1, GetNullDiscard),
    FLAT_ROW(NullDiscard, 0, GetNullDiscard),
    FLAT_ROW(DTRHolding, 0, GetDTR),
    FLAT_ROW(DTREnable, 0, GetDTR),
    FLAT_ROW(RTSEnable, 0, GetRTS),
    FLAT_ROW(CDTimeOut, 11, GetCarrierTimeOut),
    FLAT_ROW(CTSTimeOut, 12, GetCTSTimeOut),
    FLAT_ROW(DSRTimeOut, 13, GetDSRTimeOut),
    FLAT_ROW(InTimeOut, 14, GetInputTimeOut),
    FLAT_ROW(OutTimeOut, 15, GetOutputTimeOut),
    FLAT_ROW(Interval, 16, GetInterval),
    FLAT_ROW(Notification, 17, GetNotification),
    FLAT_ROW(ShutDown, -1, GetShutDown),
    OWN_ROW(IgnoreOnComm, -1),
};

TEST_F(PortProperties, PlainRows) {
    ExpectPlain(plainRows);
}

TEST_F(PortProperties, NullPointersAreRefused) {
    EXPECT_EQ(control->get_CommPort(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Settings(nullptr), E_POINTER);
    EXPECT_EQ(control->get_PortOpen(nullptr), E_POINTER);
    EXPECT_EQ(control->get_PortStatus(nullptr), E_POINTER);
    EXPECT_EQ(control->get_CommID(nullptr), E_POINTER);
    EXPECT_EQ(control->get_ParityReplace(nullptr), E_POINTER);
    EXPECT_EQ(control->get_CommError(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Busy(nullptr), E_POINTER);
}

TEST_F(PortProperties, AClosedControlReportsNothing) {
    EXPECT_EQ(Port(), "");
    EXPECT_EQ(GetText(&ITarnComm::get_PortStatus), "");
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_FALSE);
    EXPECT_EQ(Get(&ITarnComm::get_CommHandle), 0);
    EXPECT_EQ(Get(&ITarnComm::get_CommID), 0);
    EXPECT_EQ(Get(&ITarnComm::get_InBufferCount), 0);
    EXPECT_EQ(Get(&ITarnComm::get_OutBufferCount), 0);
    EXPECT_EQ(Get(&ITarnComm::get_Break), VARIANT_FALSE);
    EXPECT_EQ(Get(&ITarnComm::get_CDHolding), VARIANT_FALSE);
    EXPECT_EQ(Get(&ITarnComm::get_CTSHolding), VARIANT_FALSE);
    EXPECT_EQ(Get(&ITarnComm::get_DSRHolding), VARIANT_FALSE);
    EXPECT_EQ(Get(&ITarnComm::get_DTRHolding), VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_DTREnable), VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_RTSEnable), VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_Handshaking), Handshaking_Default);
    EXPECT_EQ(Get(&ITarnComm::get_InBufferSize), 16384);
    EXPECT_EQ(Get(&ITarnComm::get_OutBufferSize), 16384);
    EXPECT_EQ(Get(&ITarnComm::get_CommError), Error_None);
    EXPECT_EQ(static_cast<int>(Get(&ITarnComm::get_CommEvent)), 0);
    EXPECT_EQ(Get(&ITarnComm::get_Busy), VARIANT_FALSE);
    EXPECT_EQ(GetText(&ITarnComm::get_ParityReplace), "");
}

TEST_F(PortProperties, PortNamesFromVariants) {
    short number = 7;
    _variant_t reference;
    V_VT(&reference) = VT_I2 | VT_BYREF;
    V_I2REF(&reference) = &number;
    const std::pair<_variant_t, const char*> rows[] = {
        {_variant_t(static_cast<BYTE>(2)), "COM2"},
        {_variant_t(static_cast<short>(3)), "COM3"},
        {_variant_t(4L), "COM4"},
        {_variant_t(5.4f), "COM5"},
        {_variant_t(6.6), "COM7"},
        {_variant_t(L"My Modem"), "My Modem"},
        {_variant_t(-1L), "COM-1"},
        {reference, "COM7"},
    };
    for (const auto& [value, name] : rows) {
        EXPECT_EQ(control->put_CommPort(value), S_OK) << name;
        EXPECT_EQ(Port(), name);
        EXPECT_STREQ(GetCommPort(control->CommObject()), name);
    }
}

TEST_F(PortProperties, OtherVariantsAreNoPort) {
    ASSERT_EQ(control->put_CommPort(_variant_t(L"COM9")), S_OK);
    _variant_t date(1.0, VT_DATE);
    _variant_t object(static_cast<IDispatch*>(static_cast<ITarnComm*>(control.Get())));
    const _variant_t wrong[] = {date, object, _variant_t(), _variant_t(true)};
    const Failure mismatch = {static_cast<HRESULT>(0x800A000D), "Type mismatch."};
    for (const _variant_t& value : wrong) {
        EXPECT_EQ(FailureOf(control->put_CommPort(value)), mismatch) << V_VT(&value);
        EXPECT_EQ(Port(), "COM9");
    }
    EXPECT_EQ(control->put_CommPort(_variant_t(1e300)), DISP_E_OVERFLOW);
    EXPECT_EQ(Port(), "COM9");
}

TEST_F(PortProperties, ALongPortNameIsCut) {
    ASSERT_EQ(control->put_CommPort(_variant_t(std::wstring(150, L'x').c_str())), S_OK);
    EXPECT_EQ(Port(), std::string(99, 'x'));
}

TEST_F(PortProperties, PortNameIsLoggedAsBytesWhenSetOnly) {
    LogProperties();
    control->put_CommPort(_variant_t(8L));
    EXPECT_EQ(Logged("TarnComm.CommPort = \"COM8\""), 1);
    Port();
    EXPECT_EQ(LogText().find("CommPort returns"), std::string::npos);
}

TEST_F(PortProperties, SettingsAreTheCommObjectsUntilGiven) {
    char own[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(control->CommObject(), own);
    logfiles::DebuggerOutput output;
    EXPECT_EQ(GetText(&ITarnComm::get_Settings), own);
    EXPECT_NE(output.Text().find("Settings read\n"), std::string::npos);
    LogProperties();
    EXPECT_EQ(control->put_Settings(_bstr_t(L"2400,e,7,2")), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_Settings), "2400,e,7,2");
    EXPECT_EQ(control->Properties().m_sSettings, L"2400,e,7,2");
    EXPECT_EQ(Logged("TarnComm.Settings = \"2400,e,7,2\""), 1);
    EXPECT_EQ(Logged("TarnComm.Settings returns \"2400,e,7,2\""), 1);
}

TEST_F(PortProperties, WrongSettingsAreKeptButNotTaken) {
    control->put_Settings(_bstr_t(L"2400,e,7,2"));
    EXPECT_EQ(control->put_Settings(_bstr_t(L"2400,q")), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_Settings), "2400,e,7,2");
    EXPECT_EQ(control->Properties().m_sSettings, L"2400,q");
    EXPECT_EQ(control->put_Settings(nullptr), S_OK);
    EXPECT_EQ(control->Properties().m_sSettings, L"");
}

TEST_F(PortProperties, OnlySettingsAndReceiveThresholdTellOfTheirChange) {
    host::PropertySink sink;
    Microsoft::WRL::ComPtr<IConnectionPoint> point;
    ASSERT_EQ(control->FindConnectionPoint(IID_IPropertyNotifySink, &point), S_OK);
    DWORD cookie = 0;
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    control->put_Settings(_bstr_t(L"2400,e,7,2"));
    control->put_RThreshold(1);
    control->put_SThreshold(1);
    control->put_CommPort(_variant_t(3L));
    control->put_InTimeOut(3);
    EXPECT_EQ(sink.changed, (std::vector<DISPID>{1, 90}));
    point->Unadvise(cookie);
}

TEST_F(PortProperties, OpensAndCloses) {
    LogProperties();
    Open();
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_TRUE);
    EXPECT_EQ(GetText(&ITarnComm::get_PortStatus), "Connected");
    EXPECT_TRUE(control->IsConnected());
    EXPECT_EQ(Logged("TarnComm.PortOpen = True"), 1);
    EXPECT_EQ(Logged("TarnComm.PortOpen returns True"), 1);
    EXPECT_EQ(Logged("TarnComm.PortStatus returns \"Connected\""), 1);
    const LONG handle = Get(&ITarnComm::get_CommHandle);
    EXPECT_EQ(handle, HandleToLong(GetCommID(control->CommObject())));

    EXPECT_EQ(control->put_PortOpen(VARIANT_FALSE), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_FALSE);
    EXPECT_EQ(GetText(&ITarnComm::get_PortStatus), "Disconnected");
    EXPECT_FALSE(control->IsConnected());
    EXPECT_EQ(Get(&ITarnComm::get_CommHandle), -1);
}

TEST_F(PortProperties, OpeningTwiceDoesNothing) {
    Open();
    const LONG handle = Get(&ITarnComm::get_CommHandle);
    EXPECT_EQ(control->put_PortOpen(VARIANT_TRUE), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_CommHandle), handle);
    control->put_PortOpen(VARIANT_FALSE);
    control->Properties().m_sPortStatus = L"kept";
    EXPECT_EQ(control->put_PortOpen(VARIANT_FALSE), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_PortStatus), "kept");
}

TEST_F(PortProperties, AFailedOpeningIsToldByItsStatusAlone) {
    control->put_CommPort(_variant_t(L"COM77"));
    EXPECT_EQ(FailureOf(control->put_PortOpen(VARIANT_TRUE)), (Failure{S_OK, ""}));
    EXPECT_EQ(GetText(&ITarnComm::get_PortStatus), "Port not found");
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_FALSE);
    EXPECT_FALSE(control->IsConnected());
}

TEST_F(PortProperties, AGivenHandleConnects) {
    LogProperties();
    const HANDLE device = CreateFileA("\\\\.\\COM5", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_OVERLAPPED, nullptr);
    ASSERT_NE(device, INVALID_HANDLE_VALUE);
    EXPECT_EQ(control->put_CommID(HandleToLong(device)), S_OK);
    EXPECT_TRUE(control->IsConnected());
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_CommID), HandleToLong(device));
    EXPECT_EQ(Logged("TarnComm.CommHandle = " + std::to_string(HandleToLong(device))), 1);
    EXPECT_EQ(control->put_CommHandle(-1), S_OK);
    EXPECT_FALSE(control->IsConnected());
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_FALSE);
    EXPECT_EQ(LogText().find("CommID"), std::string::npos);
}

// Kept as it is: 0 is no device either, but counts as one here.
TEST_F(PortProperties, TheHandleZeroCountsAsConnected) {
    EXPECT_EQ(control->put_CommHandle(0), S_OK);
    EXPECT_TRUE(control->IsConnected());
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_FALSE);
}

TEST_F(PortProperties, OnlyAZeroEmptiesTheInput) {
    LogProperties();
    control->put_AutoProcess(TARN_PROCESS_NONE);
    Open();
    host::FarEnd farEnd;
    ASSERT_TRUE(farEnd.Send("abcdef"));
    ASSERT_TRUE(HasInput(6));
    EXPECT_EQ(control->put_InBufferCount(5), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_InBufferCount), 6);
    EXPECT_EQ(Logged("TarnComm.InBufferCount = 5"), 1);
    EXPECT_EQ(control->put_InBufferCount(0), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_InBufferCount), 0);
}

TEST_F(PortProperties, SettingTheOutputCountIsLogged) {
    LogProperties();
    EXPECT_EQ(control->put_OutBufferCount(5), S_OK);
    EXPECT_EQ(control->put_OutBufferCount(0), S_OK);
    EXPECT_EQ(Logged("TarnComm.OutBufferCount = 5"), 1);
    EXPECT_EQ(Logged("TarnComm.OutBufferCount = 0"), 1);
}

TEST_F(PortProperties, ANegativeOutputTimeOutChangesNothing) {
    LogProperties();
    control->put_OutTimeOut(20);
    EXPECT_EQ(control->put_OutTimeOut(-1), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_OutTimeOut), 20);
    EXPECT_EQ(GetOutputTimeOut(control->CommObject()), 20);
    EXPECT_EQ(Logged("TarnComm.OutTimeOut = -1"), 0);
}

struct ParityCase {
    const wchar_t* given;
    int flat;
    const char* read;
};

TEST_F(PortProperties, ParityReplaceIsTheFirstByte) {
    LogProperties();
    const ParityCase rows[] = {{L"?", '?', "?"}, {L"xyz", 'x', "x"}, {L"", -1, ""}, {nullptr, -1, ""}};
    for (const ParityCase& row : rows) {
        const _bstr_t given(row.given);
        EXPECT_EQ(control->put_ParityReplace(given), S_OK);
        EXPECT_EQ(GetParityReplace(control->CommObject()), row.flat);
        EXPECT_EQ(GetText(&ITarnComm::get_ParityReplace), row.read);
    }
    EXPECT_EQ(Logged("TarnComm.ParityReplace = \"xyz\""), 1);
    EXPECT_EQ(Logged("TarnComm.ParityReplace returns \"x\""), 1);
}

TEST_F(PortProperties, ParityReplaceOfAnObjectThatIsGoneIsEmpty) {
    control->put_ParityReplace(_bstr_t(L"?"));
    DestroyWindow(control->CommObject());
    EXPECT_EQ(GetText(&ITarnComm::get_ParityReplace), "");
}

TEST_F(PortProperties, UpperHalfParityCharacterIsAByte) {
    const _bstr_t given(WideOf("\xE4").c_str());
    control->put_ParityReplace(given);
    EXPECT_EQ(GetParityReplace(control->CommObject()), 0xE4);
    EXPECT_EQ(GetText(&ITarnComm::get_ParityReplace), "\xE4");
}

TEST_F(PortProperties, SignalsOfTheLine) {
    Open();
    host::FarEnd farEnd;
    EXPECT_TRUE(host::PumpUntil([&] { return Get(&ITarnComm::get_CTSHolding) == VARIANT_TRUE; }));
    EXPECT_TRUE(host::PumpUntil([&] { return Get(&ITarnComm::get_DSRHolding) == VARIANT_TRUE; }));
    cable.Carrier('a', "on");
    EXPECT_TRUE(host::PumpUntil([&] { return Get(&ITarnComm::get_CDHolding) == VARIANT_TRUE; }));
    cable.Carrier('a', "off");
    EXPECT_TRUE(host::PumpUntil([&] { return Get(&ITarnComm::get_CDHolding) == VARIANT_FALSE; }));
}

TEST_F(PortProperties, DtrIsDroppedAndRaisedAtOnce) {
    Open();
    EXPECT_EQ(cable.Signal("a.dtr"), 1);
    EXPECT_EQ(control->put_DTREnable(VARIANT_FALSE), S_OK);
    EXPECT_TRUE(host::PumpUntil([&] { return cable.Signal("a.dtr") == 0; }));
    EXPECT_EQ(Get(&ITarnComm::get_DTREnable), VARIANT_FALSE);
    EXPECT_EQ(control->put_DTREnable(VARIANT_TRUE), S_OK);
    EXPECT_TRUE(host::PumpUntil([&] { return cable.Signal("a.dtr") == 1; }));
}

// Codes of plain events are no errors.
TEST_F(PortProperties, CommErrorHidesEvents) {
    COMCTL* record = RecordOf(control->CommObject());
    ASSERT_TRUE(record);
    const std::pair<int, int> rows[] = {{1, 0}, {999, 0}, {1001, 1001}, {1010, 1010}};
    for (const auto& [code, error] : rows) {
        record->nPendingError = code;
        EXPECT_EQ(static_cast<int>(Get(&ITarnComm::get_CommError)), error);
    }
}

TEST_F(PortProperties, BusyWhileTheCommObjectWaits) {
    VARIANT_BOOL during = VARIANT_FALSE;
    const auto ask = host::After(20, [&] { control->get_Busy(&during); });
    control->put_Pause(100);
    EXPECT_EQ(during, VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_Busy), VARIANT_FALSE);
}

TEST_F(PortProperties, ReleasingClosesThePort) {
    Open();
    const HWND object = control->CommObject();
    control.Reset();
    EXPECT_FALSE(IsWindow(object));
    const HANDLE again = CreateFileA("\\\\.\\COM5", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(again, INVALID_HANDLE_VALUE);
    CloseHandle(again);
}

} // namespace
