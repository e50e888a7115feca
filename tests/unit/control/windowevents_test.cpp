// Mouse, keys, paint and showing of the terminal's window as events of the control.
#include "eventhost.h"

namespace {

using host::Lines;

class WindowEvents : public host::EventControlTest {
  public:
    void SetUp() override {
        EventControlTest::SetUp();
        Show();
    }
    void TearDown() override {
        BYTE none[256] = {};
        SetKeyboardState(none);
    }

    void Send(UINT message, WPARAM wParam = 0, int x = 0, int y = 0) {
        SendMessageA(Object(), message, wParam, MAKELPARAM(x, y));
    }
    static void Press(std::initializer_list<int> keys) {
        BYTE state[256] = {};
        for (int key : keys)
            state[key] = 0x80;
        SetKeyboardState(state);
    }
    void Open() {
        SetCommPort(Object(), host::nearPort);
        SetSettings(Object(), "115200,n,8,1");
        ASSERT_TRUE(SetPortOpen(Object(), 1, nullptr));
    }
    // Puts another value in the place of the event's first argument.
    void Substitute(events::Id event, short value) {
        ear.onEvent = [=](DISPID id, DISPPARAMS& arguments) {
            if (id == event)
                *V_I2REF(&host::Argument(arguments, 0)) = value;
        };
    }
};

struct MouseRow {
    UINT message;
    WPARAM flags;
    const char* heard;
    const char* logged;
};

TEST_F(WindowEvents, MouseTellsButtonKeysAndPlace) {
    const MouseRow rows[] = {
        {WM_LBUTTONDOWN, MK_LBUTTON, "MouseDown 1 0 5 7", "MouseDown(1, 0)"},
        {WM_RBUTTONDOWN, MK_RBUTTON | MK_SHIFT, "MouseDown 2 1 5 7", "MouseDown(2, 1)"},
        {WM_MBUTTONDOWN, MK_MBUTTON | MK_CONTROL, "MouseDown 4 2 5 7", "MouseDown(4, 2)"},
        {WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT | MK_CONTROL, "MouseDown 1 3 5 7", "MouseDown(1, 3)"},
        {WM_MOUSEMOVE, 0, "MouseMove 0 0 5 7", nullptr},
        {WM_MOUSEMOVE, MK_LBUTTON, "MouseMove 1 0 5 7", nullptr},
        {WM_MOUSEMOVE, MK_RBUTTON | MK_SHIFT, "MouseMove 2 1 5 7", nullptr},
        {WM_MOUSEMOVE, MK_LBUTTON | MK_RBUTTON | MK_MBUTTON, "MouseMove 7 0 5 7", nullptr},
    };
    LogEvents();
    Lines log;
    for (const MouseRow& row : rows) {
        ear.heard.clear();
        Send(row.message, row.flags, 5, 7);
        EXPECT_EQ(ear.Count(row.heard), 1) << row.heard;
        if (row.logged)
            log.push_back(std::string("TarnComm_") + row.logged + " Event");
    }
    ReleaseCapture();
    Lines written = Log();
    std::erase_if(written, [](const std::string& line) { return line.find("MouseDown") == line.npos; });
    EXPECT_EQ(written, log);
    EXPECT_EQ(Log().size() - written.size(),
              static_cast<size_t>(std::ranges::count_if(
                  Log(), [](const auto& line) { return line.find("Paint") != line.npos; })))
        << "a move has no line";
}

TEST_F(WindowEvents, AltComesFromTheKeyboard) {
    Press({VK_MENU});
    Send(WM_MOUSEMOVE, MK_CONTROL, 1, 1);
    EXPECT_EQ(ear.Count("MouseMove 0 6 1 1"), 1);
}

TEST_F(WindowEvents, PlacesLeftOfTheWindowAreNegative) {
    Send(WM_MOUSEMOVE, 0, -3, -40);
    EXPECT_EQ(ear.Count("MouseMove 0 0 -3 -40"), 1);
}

struct ButtonRow {
    UINT down, up, doubleClick;
    int button;
};

constexpr ButtonRow buttons[] = {
    {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, 1},
    {WM_RBUTTONDOWN, WM_RBUTTONUP, WM_RBUTTONDBLCLK, 2},
    {WM_MBUTTONDOWN, WM_MBUTTONUP, WM_MBUTTONDBLCLK, 4},
};

TEST_F(WindowEvents, ADoubleClickIsNoSecondClick) {
    for (const ButtonRow& row : buttons) {
        const std::string place = " " + std::to_string(row.button) + " 0 2 3";
        ear.heard.clear();
        for (UINT message : {row.down, row.up, row.doubleClick, row.up})
            Send(message, 0, 2, 3);
        Lines mouse = TakeHeard();
        std::erase(mouse, "Paint");
        EXPECT_EQ(mouse,
                  (Lines{"MouseDown" + place, "MouseUp" + place, "Click", "DblClick", "MouseUp" + place}))
            << row.button;
        Send(row.down, 0, 2, 3);
        Send(row.up, 0, 2, 3);
        EXPECT_EQ(ear.Count("Click"), 1) << "the next one is a click again";
    }
}

TEST_F(WindowEvents, ADoubleClickOfAnotherButtonTakesNoClickAway) {
    Send(WM_LBUTTONDBLCLK);
    Send(WM_RBUTTONUP);
    EXPECT_EQ(ear.Count("Click"), 1);
    Send(WM_LBUTTONUP);
    EXPECT_EQ(ear.Count("Click"), 1);
}

TEST_F(WindowEvents, ClicksAreLoggedWithoutArguments) {
    LogEvents();
    Name(L"Term(3)");
    Send(WM_RBUTTONUP);
    Send(WM_RBUTTONDBLCLK);
    Lines log = Log();
    std::erase(log, "Term_Paint(3) Event");
    EXPECT_EQ(log, (Lines{"Term_MouseUp(3, 2, 0) Event", "Term_Click(3) Event", "Term_DblClick(3) Event"}));
}

TEST_F(WindowEvents, KeysTellTheirShiftKeys) {
    LogEvents();
    Press({VK_SHIFT, VK_MENU});
    Send(WM_KEYDOWN, 'A');
    Press({VK_CONTROL});
    Send(WM_KEYUP, 'A');
    Press({});
    Send(WM_CHAR, 'a');
    EXPECT_EQ(TakeHeard(), (Lines{"KeyDown 65 5", "KeyUp 65 2", "KeyPress 97"}));
    EXPECT_EQ(Log(), (Lines{"TarnComm_KeyDown(65, 5) Event", "TarnComm_KeyUp(65, 2) Event",
                            "TarnComm_KeyPress(97) Event"}));
}

struct TypedRow {
    short substitute;
    const char* sent;
};

TEST_F(WindowEvents, HandlersChangeOrDropCharacters) {
    host::FarEnd peer;
    Open();
    SetEcho(Object(), 1);
    const TypedRow rows[] = {{'a', "a"}, {'z', "z"}, {0, ""}, {256, ""}, {0xE9, "\xE9"}};
    std::string shown;
    for (const TypedRow& row : rows) {
        Substitute(events::KeyPress, row.substitute);
        Send(WM_CHAR, 'a');
        const size_t count = std::string_view(row.sent).size();
        host::PumpUntil([&] { return GetOutBufferCount(Object()) == 0; });
        host::Pump(50);
        EXPECT_EQ(count ? peer.Read(count) : peer.Read(), row.sent) << row.substitute;
        shown += row.sent;
    }
    EXPECT_EQ(std::string(GetTextAt(Object(), 0, 0), 2), "az");
    EXPECT_EQ(GetCursorColumn(Object()), static_cast<int>(shown.size())) << "dropped by the terminal, too";
}

struct PressedRow {
    short substitute;
    const char* sent;
};

TEST_F(WindowEvents, HandlersChangeOrDropKeys) {
    host::FarEnd peer;
    Open();
    const PressedRow rows[] = {{VK_UP, "\x1B[A"}, {VK_DOWN, "\x1B[B"}, {0, ""}};
    for (const PressedRow& row : rows) {
        Substitute(events::KeyDown, row.substitute);
        Send(WM_KEYDOWN, VK_UP);
        host::Pump(50);
        const size_t count = std::string_view(row.sent).size();
        EXPECT_EQ(count ? peer.Read(count) : peer.Read(), row.sent) << row.substitute;
    }
}

TEST_F(WindowEvents, EverySinkSeesWhatTheOneBeforeWrote) {
    host::Ear second;
    second.Connect(*control.Get());
    Substitute(events::KeyPress, 'q');
    Send(WM_CHAR, 'a');
    EXPECT_EQ(second.heard, Lines{"KeyPress 113"});
}

TEST_F(WindowEvents, OfTheSystemsKeysF10AloneIsOurs) {
    Send(WM_SYSKEYDOWN, VK_F10);
    EXPECT_EQ(TakeHeard(), Lines{"KeyDown 121 0"});
    Send(WM_SYSKEYDOWN, 'A');
    Send(WM_SYSKEYDOWN, VK_MENU);
    EXPECT_EQ(TakeHeard(), Lines{});
}

TEST_F(WindowEvents, TheTerminalWantsAllKeys) {
    EXPECT_EQ(SendMessageA(Object(), WM_GETDLGCODE, 0, 0), DLGC_WANTARROWS | DLGC_WANTTAB | DLGC_WANTALLKEYS);
    EXPECT_EQ(ear.heard, Lines{});
}

TEST_F(WindowEvents, PaintShowAndHideAreTold) {
    LogEvents();
    const HWND object = Object();
    ShowWindow(object, SW_HIDE);
    EXPECT_EQ(TakeHeard(), Lines{"Hide"});
    ShowWindow(object, SW_SHOWNA);
    EXPECT_EQ(ear.Count("Show"), 1);
    host::Pump(50);
    ear.heard.clear();
    InvalidateRect(object, nullptr, FALSE);
    UpdateWindow(object);
    EXPECT_EQ(TakeHeard(), Lines{"Paint"});
    EXPECT_FALSE(GetUpdateRect(object, nullptr, FALSE)) << "the object has painted";
    const Lines log = Log();
    for (const char* line : {"TarnComm_Hide() Event", "TarnComm_Show() Event", "TarnComm_Paint() Event"})
        EXPECT_NE(std::ranges::find(log, line), log.end()) << line;
}

TEST_F(WindowEvents, OnlyTheseThreeAreFrozen) {
    const HWND object = Object();
    control->FreezeEvents(TRUE);
    ShowWindow(object, SW_HIDE);
    ShowWindow(object, SW_SHOWNA);
    InvalidateRect(object, nullptr, FALSE);
    UpdateWindow(object);
    EXPECT_EQ(TakeHeard(), Lines{});
    EXPECT_FALSE(GetUpdateRect(object, nullptr, FALSE)) << "painted all the same";
    Send(WM_CHAR, 'a');
    EXPECT_EQ(TakeHeard(), Lines{"KeyPress 97"}) << "the others are told";
    control->FreezeEvents(FALSE);
    ShowWindow(object, SW_HIDE);
    EXPECT_EQ(TakeHeard(), Lines{"Hide"});
}

TEST_F(WindowEvents, AllComeOnTheControlsThread) {
    for (UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_MOUSEMOVE, WM_KEYDOWN, WM_KEYUP, WM_CHAR})
        Send(message, 'A');
    host::Pump(50);
    EXPECT_GE(ear.heard.size(), 7u);
    EXPECT_TRUE(ear.alwaysOnThread);
}

} // namespace
