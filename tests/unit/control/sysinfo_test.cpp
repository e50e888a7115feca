// The troubleshooter over the control that it reports on: the ways to it, its marks, what Exit sets.
#include "commandtest.h"

#include "control/ansi.h"
#include "unit/troubleshooter/troubleshootuser.h"

namespace {

using host::Lines;

int ControlProperties::*const kinds[] = {
    &ControlProperties::m_bWireTapEvents,   &ControlProperties::m_bWireTapInput,
    &ControlProperties::m_bWireTapOutput,   &ControlProperties::m_bWireTapProperties,
    &ControlProperties::m_bWireTapTransfer, &ControlProperties::m_bWireTapWarnings,
};

class SystemInformation : public host::CommandTest {
  public:
    ~SystemInformation() override {
        if (control)
            control->put_CaptureFilename(nullptr); // lets go of the file
        DeleteFileA(troubleshooter::WindowsFile("CommTerminal.txt").c_str());
    }
    // The user in it, who acts once.
    void AtLogging(const std::function<void(HWND frame, HWND page)>& user) {
        InDialog(TroubleShoot_Panel, [user](HWND frame) {
            user(frame, troubleshooter::LoggingPage(frame));
            if (IsWindow(frame))
                Cancel(frame);
        });
        EXPECT_EQ(control->ShowSysInfo(), S_OK);
        EXPECT_EQ(opened, 1);
    }
    // Exit with the marks as the user wants them.
    void ExitWith(bool wireTap, bool capture) {
        AtLogging([=](HWND frame, HWND page) {
            if (dialogs::IsChecked(page, Logging_WireTap) != wireTap)
                dialogs::Press(page, Logging_WireTap);
            if (dialogs::IsChecked(page, Logging_Terminal) != capture)
                dialogs::Press(page, Logging_Terminal);
            troubleshooter::Click(frame, troubleshooter::exitItem);
        });
    }
    int KindsOn() {
        int count = 0;
        for (const auto kind : kinds)
            count += (Control().Properties().*kind) != 0;
        return count;
    }
};

TEST_F(SystemInformation, OpensInThreeWaysAndAsksNobody) {
    Show();
    Veto();
    const std::function<void()> ways[] = {
        [&] { EXPECT_EQ(control->ShowSysInfo(), S_OK); },
        [&] { EXPECT_EQ(Do(CommCommand_SysInfo), S_OK); },
        [&] { Press(sysInfoButton); },
    };
    LogAnew();
    for (const auto& way : ways) {
        InDialog(TroubleShoot_Panel, [](HWND frame) {
            EXPECT_EQ(dialogs::TextOf(frame), "Communications troubleshooting");
            Cancel(frame);
        });
        way();
        EXPECT_EQ(opened, 1);
    }
    EXPECT_EQ(TakeHeard(), Lines{});
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(SystemInformation, MarksAreTheControls) {
    for (const bool wireTap : {false, true})
        for (const char* capture : {"", "C:\\capture.txt"}) {
            control->Properties().m_bWireTap = wireTap ? trueFlag : 0;
            control->Properties().m_sCaptureFilename = WideOf(capture);
            AtLogging([&](HWND, HWND page) {
                EXPECT_EQ(dialogs::IsChecked(page, Logging_WireTap), wireTap);
                EXPECT_EQ(dialogs::IsChecked(page, Logging_Terminal), *capture != 0);
            });
        }
}

TEST_F(SystemInformation, ExitSwitchesTheWholeLogOn) {
    ExitWith(true, false);
    EXPECT_NE(control->Properties().m_bWireTap, 0);
    EXPECT_EQ(KindsOn(), 6);
    EXPECT_TRUE(host::LogsAll(Object()));
    EXPECT_EQ(control->Properties().m_sCaptureFilename, L"");
}

// The property can't be switched off by its setter; the troubleshooter does it.
TEST_F(SystemInformation, ExitSwitchesTheLogOffAndKeepsItsKinds) {
    control->put_WireTapInput(VARIANT_TRUE);
    control->put_WireTapEvents(VARIANT_TRUE);
    control->put_WireTap(VARIANT_TRUE);
    ASSERT_FALSE(host::LogsNothing(Object()));
    ExitWith(false, false);
    EXPECT_EQ(control->Properties().m_bWireTap, 0);
    EXPECT_TRUE(host::LogsNothing(Object()));
    EXPECT_EQ(KindsOn(), 2);
    VARIANT_BOOL read = VARIANT_TRUE;
    EXPECT_EQ(control->get_WireTap(&read), S_OK);
    EXPECT_EQ(read, VARIANT_FALSE);
}

TEST_F(SystemInformation, ExitSetsTheCaptureFile) {
    const std::string name = troubleshooter::WindowsFile("CommTerminal.txt");
    ExitWith(false, true);
    EXPECT_EQ(control->Properties().m_sCaptureFilename, WideOf(name));
    EXPECT_EQ(control->Properties().m_bWireTap, 0);
    EXPECT_EQ(KindsOn(), 0);
    ExitWith(false, false);
    EXPECT_EQ(control->Properties().m_sCaptureFilename, L"");
}

TEST_F(SystemInformation, ClosedOtherwiseItSetsNothing) {
    AtLogging([](HWND frame, HWND page) {
        dialogs::Press(page, Logging_WireTap);
        dialogs::Press(page, Logging_Terminal);
        Cancel(frame);
    });
    EXPECT_EQ(control->Properties().m_bWireTap, 0);
    EXPECT_EQ(control->Properties().m_sCaptureFilename, L"");
}

TEST_F(SystemInformation, AnExitAfterTheCommObjectSetsNothing) {
    AtLogging([&](HWND frame, HWND page) {
        dialogs::Press(page, Logging_WireTap);
        DestroyWindow(Object());
        troubleshooter::Click(frame, troubleshooter::exitItem);
    });
    EXPECT_EQ(control->Properties().m_bWireTap, 0) << "it was for another comm object";
}

} // namespace
