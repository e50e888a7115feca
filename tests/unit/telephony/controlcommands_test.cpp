// The toolbar of a control that dials, and the commands that ask for a line.
#include "dialtest.h"

#include "../control/bars.h"
#include "support/systemdialog.h"
#include "unit/troubleshooter/troubleshootuser.h"

namespace {

using namespace telephony;

class ControlCommands : public DialTest {
  protected:
    CTarnCommCtl& Control() { return *phone->control.Get(); }

    void ShowAtAlpha(const char* number) {
        StartAtAlpha().Show();
        phone->control->put_PhoneNumber(_bstr_t(WideOf(number).c_str()));
    }
};

TEST_F(ControlCommands, WhileDiallingOnlyDisconnectCanBePressed) {
    ShowAtAlpha(rings);
    (*phone)->put_AutoProcess(3);
    std::vector<int> enabled;
    std::string status;
    LONG autoProcess = -1;
    const auto user = WhenItRings([&] {
        enabled = host::EnabledButtons(Control());
        status = host::PaneOf(Control(), 0);
        autoProcess = GetAutoProcess(phone->Object());
        host::Click(Control(), disconnectButton);
    });
    host::Click(Control(), connectButton);
    EXPECT_EQ(enabled, host::enabledWhileDialling);
    EXPECT_EQ(status, std::string("Dialing ") + rings);
    EXPECT_EQ(autoProcess, 0) << "what the modem says isn't shown";
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileClosed);
    EXPECT_EQ(GetAutoProcess(phone->Object()), 3);
    EXPECT_TRUE(HasNoLine());
}

TEST_F(ControlCommands, ACallIsAnOpenPort) {
    ShowAtAlpha(connects);
    host::Click(Control(), connectButton);
    ASSERT_TRUE(phone->IsOpen()) << phone->Status();
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileOpen);
    EXPECT_EQ(host::PaneOf(Control(), 0), "Connected");
    EXPECT_EQ(host::PaneOf(Control(), 1), alpha);
    host::Click(Control(), disconnectButton);
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileClosed);
}

class ControlCommandsDeeds : public ControlCommands, public testing::WithParamInterface<Deed> {};

TEST_P(ControlCommandsDeeds, HostsMayDoThisWhileConnectDials) {
    ShowAtAlpha(rings);
    (*phone)->put_AutoProcess(3);
    const HWND window = phone->control->Window();
    const HWND bar = host::ToolbarOf(Control());
    bool acted = false;
    const auto user = WhenItRings([&] {
        acted = true;
        GetParam().act(*phone);
        if (phone->control)
            (*phone)->put_PortOpen(VARIANT_FALSE);
    });
    SendMessageA(window, WM_COMMAND, connectButton, reinterpret_cast<LPARAM>(bar));
    EXPECT_TRUE(acted);
    EXPECT_TRUE(HasNoLine());
    if (!phone->control)
        return;
    EXPECT_EQ(phone->control->Properties().m_nAutoProcess, 3) << "as the host had it";
    EXPECT_EQ(GetAutoProcess(phone->Object()), IsWindow(phone->Object()) ? 3 : 0);
}

INSTANTIATE_TEST_SUITE_P(All, ControlCommandsDeeds, testing::ValuesIn(deeds),
                         [](const auto& row) { return std::to_string(row.index); });

TEST_F(ControlCommands, PortPropertiesOfALineAreTheServices) {
    StartAtAlpha().Show();
    ExchangeClearRecord();
    EXPECT_EQ((*phone)->DoCommand(CommCommand_PortProperties), S_OK);
    EXPECT_EQ(Asked("lineConfigDialog"), 1);
    EXPECT_EQ(Asked("COMM"), 1);
}

TEST_F(ControlCommands, PortPropertiesOfALineWaitForNoOtherDialog) {
    StartAtAlpha().Show();
    ExchangeClearRecord();
    const host::SystemDialogUser user([] { return dialogs::OpenDialogWith(Connection_Port); },
                                      [&](HWND dialog) {
                                          (*phone)->DoCommand(CommCommand_PortProperties);
                                          EXPECT_EQ(Asked("lineConfigDialog"), 0);
                                          SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
                                      });
    (*phone)->DoCommand(CommCommand_Properties);
}

TEST_F(ControlCommands, SystemInformationTellsOfTheLines) {
    StartAtAlpha().Show();
    dialogs::Texts rows;
    const host::SystemDialogUser user([] { return dialogs::OpenDialogWith(TroubleShoot_Panel); },
                                      [&](HWND frame) {
                                          troubleshooter::Click(frame, troubleshooter::modemItem);
                                          const auto shown = troubleshooter::ShownPages(frame);
                                          if (shown.size() == 1)
                                              rows = troubleshooter::RowsOf(shown.front());
                                          SendMessageA(frame, WM_COMMAND, IDCANCEL, 0);
                                      });
    EXPECT_EQ((*phone)->ShowSysInfo(), S_OK);
    EXPECT_EQ(rows,
              (dialogs::Texts{"00", "10Alpha Modem", "00    Provider A", "00    Maximum speed: 115200 Bps",
                              "00", "10Beta Modem", "00    Provider B", "00    Maximum speed: 115200 Bps"}));
}

TEST_F(ControlCommands, LinesTellTheirSpeed) {
    CTapiApp& telephony = Start().control->Telephony();
    EXPECT_EQ(telephony.GetMaximumSpeed(alphaLine), 115200u);
    EXPECT_EQ(telephony.GetMaximumSpeed(deskLine), 0u) << "takes no data";
    EXPECT_EQ(telephony.GetMaximumSpeed(99), 0u);
}

} // namespace
