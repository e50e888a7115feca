#include "loggedcontrol.h"

#include "core/live.h"

using namespace controltest;

namespace {

// What reaches the comm object of a switch by kind: whether a transfer's message is logged.
bool LogsTransfers(HWND object) {
    return !LogOf([&] { WireTapTransfer(object, "%s", "text"); }).empty();
}

} // namespace

using LoggingRows = LoggedControl;
using ProjectRows = LoggedControl;

TEST_F(LoggingRows, PlainRows) {
    const Row rows[] = {
        TARN_ROW_ALONE(WireTapEvents, -1),   TARN_ROW_ALONE(WireTapInput, -1),
        TARN_ROW_ALONE(WireTapOutput, -1),   TARN_ROW_ALONE(WireTapProperties, -1),
        TARN_ROW_ALONE(WireTapWarnings, -1), TARN_ROW_ALONE(WireTapEvents, 0),
        TARN_ROW_ALONE(WireTapInput, 0),     TARN_ROW_ALONE(WireTapOutput, 0),
        TARN_ROW_ALONE(WireTapWarnings, 0),
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CheckRow(control, row);
    }
}

TEST(LoggingDefaults, AreOff) {
    Control control;
    VARIANT_BOOL value = VARIANT_TRUE;
    for (const auto get :
         {&ITarnComm::get_WireTap, &ITarnComm::get_WireTapEvents, &ITarnComm::get_WireTapInput,
          &ITarnComm::get_WireTapOutput, &ITarnComm::get_WireTapProperties, &ITarnComm::get_WireTapWarnings,
          &ITarnComm::get_WireTapTransfer}) {
        value = VARIANT_TRUE;
        EXPECT_EQ((control.Face().*get)(&value), S_OK);
        EXPECT_EQ(value, VARIANT_FALSE);
    }
}

TEST(LoggingDefaults, WithoutTheSwitchOfAllNothingIsLogged) {
    Control control;
    control->put_WireTapTransfer(VARIANT_TRUE);
    EXPECT_EQ(LogOf([&] { control->put_WireTapProperties(VARIANT_TRUE); }), "");
    EXPECT_FALSE(LogsTransfers(control.Object()));
    control->put_WireTap(VARIANT_TRUE);
    EXPECT_TRUE(LogsTransfers(control.Object()));
}

// The log can't be switched off by its property.
TEST(LoggingSwitch, FalseIsTrue) {
    Control control;
    control->put_WireTapProperties(VARIANT_TRUE);
    const std::string log = LogOf([&] { EXPECT_EQ(control->put_WireTap(VARIANT_FALSE), S_OK); });
    EXPECT_EQ(log, Line("Comm.WireTap = True"));
    EXPECT_EQ(control->Properties().m_bWireTap, 1);
}

// Another property's name stands in the line.
TEST_F(LoggingRows, SwitchIsReadUnderAnotherName) {
    VARIANT_BOOL value = VARIANT_FALSE;
    EXPECT_EQ(LogOf([&] { control->get_WireTap(&value); }), Line("Comm.CommPort returns True"));
    EXPECT_EQ(value, VARIANT_TRUE);
}

TEST_F(LoggingRows, TwoTellTheirChange) {
    EXPECT_EQ(control.ChangesOf([&] { control->put_WireTap(VARIANT_TRUE); }), std::vector<DISPID>{29});
    EXPECT_EQ(control.ChangesOf([&] { control->put_WireTapTransfer(VARIANT_TRUE); }),
              std::vector<DISPID>{132});
    EXPECT_EQ(control.ChangesOf([&] { control->put_WireTapInput(VARIANT_TRUE); }), std::vector<DISPID>{});
}

TEST_F(LoggingRows, TransferSwitchReachesTheObjectAndIsReadSilently) {
    EXPECT_FALSE(LogsTransfers(control.Object()));
    EXPECT_EQ(LogOf([&] { control->put_WireTapTransfer(VARIANT_TRUE); }),
              Line("Comm.WireTapTransfer = True"));
    EXPECT_TRUE(LogsTransfers(control.Object()));
    VARIANT_BOOL value = VARIANT_FALSE;
    EXPECT_EQ(LogOf([&] { control->get_WireTapTransfer(&value); }), "");
    EXPECT_EQ(value, VARIANT_TRUE);
    EXPECT_EQ(control->get_WireTapTransfer(nullptr), E_POINTER);
}

struct ObjectSwitch {
    const char* name;
    HRESULT (STDMETHODCALLTYPE ITarnComm::*put)(VARIANT_BOOL);
    bool (*isOn)(const COMCTL& record);
};

constexpr ObjectSwitch objectSwitches[] = {
    {"Input", &ITarnComm::put_WireTapInput, [](const COMCTL& record) { return record.bWireTapInput != 0; }},
    {"Output", &ITarnComm::put_WireTapOutput,
     [](const COMCTL& record) { return record.bWireTapOutput != 0; }},
    {"Transfer", &ITarnComm::put_WireTapTransfer,
     [](const COMCTL& record) { return record.bWireTapTransfer != 0; }},
};

std::string SwitchesOf(HWND object) {
    const COMCTL* record = RecordOf(object);
    std::string names;
    for (const ObjectSwitch& row : objectSwitches)
        if (record && row.isOn(*record))
            names += row.name;
    return names;
}

TEST(LoggingSwitch, ThreeReachTheObjectWithTheSwitchOfAllOnly) {
    for (const ObjectSwitch& row : objectSwitches) {
        SCOPED_TRACE(row.name);
        Control control;
        EXPECT_EQ((control.Face().*row.put)(VARIANT_TRUE), S_OK);
        EXPECT_EQ(SwitchesOf(control.Object()), "");
        control->put_WireTap(VARIANT_TRUE);
        EXPECT_EQ(SwitchesOf(control.Object()), row.name);
        EXPECT_EQ((control.Face().*row.put)(VARIANT_FALSE), S_OK);
        EXPECT_EQ(SwitchesOf(control.Object()), "");
    }
}

TEST_F(LoggingRows, LongLineIsCut) {
    control.Container().site.ambients[DISPID_AMBIENT_DISPLAYNAME] = std::wstring(300, L'N').c_str();
    control->ApplyProperties();
    EXPECT_EQ(LogOf([&] { control->put_Columns(70); }), Line(std::string(255, 'N')));
}

TEST_F(LoggingRows, NothingIsLoggedWhileTheHostFreezesEvents) {
    control->FreezeEvents(TRUE);
    EXPECT_EQ(LogOf([&] { control->put_Columns(70); }), "");
    control->FreezeEvents(FALSE);
    EXPECT_EQ(LogOf([&] { control->put_Columns(71); }), Line("Comm.Columns = 71"));
}

TEST_F(LoggingRows, PropertiesSwitchIsMindedAtOnce) {
    EXPECT_EQ(LogOf([&] { control->put_WireTapProperties(VARIANT_FALSE); }), "");
    EXPECT_EQ(LogOf([&] { control->put_WireTapProperties(VARIANT_TRUE); }),
              Line("Comm.WireTapProperties = True"));
}

TEST(LoggingAtDesignTime, IsNone) {
    Control control(false);
    control->put_WireTapProperties(VARIANT_TRUE);
    control->put_WireTap(VARIANT_TRUE);
    EXPECT_EQ(LogOf([&] { control->put_WireTapInput(VARIANT_TRUE); }), "");
}

// The line of a set is that of another property.
TEST_F(ProjectRows, FileIsKeptAndLoggedAsTheLookUpText) {
    control->Properties().m_sLookUpText = L"login:";
    EXPECT_EQ(LogOf([&] { control.Put(&ITarnComm::put_ProjectFilename, L"C:\\a.prj"); }),
              Line("Comm.LookUpText = \"login:\""));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_ProjectFilename), "C:\\a.prj"); }),
              Line("Comm.ProjectFilename returns \"C:\\a.prj\""));
    EXPECT_EQ(control->put_ProjectFilename(nullptr), S_OK);
    EXPECT_EQ(control.Text(&ITarnComm::get_ProjectFilename), "");
}

TEST_F(ProjectRows, ScriptExtensionIsOneObject) {
    ComPtr<IScriptExtension> first;
    ComPtr<IScriptExtension> second;
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control->get_ScriptExtension(first.GetAddressOf()), S_OK); }),
              Line("Comm.ScriptExtension returns Object"));
    control->get_ScriptExtension(second.GetAddressOf());
    ASSERT_TRUE(first);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(control->get_ScriptExtension(nullptr), E_POINTER);
}
