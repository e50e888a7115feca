// The dialog of the connection, as a host opens it.
#include "telephonycontrol.h"
#include "unit/dialogs/dialoguser.h"

namespace {

using namespace telephony;
using dialogs::User;
using host::Failure;
using host::FailureOf;

constexpr HRESULT invalidCall = static_cast<HRESULT>(0x800A0005);
constexpr const char* logLine = "TarnComm.PropertiesDialog returns ";

HWND OpenDialog() {
    return dialogs::OpenDialogWith(Connection_Configure);
}

int RowOf(HWND hDlg, int item, const std::string& text) {
    const dialogs::Texts rows = dialogs::Rows(hDlg, item);
    const auto found = std::ranges::find(rows, text);
    EXPECT_TRUE(found != rows.end()) << text;
    return static_cast<int>(found - rows.begin());
}

void Choose(HWND hDlg, const char* port) {
    dialogs::Choose(hDlg, Connection_Port, RowOf(hDlg, Connection_Port, port));
}

// The user in the dialog that "Configure..." opens for a plain port.
void Configure(HWND hDlg, const User& user) {
    const auto inside = dialogs::WhenOpen(Serial_Restore, user);
    dialogs::Press(hDlg, Connection_Configure);
}

class PropertiesDialog : public TelephonyTest {
  protected:
    PhoneHost& StartAt(const char* port, bool visible = false) {
        Start().UseLine(port);
        if (visible)
            phone->Show();
        phone->LogProperties();
        StartLogAnew();
        return *phone;
    }
    // What the host gets; the user acts once. A dialog that stays is given up on.
    bool Show(const User& user) {
        constexpr UINT limitMilliseconds = 20000;
        bool acted = false;
        const auto turn = dialogs::WhenOpen(Connection_Configure, [&](HWND hDlg) {
            acted = true;
            user(hDlg);
        });
        const auto limit = host::After(limitMilliseconds, [] {
            ADD_FAILURE() << "it stays";
            EndDialog(OpenDialog(), IDCANCEL);
        });
        VARIANT_BOOL confirmed = 7;
        EXPECT_EQ(phone->control->PropertiesDialog(&confirmed), S_OK);
        EXPECT_TRUE(acted);
        EXPECT_EQ(OpenDialog(), nullptr);
        EXPECT_TRUE(confirmed == VARIANT_TRUE || confirmed == VARIANT_FALSE);
        return confirmed == VARIANT_TRUE;
    }
    bool ShowAndPress(int button) {
        return Show([&](HWND hDlg) { dialogs::Press(hDlg, button); });
    }
    // It is not shown, and that's no error.
    void ExpectNoDialog() {
        bool opened = false;
        const auto turn = dialogs::WhenOpen(Connection_Configure, [&](HWND hDlg) {
            opened = true;
            EndDialog(hDlg, IDOK);
        });
        VARIANT_BOOL confirmed = VARIANT_TRUE;
        EXPECT_EQ(phone->control->PropertiesDialog(&confirmed), S_OK);
        EXPECT_EQ(confirmed, VARIANT_FALSE);
        EXPECT_FALSE(opened);
    }
    std::string Port() {
        _variant_t port;
        EXPECT_EQ(phone->control->get_CommPort(&port), S_OK);
        return AnsiOf(static_cast<const wchar_t*>(_bstr_t(port)));
    }
    static int Assigned() { return Logged(" = "); }
};

constexpr bool shownOrNot[] = {false, true};

TEST_F(PropertiesDialog, OKAppliesTheChoice) {
    for (const bool visible : shownOrNot) {
        SCOPED_TRACE(visible);
        StartAt("COM5", visible);
        EXPECT_TRUE(Show([](HWND hDlg) {
            Choose(hDlg, beta);
            dialogs::Type(hDlg, Connection_Number, "5550177");
            dialogs::Press(hDlg, IDOK);
        }));
        EXPECT_EQ(Port(), beta);
        EXPECT_EQ(phone->Text(&ITarnComm::get_PhoneNumber), "5550177");
        EXPECT_EQ(Logged("TarnComm.CommPort = "), 1) << logfiles::Messages();
        EXPECT_EQ(Logged("TarnComm.ProjectPhoneNumber = "), 1);
        EXPECT_EQ(Assigned(), 2) << "nothing else was changed";
        EXPECT_EQ(Logged(std::string(logLine) + "True"), 1);
        EXPECT_TRUE(IsWindowEnabled(phone->container.window));
        phone.reset();
    }
}

TEST_F(PropertiesDialog, CancelChangesNothing) {
    StartAt("COM5");
    EXPECT_FALSE(Show([](HWND hDlg) {
        Choose(hDlg, beta);
        dialogs::Type(hDlg, Connection_Number, "5550177");
        dialogs::Press(hDlg, IDCANCEL);
    }));
    EXPECT_EQ(Port(), "COM5");
    EXPECT_EQ(phone->Text(&ITarnComm::get_PhoneNumber), "");
    EXPECT_EQ(Assigned(), 0) << logfiles::Messages();
    EXPECT_EQ(Logged(std::string(logLine) + "False"), 1);
}

// No port at all, too: the first line would take its place.
TEST_F(PropertiesDialog, OKWithoutAChangePutsNothing) {
    for (const char* port : {"COM5", alpha, "no such port"})
        for (const wchar_t* number : {L"", L"5550100", L"+49 (30) 123", L"+1-212-5551212"}) {
            SCOPED_TRACE(std::string(port) + " " + AnsiOf(number));
            StartAt(port)->put_PhoneNumber(_bstr_t(number));
            StartLogAnew();
            EXPECT_TRUE(ShowAndPress(IDOK));
            EXPECT_EQ(Assigned(), 0) << logfiles::Messages();
            EXPECT_EQ(Port(), port);
            EXPECT_EQ(phone->Text(&ITarnComm::get_PhoneNumber), AnsiOf(number));
            phone.reset();
        }
}

TEST_F(PropertiesDialog, ANewControlHasNoPortAndKeepsNone) {
    Start().LogProperties();
    StartLogAnew();
    const std::string before = Port();
    EXPECT_TRUE(ShowAndPress(IDOK));
    EXPECT_EQ(Port(), before);
    EXPECT_EQ(Assigned(), 0) << logfiles::Messages();
}

TEST_F(PropertiesDialog, SettingsOfAPortAreApplied) {
    StartAt("COM5");
    EXPECT_TRUE(Show([](HWND hDlg) {
        Configure(hDlg, [](HWND hInner) {
            EXPECT_EQ(dialogs::SelectedRow(hInner, Serial_FlowControl), "(default)");
            dialogs::Choose(hInner, Serial_StopBits, 3);
            dialogs::Choose(hInner, Serial_FlowControl, 4);
            dialogs::Press(hInner, IDOK);
        });
        EXPECT_EQ(Assigned(), 0) << "not before OK";
        dialogs::Press(hDlg, IDOK);
    }));
    EXPECT_EQ(phone->Text(&ITarnComm::get_Settings), "115200,n,8,2");
    EXPECT_EQ(phone->Get(&ITarnComm::get_Handshaking), static_cast<Handshaking>(TARN_HANDSHAKING_BOTH));
    EXPECT_EQ(Logged("TarnComm.Settings = "), 1) << logfiles::Messages();
    EXPECT_EQ(Logged("TarnComm.Handshaking = "), 1);
    EXPECT_EQ(Assigned(), 2);
}

// The dialog has its parities in capitals.
TEST_F(PropertiesDialog, SettingsThatAreTheSameAreNotPut) {
    StartAt("COM5");
    EXPECT_TRUE(Show([](HWND hDlg) {
        Configure(hDlg, [](HWND hInner) { dialogs::Press(hInner, IDOK); });
        dialogs::Press(hDlg, IDOK);
    }));
    EXPECT_EQ(Assigned(), 0) << logfiles::Messages();
    EXPECT_EQ(phone->Get(&ITarnComm::get_Handshaking), static_cast<Handshaking>(TARN_HANDSHAKING_DEFAULT));
}

TEST_F(PropertiesDialog, AModemIsConfiguredByTheService) {
    StartAt(alpha);
    EXPECT_FALSE(Show([](HWND hDlg) {
        dialogs::Press(hDlg, Connection_Configure);
        EXPECT_EQ(Asked("lineConfigDialog device=0 class=COMM owner=1"), 1) << RecordText();
        dialogs::Press(hDlg, IDCANCEL);
    }));
}

TEST_F(PropertiesDialog, ALongModemNameIsSelected) {
    const std::string name(150, 'm');
    ExchangeAddLine(name.c_str(), "", LINEMEDIAMODE_DATAMODEM, "103", nullptr);
    StartAt(name.c_str());
    EXPECT_TRUE(Show([&](HWND hDlg) {
        EXPECT_EQ(dialogs::SelectedRow(hDlg, Connection_Port), name);
        EXPECT_TRUE(dialogs::IsEnabled(hDlg, Connection_Number));
        dialogs::Press(hDlg, IDOK);
    }));
    EXPECT_EQ(Port(), name.substr(0, 99));
    EXPECT_EQ(Assigned(), 0) << logfiles::Messages();
}

TEST_F(PropertiesDialog, StandsOverTheUsersWindow) {
    for (const bool visible : shownOrNot) {
        SCOPED_TRACE(visible);
        StartAt("COM5", visible);
        SetActiveWindow(phone->container.window);
        EXPECT_FALSE(Show([&](HWND hDlg) {
            EXPECT_EQ(GetWindow(hDlg, GW_OWNER), phone->container.window);
            EXPECT_FALSE(IsWindowEnabled(phone->container.window));
            dialogs::Press(hDlg, IDCANCEL);
        }));
        EXPECT_TRUE(IsWindowEnabled(phone->container.window));
        phone.reset();
    }
}

TEST_F(PropertiesDialog, NeedsAResult) {
    Start();
    EXPECT_EQ(phone->control->PropertiesDialog(nullptr), E_POINTER);
}

// One at a time, and none for a connection that is there

TEST_F(PropertiesDialog, ASecondOneIsRefused) {
    StartAt("COM5");
    EXPECT_TRUE(Show([&](HWND hDlg) {
        VARIANT_BOOL second = VARIANT_TRUE;
        const Failure refused = {invalidCall, "Cannot access the PropertiesDialog property until the "
                                              "PropertiesDialog property has returned."};
        EXPECT_EQ(FailureOf(phone->control->PropertiesDialog(&second)), refused);
        EXPECT_EQ(second, VARIANT_FALSE);
        dialogs::Press(hDlg, IDOK);
    }));
    EXPECT_FALSE(ShowAndPress(IDCANCEL)) << "afterwards there is one again";
}

TEST_F(PropertiesDialog, ThereIsNoneForAnOpenPort) {
    StartAt("COM5")->put_PortOpen(VARIANT_TRUE);
    ASSERT_TRUE(phone->IsOpen());
    ExpectNoDialog();
    phone->control->put_PortOpen(VARIANT_FALSE);
    EXPECT_TRUE(ShowAndPress(IDOK));
}

TEST_F(PropertiesDialog, ThereIsNoneDuringADialOrACall) {
    StartAt(alpha);
    bool looked = false;
    const auto watch = host::When([] { return Logged("Ring back") > 0; },
                                  [&] {
                                      looked = true;
                                      ExpectNoDialog();
                                      phone->Is(&ITarnComm::get_HangUp);
                                  });
    EXPECT_EQ(phone->Dial("5550101"), S_OK);
    EXPECT_TRUE(looked);
    EXPECT_EQ(phone->Dial("5550100"), S_OK);
    ASSERT_TRUE(phone->IsOpen());
    ExpectNoDialog();
}

// The dialog goes with the control

struct Leaving {
    const char* name;
    bool visible;
    bool closes; // the dialog, at once
    void (*act)(PhoneHost& phone);
};

void ReleaseControl(PhoneHost& phone) {
    phone.ear.LoseControl();
    phone.container.Drop();
    phone.control.Reset();
}

constexpr Leaving leavings[] = {
    {"deactivates it", true, true,
     [](PhoneHost& phone) { phone.container.As<IOleInPlaceObject>()->InPlaceDeactivate(); }},
    {"destroys its window", true, true, [](PhoneHost& phone) { DestroyWindow(phone->Window()); }},
    {"destroys the terminal's window", true, true, [](PhoneHost& phone) { DestroyWindow(phone.Object()); }},
    {"closes the container", true, true, [](PhoneHost& phone) { phone.container.Drop(); }},
    {"releases it", true, true, ReleaseControl},
    {"closes the container of one that was not shown", false, true,
     [](PhoneHost& phone) { phone.container.Drop(); }},
    {"releases one that was not shown", false, true, ReleaseControl},
    {"shows it", false, true, [](PhoneHost& phone) { phone.container.Do(OLEIVERB_SHOW); }},
    {"destroys the invisible object", false, false, [](PhoneHost& phone) { DestroyWindow(phone.Object()); }},
};

// The form stays. An OK that comes all the same is too late.
void Leave(PhoneHost& phone, const Leaving& row, HWND hDlg) {
    Choose(hDlg, beta);
    row.act(phone);
    EXPECT_EQ(!IsWindow(hDlg), row.closes);
    if (!row.closes)
        dialogs::Press(hDlg, IDOK);
}

TEST_F(PropertiesDialog, GoesWithTheControl) {
    for (const Leaving& row : leavings) {
        SCOPED_TRACE(row.name);
        StartAt("COM5", row.visible);
        EXPECT_FALSE(Show([&](HWND hDlg) { Leave(*phone, row, hDlg); }));
        EXPECT_TRUE(IsWindow(phone->container.window));
        EXPECT_TRUE(IsWindowEnabled(phone->container.window));
        EXPECT_EQ(Logged("CommPort = "), 0) << logfiles::Messages();
        phone.reset();
    }
}

TEST_F(PropertiesDialog, GoesWithTheControlWhileAPortIsConfigured) {
    StartAt("COM5", true);
    EXPECT_FALSE(Show([&](HWND hDlg) {
        Configure(hDlg, [&](HWND hInner) {
            dialogs::Choose(hInner, Serial_StopBits, 3);
            DestroyWindow(phone->control->Window());
            EXPECT_FALSE(IsWindow(hInner));
        });
        EXPECT_FALSE(IsWindow(hDlg));
    }));
    EXPECT_EQ(Logged("Settings = "), 0);
    EXPECT_TRUE(IsWindowEnabled(phone->container.window));
}

TEST_F(PropertiesDialog, GoesWithTheForm) {
    StartAt("COM5", true);
    EXPECT_FALSE(Show([&](HWND hDlg) {
        DestroyWindow(phone->container.window);
        EXPECT_FALSE(IsWindow(hDlg));
    }));
}

TEST_F(PropertiesDialog, AProgramThatQuitsGetsItsMessageBack) {
    StartAt("COM5");
    EXPECT_FALSE(Show([](HWND) { PostQuitMessage(7); }));
    MSG message = {};
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7U);
}

} // namespace
