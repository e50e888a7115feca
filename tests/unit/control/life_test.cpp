// The control's life: the comm object without a window and the one that takes its place, what is applied to
// each, the end, and what a long life costs.
#include "eventhost.h"

#include "control/objectaccess.h"

namespace {

using host::Lines;

class ControlLife : public host::EventControlTest {
  public:
    void Open() {
        SetCommPort(Object(), host::nearPort);
        SetSettings(Object(), "115200,n,8,1");
        ASSERT_TRUE(SetPortOpen(Object(), 1, nullptr));
    }
    static bool IsOpenDevice(HANDLE device) {
        DCB block = {};
        block.DCBlength = sizeof block;
        return GetCommState(device, &block);
    }
};

TEST_F(ControlLife, WorksWithoutAWindow) {
    host::FarEnd peer;
    ASSERT_TRUE(IsWindow(Object()));
    EXPECT_EQ(GetParent(Object()), nullptr);
    EXPECT_EQ(ControlOf(Object()), control.Get());
    Open();
    EXPECT_TRUE(Output(Object(), "abc", 3));
    host::PumpUntil([&] { return GetOutBufferCount(Object()) == 0; });
    EXPECT_EQ(peer.Read(3), "abc");
}

TEST_F(ControlLife, TheFirstWindowTakesTheObjectsPlace) {
    Open();
    const HWND before = Object();
    const HANDLE device = GetCommID(before);
    ASSERT_TRUE(IsOpenDevice(device));
    control->Properties().m_nColumns = 100;
    control->Properties().m_nRThreshold = 7;
    SetColumns(before, 100);
    SetSThreshold(before, 9); // behind the control's back
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_FALSE(IsWindow(before));
    EXPECT_FALSE(IsOpenDevice(device));
    EXPECT_NE(Object(), before);
    EXPECT_EQ(GetParent(Object()), control->Window());
    EXPECT_EQ(GetDlgCtrlID(Object()), 0);
    EXPECT_EQ(ControlOf(Object()), control.Get());
    EXPECT_FALSE(GetPortOpen(Object()));
    EXPECT_EQ(GetColumns(Object()), 100) << "cached";
    EXPECT_EQ(GetRThreshold(Object()), 7) << "cached";
    EXPECT_EQ(GetSThreshold(Object()), 0) << "the cached value survives, not the object's";
}

TEST_F(ControlLife, WhatWasOpenIsForgottenWithItsObject) {
    control->put_CommPort(_variant_t(L"COM5"));
    control->put_PortOpen(VARIANT_TRUE);
    ASSERT_TRUE(control->IsConnected());
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_FALSE(control->IsConnected());
    control->put_PortOpen(VARIANT_TRUE);
    EXPECT_TRUE(control->IsConnected());
    EXPECT_EQ(control->InPlaceDeactivate(), S_OK);
    EXPECT_FALSE(control->IsConnected());
}

TEST_F(ControlLife, TakesAWindowThoughItsSiteOffersToDoWithout) {
    Microsoft::WRL::ComPtr<IOleInPlaceSiteWindowless> offer;
    ASSERT_EQ(container.site.QueryInterface(IID_PPV_ARGS(&offer)), S_OK);
    container.calls.clear();
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_TRUE(container.Saw("OnInPlaceActivate"));
    EXPECT_FALSE(container.Saw("OnInPlaceActivate windowless"));
    EXPECT_FALSE(container.Saw("CanWindowlessActivate"));
    HWND window = nullptr;
    ASSERT_EQ(container.As<IOleInPlaceObjectWindowless>()->GetWindow(&window), S_OK);
    EXPECT_EQ(window, control->Window());
    EXPECT_EQ(GetParent(window), container.window);
    constexpr DWORD style = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
    EXPECT_EQ(GetWindowLongA(window, GWL_STYLE) & style, style);
    LRESULT result = 0;
    EXPECT_NE(container.As<IOleInPlaceObjectWindowless>()->OnWindowMessage(WM_CHAR, 'a', 1, &result), S_OK);
}

TEST_F(ControlLife, AnObjectThatSomebodyClosedIsNotClosedAgain) {
    const HWND before = Object();
    DestroyWindow(before);
    EXPECT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_TRUE(IsWindow(Object()));
    EXPECT_NE(Object(), before);
}

TEST_F(ControlLife, DrawsOutsideOfItsWindowToo) {
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    const HDC context = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateBitmap(50, 50, 1, 32, nullptr);
    const HGDIOBJ before = SelectObject(context, bitmap);
    PatBlt(context, 0, 0, 50, 50, WHITENESS);
    const RECTL bounds = {10, 10, 30, 30};
    EXPECT_EQ(
        control->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, context, &bounds, nullptr, nullptr, 0),
        S_OK);
    EXPECT_EQ(GetPixel(context, 20, 20), GetSysColor(COLOR_ACTIVECAPTION));
    EXPECT_EQ(GetPixel(context, 5, 5), RGB(255, 255, 255));
    SelectObject(context, before);
    DeleteObject(bitmap);
    DeleteDC(context);
    InvalidateRect(control->Window(), nullptr, TRUE);
    UpdateWindow(control->Window());
    EXPECT_FALSE(GetUpdateRect(control->Window(), nullptr, FALSE)) << "its own paint is the terminal's";
}

TEST_F(ControlLife, TheTerminalFillsTheControlAndIsShown) {
    control->put_ToolbarVisible(VARIANT_FALSE);
    control->put_StatusbarVisible(VARIANT_FALSE);
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_EQ(ear.Count("Show"), 1);
    RECT all = {}, terminal = {};
    GetClientRect(control->Window(), &all);
    GetWindowRect(Object(), &terminal);
    MapWindowPoints(nullptr, control->Window(), reinterpret_cast<POINT*>(&terminal), 2);
    EXPECT_TRUE(EqualRect(&all, &terminal));
    EXPECT_TRUE(IsWindowVisible(Object()));
    const RECT place = {0, 0, 333, 222};
    control->SetObjectRects(&place, &place);
    GetClientRect(control->Window(), &all);
    GetWindowRect(Object(), &terminal);
    MapWindowPoints(nullptr, control->Window(), reinterpret_cast<POINT*>(&terminal), 2);
    EXPECT_TRUE(EqualRect(&all, &terminal));
}

// The one property that the first window sets by its setter.
TEST_F(ControlLife, TheFirstWindowLogsItsBorder) {
    for (const int border : {1, 0}) {
        control->Properties().m_nBorderStyle = border;
        control->Properties().m_bWireTap = trueFlag;
        control->Properties().m_bWireTapProperties = trueFlag;
        host::StartLogAnew();
        logfiles::RemoveLog();
        ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
        EXPECT_EQ(Log(), Lines{"TarnComm.BorderStyle = " + std::to_string(border)});
        EXPECT_EQ((GetWindowLongA(Object(), GWL_STYLE) & WS_BORDER) != 0, border == 1);
        EXPECT_EQ(control->InPlaceDeactivate(), S_OK);
    }
}

TEST_F(ControlLife, AFrozenHostHearsOfNoFirstShow) {
    control->FreezeEvents(TRUE);
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    host::Pump(20);
    EXPECT_EQ(ear.heard, Lines{});
}

TEST_F(ControlLife, AHostMayDestroyTheWindowInItsFirstShow) {
    ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == events::Show)
            DestroyWindow(control->Window());
    };
    EXPECT_NE(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_EQ(control->Window(), nullptr);
    EXPECT_EQ(Object(), nullptr);
    ear.onEvent = nullptr;
    EXPECT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_TRUE(IsWindow(Object()));
}

TEST_F(ControlLife, AnotherWindowBringsAnotherObject) {
    Show();
    const HWND first = Object();
    EXPECT_EQ(control->InPlaceDeactivate(), S_OK);
    EXPECT_FALSE(IsWindow(first));
    EXPECT_EQ(Object(), nullptr);
    EXPECT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_TRUE(IsWindow(Object()));
    EXPECT_EQ(GetColumns(Object()), 80);
}

TEST_F(ControlLife, TheTerminalHasTheFocusAndItsKeys) {
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    EXPECT_EQ(GetFocus(), Object());
    ear.heard.clear();
    for (WPARAM key : {VK_TAB, VK_LEFT, VK_DOWN}) {
        MSG message = {Object(), WM_KEYDOWN, key, 0, 0, {}};
        EXPECT_EQ(control->TranslateAccelerator(&message), S_OK) << key;
    }
    EXPECT_EQ(TakeHeard(), (Lines{"KeyDown 9 0", "KeyDown 37 0", "KeyDown 40 0"}));
    container.answers["TranslateAccelerator"] = S_FALSE;
    MSG other = {Object(), WM_KEYDOWN, 'A', 0, 0, {}};
    EXPECT_EQ(control->TranslateAccelerator(&other), S_FALSE) << "the host's loop goes on with it";
    EXPECT_EQ(ear.heard, Lines{});
}

TEST_F(ControlLife, TabGoesToTheLine) {
    host::FarEnd peer;
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    Open();
    MSG tab = {Object(), WM_KEYDOWN, VK_TAB, 1, 0, {}};
    ASSERT_EQ(control->TranslateAccelerator(&tab), S_OK) << "the host's loop makes no character of it";
    EXPECT_TRUE(host::PumpUntil([&] { return ear.Count("KeyPress 9") == 1; }));
    EXPECT_EQ(peer.Read(1), "\t");
}

TEST_F(ControlLife, FocusThatTheTerminalLosesAndGetsIsTold) {
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    ASSERT_EQ(GetFocus(), Object());
    container.calls.clear();
    SetFocus(container.window);
    EXPECT_TRUE(container.Saw("OnFocus lost"));
    EXPECT_FALSE(container.Saw("OnFocus"));
    container.calls.clear();
    SetFocus(Object());
    EXPECT_TRUE(container.Saw("OnFocus"));
    EXPECT_FALSE(container.Saw("OnFocus lost"));
    EXPECT_EQ(GetFocus(), Object());
}

struct AppliedRow {
    const char* name;
    void (*set)(ControlProperties& cached);
    int (*get)(HWND object);
    int expected;
};

// A cached value that differs from the object's own, and what the object then says.
const AppliedRow appliedRows[] = {
    {"AutoProcess", [](auto& p) { p.m_nAutoProcess = 1; }, [](HWND o) { return GetAutoProcess(o); }, 1},
    {"AutoScroll", [](auto& p) { p.m_nAutoScroll = 3; }, [](HWND o) { return GetAutoScroll(o); }, 3},
    {"AutoSize", [](auto& p) { p.m_nAutoSize = 2; }, [](HWND o) { return GetAutoSize(o); }, 0},
    {"BackSpace", [](auto& p) { p.m_nBackSpace = 1; }, [](HWND o) { return GetBackspace(o); }, 1},
    {"CaptureMode", [](auto& p) { p.m_nCaptureMode = 1; }, [](HWND o) { return GetCaptureMode(o); }, 1},
    {"CDTimeOut", [](auto& p) { p.m_lCDTimeOut = 3; }, [](HWND o) -> int { return GetCarrierTimeOut(o); }, 3},
    {"ColorFilter", [](auto& p) { p.m_nColorFilter = 2; }, [](HWND o) { return GetColorFilter(o); }, 2},
    {"color", [](auto& p) { p.m_nColor = 28; }, [](HWND o) { return GetColor(o); }, 28},
    {"Columns", [](auto& p) { p.m_nColumns = 70; }, [](HWND o) { return GetColumns(o); }, 70},
    {"CommEcho", [](auto& p) { p.m_bCommEcho = -1; }, [](HWND o) { return GetCommEcho(o); }, -1},
    {"CTSTimeOut", [](auto& p) { p.m_lCTSTimeOut = 4; }, [](HWND o) -> int { return GetCTSTimeOut(o); }, 4},
    {"DialMode", [](auto& p) { p.m_nDialMode = 1; }, [](HWND o) { return GetDialMode(o); }, 1},
    {"DialTimeOut", [](auto& p) { p.m_lDialTimeOut = 5; }, [](HWND o) -> int { return GetDialTimeOut(o); },
     5},
    {"DSRTimeOut", [](auto& p) { p.m_lDSRTimeOut = 6; }, [](HWND o) -> int { return GetDSRTimeOut(o); }, 6},
    {"Echo", [](auto& p) { p.m_bEcho = -1; }, [](HWND o) { return GetEcho(o); }, -1},
    {"Emulation", [](auto& p) { p.m_nEmulation = 2; }, [](HWND o) { return GetEmulation(o); }, 2},
    {"no Emulation", [](auto& p) { p.m_nEmulation = 0; }, [](HWND o) { return GetEmulation(o); }, 1},
    {"EndOfLineMode", [](auto& p) { p.m_nEndOfLineMode = 2; }, [](HWND o) { return GetEndOfLineMode(o); }, 2},
    {"Handshaking", [](auto& p) { p.m_nHandshaking = 2; }, [](HWND o) { return GetHandshaking(o); }, 2},
    {"InBufferSize", [](auto& p) { p.m_cbInBufferSize = 2048; }, [](HWND o) { return GetInBufferSize(o); },
     2048},
    {"InputEcho", [](auto& p) { p.m_bInputEcho = 0; }, [](HWND o) { return GetInputEcho(o); }, 0},
    {"InTimeOut", [](auto& p) { p.m_lInTimeOut = 7; }, [](HWND o) -> int { return GetInputTimeOut(o); }, 7},
    {"OutTimeOut", [](auto& p) { p.m_lOutTimeOut = 8; }, [](HWND o) -> int { return GetOutputTimeOut(o); },
     8},
    {"LookUpTimeOut", [](auto& p) { p.m_lLookUpTimeOut = 9; },
     [](HWND o) -> int { return GetLookUpTimeOut(o); }, 9},
    {"NullDiscard", [](auto& p) { p.m_bNullDiscard = -1; }, [](HWND o) { return GetNullDiscard(o); }, -1},
    {"OutBufferSize", [](auto& p) { p.m_cbOutBufferSize = 4096; }, [](HWND o) { return GetOutBufferSize(o); },
     4096},
    {"ParityReplace", [](auto& p) { p.m_sParityReplace = L"?!"; }, [](HWND o) { return GetParityReplace(o); },
     '?'},
    {"no ParityReplace", [](auto& p) { p.m_sParityReplace = L""; },
     [](HWND o) { return GetParityReplace(o); }, -1},
    {"Rows", [](auto& p) { p.m_nRows = 30; }, [](HWND o) { return GetRows(o); }, 30},
    {"RThreshold", [](auto& p) { p.m_nRThreshold = 11; }, [](HWND o) { return GetRThreshold(o); }, 11},
    // High after every start and load, whatever was stored; kept so.
    {"RTSEnable", [](auto& p) { p.m_bRTSEnable = 0; }, [](HWND o) { return GetRTS(o); }, 1},
    {"ScrollRows", [](auto& p) { p.m_nScrollRows = 12; }, [](HWND o) { return GetScrollRows(o); }, 12},
    {"SThreshold", [](auto& p) { p.m_nSThreshold = 13; }, [](HWND o) { return GetSThreshold(o); }, 13},
    {"XferProtocol", [](auto& p) { p.m_nXferProtocol = 3; }, [](HWND o) { return GetProtocol(o); }, 3},
    {"XferStatusDialog", [](auto& p) { p.m_nXferStatusDialog = 1; },
     [](HWND o) { return GetTransferDialogType(o); }, 1},
    {"Enabled", [](auto& p) { p.m_bEnabled = 0; }, [](HWND o) -> int { return IsWindowEnabled(o); }, 0},
};

TEST_F(ControlLife, CachedValuesAreApplied) {
    for (const AppliedRow& row : appliedRows) {
        control->Properties() = {};
        row.set(control->Properties());
        control->ApplyProperties();
        EXPECT_EQ(row.get(Object()), row.expected) << row.name;
    }
}

TEST_F(ControlLife, SignalsOfAReloadedControlAreHigh) {
    SetRTS(Object(), 0);
    control->Properties().m_bRTSEnable = 0;
    control->ApplyProperties();
    EXPECT_EQ(GetRTS(Object()), 1);
    EXPECT_EQ(control->Properties().m_bRTSEnable, 0) << "the stored value stays as it is";
}

TEST_F(ControlLife, NoSettingsLeaveTheObjectsOwn) {
    SetSettings(Object(), "2400,e,7,1");
    control->ApplyProperties();
    char settings[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(Object(), settings);
    EXPECT_STREQ(settings, "2400,e,7,1");
    control->Properties().m_sSettings = L"1200,n,8,1";
    control->ApplyProperties();
    GetSettings(Object(), settings);
    EXPECT_STREQ(settings, "1200,n,8,1");
}

TEST_F(ControlLife, ApplyingIsSilent) {
    LogEvents();
    control->Properties().m_bWireTapProperties = trueFlag;
    control->ApplyProperties();
    EXPECT_EQ(Log(), Lines{});
    EXPECT_EQ(ear.heard, Lines{});
}

TEST_F(ControlLife, ReleasingClosesThePort) {
    Open();
    const HWND object = Object();
    const HANDLE device = GetCommID(object);
    ASSERT_TRUE(IsOpenDevice(device));
    ear.LoseControl();
    container.Drop();
    control.Reset();
    EXPECT_FALSE(IsWindow(object));
    EXPECT_FALSE(IsOpenDevice(device));
    EXPECT_EQ(ear.References(), 0u);
}

TEST_F(ControlLife, ReleasingWithAWindowClosesItAndThePort) {
    Show();
    Open();
    const HWND window = control->Window();
    const HWND object = Object();
    const HANDLE device = GetCommID(object);
    ASSERT_TRUE(IsOpenDevice(device));
    ear.LoseControl();
    container.object->SetClientSite(nullptr); // takes leave without closing
    container.object.Reset();
    control.Reset();
    EXPECT_FALSE(IsWindow(object));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_FALSE(IsOpenDevice(device));
    EXPECT_EQ(ear.References(), 0u);
}

struct Holdings {
    LONG locks = ModuleLockCount();
    int windows = host::ThreadWindows();
    int gdi = host::GdiObjects();
    DWORD handles = [] {
        DWORD count = 0;
        GetProcessHandleCount(GetCurrentProcess(), &count);
        return count;
    }();
};

void LiveOnce() {
    host::Container container;
    ComPtr<CTarnCommCtl> control;
    host::Ear ear;
    ASSERT_EQ(NewObject(control), S_OK);
    ASSERT_EQ(container.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
    ear.Connect(*control.Get());
    control->Properties().m_nRows = 30;
    control->ApplyProperties(); // as after a load
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    UpdateWindow(control->CommObject());
    EXPECT_GE(ear.Count("Show"), 1);
    DestroyWindow(control->Window());
}

TEST(LongLife, FiveHundredControlsLeaveNothing) {
    const host::Apartment apartment;
    for (int i = 0; i < 20; ++i)
        LiveOnce();
    const Holdings before;
    for (int i = 0; i < 500; ++i)
        LiveOnce();
    const Holdings after;
    EXPECT_EQ(after.locks, before.locks);
    EXPECT_EQ(after.windows, before.windows);
    EXPECT_LE(after.gdi, before.gdi);
    EXPECT_LE(after.handles, before.handles);
}

} // namespace
