// The toolbar and the status bar: what they hold, where they are, what they show.
#include "bars.h"

#include "control/toolbar.h"
#include "core/handle.h"
#include "diagnostics/windowhook.h"
#include "support/statebytes.h"

#include <array>
#include <cstring>
#include <set>

namespace {

using host::Lines;

class ToolbarButtons : public host::BarsTest {};
class StatusPanes : public host::BarsTest {};
class BarLayout : public host::BarsTest {};

// A picture in memory, filled with a color that nothing else has.
class Canvas {
  public:
    static constexpr COLORREF bare = RGB(1, 2, 3);

    Canvas(int width, int height) : width_(width), height_(height) {
        SelectObject(dc_, bitmap_ = CreateBitmap(width, height, 1, 32, nullptr));
        const HBRUSH brush = CreateSolidBrush(bare);
        const RECT all = {0, 0, width, height};
        FillRect(dc_, &all, brush);
        DeleteObject(brush);
    }
    ~Canvas() {
        DeleteDC(dc_);
        DeleteObject(bitmap_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC Context() const { return dc_; }
    COLORREF At(int x, int y) const { return GetPixel(dc_, x, y); }
    std::vector<COLORREF> All() const {
        std::vector<COLORREF> colors;
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x)
                colors.push_back(At(x, y));
        return colors;
    }

  private:
    int width_;
    int height_;
    HDC dc_ = CreateCompatibleDC(nullptr);
    HBITMAP bitmap_ = nullptr;
};

constexpr int separator = -1; // in place of an image

struct EntryRow {
    int image;
    int command;
};

constexpr EntryRow entries[] = {
    {0, 2000},         {1, 2001}, {2, 2002},         {separator, 2020}, {3, 2004}, {4, 2005},
    {separator, 2021}, {5, 2006}, {6, 2007},         {separator, 2022}, {7, 2008}, {8, 2009},
    {separator, 2023}, {9, 2010}, {separator, 2023}, {10, 2011},
};

TEST_F(ToolbarButtons, EntriesStandInTheirOrder) {
    Show();
    ASSERT_EQ(SendMessageA(Toolbar(), TB_BUTTONCOUNT, 0, 0), static_cast<LRESULT>(std::size(entries)));
    for (WPARAM place = 0; place < std::size(entries); ++place) {
        TBBUTTON button = {};
        ASSERT_TRUE(SendMessageA(Toolbar(), TB_GETBUTTON, place, reinterpret_cast<LPARAM>(&button)));
        const EntryRow& entry = entries[place];
        EXPECT_EQ(button.idCommand, entry.command) << place;
        EXPECT_EQ(button.fsStyle, entry.image == separator ? TBSTYLE_SEP : TBSTYLE_BUTTON) << place;
        EXPECT_FALSE(button.fsState & TBSTATE_HIDDEN) << place;
        EXPECT_EQ(entry.image == separator ? separator : button.iBitmap, entry.image) << place;
    }
}

TEST_F(ToolbarButtons, HasItsStyles) {
    Show();
    const auto style = static_cast<DWORD>(GetWindowLongA(Toolbar(), GWL_STYLE));
    constexpr DWORD wanted =
        WS_CHILD | WS_VISIBLE | CCS_NORESIZE | TBSTYLE_TOOLTIPS | TBSTYLE_FLAT | TBSTYLE_CUSTOMERASE;
    constexpr DWORD unwanted = CCS_NOPARENTALIGN | CCS_ADJUSTABLE | CCS_NODIVIDER | TBSTYLE_WRAPABLE |
                               TBSTYLE_LIST | TBSTYLE_ALTDRAG | WS_BORDER | WS_TABSTOP;
    EXPECT_EQ(style & (wanted | unwanted), wanted);
    const LRESULT rows = SendMessageA(Toolbar(), TB_GETROWS, 0, 0);
    EXPECT_EQ(rows, 1);
    EXPECT_TRUE(SendMessageA(Toolbar(), TB_GETTOOLTIPS, 0, 0));
}

TEST_F(ToolbarButtons, PicturesAreSixteenOfWhichElevenAreDrawn) {
    Show();
    const auto images = reinterpret_cast<HIMAGELIST>(SendMessageA(Toolbar(), TB_GETIMAGELIST, 0, 0));
    ASSERT_TRUE(images);
    int width = 0, height = 0;
    ImageList_GetIconSize(images, &width, &height);
    EXPECT_EQ(width, 16);
    EXPECT_EQ(height, 15);
    ASSERT_EQ(ImageList_GetImageCount(images), 16);
    std::set<std::vector<COLORREF>> drawn;
    for (int image = 0; image < 16; ++image) {
        const Canvas canvas(width, height);
        ImageList_Draw(images, image, canvas.Context(), 0, 0, ILD_TRANSPARENT);
        EXPECT_EQ(canvas.At(0, 0), Canvas::bare) << image << ": the face is transparent";
        drawn.insert(canvas.All());
    }
    EXPECT_EQ(drawn.size(), 12u) << "eleven, and the empty one";
}

struct TipRow {
    int button;
    const char* text;
};

constexpr TipRow tips[] = {
    {2000, "New"},
    {2001, "Open"},
    {2002, "Save"},
    {2004, "Copy"},
    {2005, "Paste"},
    {2006, "Connect"},
    {2007, "Disconnect"},
    {2008, "Send a file"},
    {2009, "Receive a file"},
    {2010, "Properties"},
    {2011, "System Information"},
};

TEST_F(ToolbarButtons, ToolTipsAskTheControl) {
    Show();
    const auto window = reinterpret_cast<HWND>(SendMessageA(Toolbar(), TB_GETTOOLTIPS, 0, 0));
    EXPECT_EQ(SendMessageA(window, TTM_GETTOOLCOUNT, 0, 0), 11) << "the separators have none";
    for (const TipRow& tip : tips) {
        char text[128] = {};
        TTTOOLINFOA tool = {};
        tool.cbSize = TTTOOLINFOA_V1_SIZE;
        tool.hwnd = Toolbar();
        tool.uId = static_cast<UINT_PTR>(tip.button);
        tool.lpszText = text;
        SendMessageA(window, TTM_GETTEXTA, 0, reinterpret_cast<LPARAM>(&tool));
        EXPECT_STREQ(text, tip.text);
    }
}

template <class Request>
Request Asked(CTarnCommCtl& control, UINT code, int button) {
    Request request = {};
    request.hdr = {reinterpret_cast<HWND>(SendMessageA(host::ToolbarOf(control), TB_GETTOOLTIPS, 0, 0)),
                   static_cast<UINT_PTR>(button), code};
    SendMessageA(control.Window(), WM_NOTIFY, static_cast<WPARAM>(button),
                 reinterpret_cast<LPARAM>(&request));
    return request;
}

TEST_F(ToolbarButtons, ToolTipsAreGivenInBothWidths) {
    Show();
    for (const TipRow& tip : tips) {
        EXPECT_STREQ(Asked<NMTTDISPINFOA>(Control(), TTN_GETDISPINFOA, tip.button).szText, tip.text);
        EXPECT_EQ(Asked<NMTTDISPINFOW>(Control(), TTN_GETDISPINFOW, tip.button).szText, WideOf(tip.text));
    }
    for (const int other : {0, 2003, 2020, 2012, 1001})
        EXPECT_STREQ(Asked<NMTTDISPINFOA>(Control(), TTN_GETDISPINFOA, other).szText, "") << other;
}

LRESULT Drawn(CTarnCommCtl& control, HWND from, HDC context, DWORD stage) {
    NMTBCUSTOMDRAW draw = {};
    draw.nmcd.hdr = {from, 1001, NM_CUSTOMDRAW};
    draw.nmcd.dwDrawStage = stage;
    draw.nmcd.hdc = context;
    return SendMessageA(control.Window(), WM_NOTIFY, 1001, reinterpret_cast<LPARAM>(&draw));
}

TEST_F(ToolbarButtons, ErasesItsGroundFarOut) {
    Show();
    for (const bool wide : {true, false}) {
        const Canvas canvas(wide ? 5010 : 2, wide ? 2 : 5010);
        EXPECT_EQ(Drawn(Control(), Toolbar(), canvas.Context(), CDDS_PREERASE), CDRF_SKIPDEFAULT);
        EXPECT_EQ(canvas.At(0, 0), GetSysColor(COLOR_3DFACE));
        EXPECT_EQ(canvas.At(wide ? 4999 : 0, wide ? 0 : 4999), GetSysColor(COLOR_3DFACE));
        EXPECT_EQ(canvas.At(wide ? 5000 : 0, wide ? 0 : 5000), Canvas::bare);
    }
}

TEST_F(ToolbarButtons, ErasesNothingElse) {
    Show();
    const Canvas canvas(2, 2);
    for (const DWORD stage : {CDDS_PREPAINT, CDDS_POSTPAINT, CDDS_POSTERASE})
        EXPECT_EQ(Drawn(Control(), Toolbar(), canvas.Context(), stage), CDRF_DODEFAULT);
    Drawn(Control(), StatusBar(), canvas.Context(), CDDS_PREERASE);
    EXPECT_EQ(canvas.At(0, 0), Canvas::bare);
}

TEST_F(ToolbarButtons, AsksForItsGround) {
    Show();
    const Canvas canvas(2, 2);
    SendMessageA(Toolbar(), WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.Context()), 0);
    EXPECT_EQ(canvas.At(1, 1), GetSysColor(COLOR_3DFACE));
}

TEST_F(ToolbarButtons, ButtonsFollowTheConnection) {
    Show();
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileClosed);
    OpenPort();
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileOpen);
    control->put_PortOpen(VARIANT_FALSE);
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileClosed);
}

TEST_F(ToolbarButtons, EachStateOfTheConnectionHasItsButtons) {
    Show();
    ShowConnection(Toolbar(), Connection::Dialling);
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileDialling);
    ShowConnection(Toolbar(), Connection::Open);
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileOpen);
    ShowConnection(Toolbar(), Connection::Closed);
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileClosed);
}

// Presses a button and lets it go, by the mouse.
void ClickByMouse(HWND toolbar, WPARAM place) {
    RECT button = {};
    SendMessageA(toolbar, TB_GETITEMRECT, place, reinterpret_cast<LPARAM>(&button));
    const LPARAM at = MAKELPARAM(button.left + 4, button.top + 4);
    SendMessageA(toolbar, WM_LBUTTONDOWN, MK_LBUTTON, at);
    SendMessageA(toolbar, WM_LBUTTONUP, 0, at);
}

constexpr WPARAM connectPlace = 7, disconnectPlace = 8;

TEST_F(ToolbarButtons, AClickOfTheMouseIsACommand) {
    Show();
    ASSERT_EQ(control->put_CommPort(_variant_t(L"COM5")), S_OK);
    ClickByMouse(Toolbar(), disconnectPlace); // it is disabled
    EXPECT_EQ(ear.Count("Command 8 False"), 0);
    ClickByMouse(Toolbar(), connectPlace);
    EXPECT_EQ(ear.Count("Command 7 False"), 1);
    EXPECT_TRUE(GetPortOpen(Object()));
    ClickByMouse(Toolbar(), disconnectPlace);
    EXPECT_EQ(ear.Count("Command 8 False"), 1);
    EXPECT_FALSE(GetPortOpen(Object()));
}

struct Ending {
    const char* name;
    void (*act)(host::BarsTest& test);
};

constexpr Ending endings[] = {
    {"destroys the toolbar", [](host::BarsTest& test) { DestroyWindow(test.Toolbar()); }},
    {"destroys its window", [](host::BarsTest& test) { DestroyWindow(test.control->Window()); }},
    {"destroys the form", [](host::BarsTest& test) { DestroyWindow(test.container.window); }},
    {"releases it",
     [](host::BarsTest& test) {
         test.ear.LoseControl();
         test.container.Drop();
         test.control.Reset();
     }},
};

// The toolbar is still in its own answer to the mouse.
TEST_F(ToolbarButtons, TheHostMayEndTheControlInsideOfAClick) {
    for (const Ending& ending : endings) {
        SCOPED_TRACE(ending.name);
        if (!control) {
            ASSERT_EQ(NewObject(control), S_OK);
            ASSERT_EQ(container.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
            ear.Connect(*control.Get());
        }
        if (!IsWindow(container.window))
            container.window = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300,
                                               nullptr, nullptr, nullptr, nullptr);
        container.As<IOleInPlaceObject>()->InPlaceDeactivate();
        Show();
        ASSERT_EQ(control->put_CommPort(_variant_t(L"COM5")), S_OK);
        ear.onEvent = [&](DISPID id, DISPPARAMS&) {
            if (id != events::Command)
                return;
            ear.onEvent = nullptr;
            ending.act(*this);
        };
        const HWND bar = Toolbar();
        ClickByMouse(bar, connectPlace);
        EXPECT_EQ(ear.Count("Command 7 False"), 1);
        EXPECT_FALSE(IsWindow(bar));
        EXPECT_EQ(GetCapture(), nullptr);
    }
    EXPECT_EQ(ear.References(), 0u) << "the control has ended";
}

// What came to a window, with its wParam.
class Heard {
  public:
    Heard(HWND window, UINT message) : message_(message) {
        hook_.Set(window, [this](UINT id, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
            if (id == message_)
                came.push_back({wParam, lParam});
            return {};
        });
    }

    std::vector<std::pair<WPARAM, LPARAM>> came;

  private:
    UINT message_;
    WindowHook hook_;
};

TEST_F(ToolbarButtons, AColorSchemeReachesTheBars) {
    Show();
    const Heard toolbar(Toolbar(), WM_SYSCOLORCHANGE), status(StatusBar(), WM_SYSCOLORCHANGE);
    SendMessageA(control->Window(), WM_SYSCOLORCHANGE, 5, 6);
    const std::vector<std::pair<WPARAM, LPARAM>> once = {{5, 6}};
    EXPECT_EQ(toolbar.came, once);
    EXPECT_EQ(status.came, once);
}

TEST_F(ToolbarButtons, ButtonsFollowAGivenHandle) {
    Show();
    host::FarEnd device("COM5"); // as a host opens it
    ASSERT_TRUE(device.IsOpen());
    for (const auto put : {&CTarnCommCtl::put_CommHandle, &CTarnCommCtl::put_CommID}) {
        EXPECT_EQ((Control().*put)(HandleToLong(device.Handle())), S_OK);
        EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileOpen);
        EXPECT_EQ((Control().*put)(-1), S_OK);
        EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileClosed);
    }
}

// CommandState

struct StateRow {
    CommCommand command;
    int button;
};

constexpr StateRow stateRows[] = {
    {CommCommand_New, 2000},        {CommCommand_Open, 2001},     {CommCommand_Save, 2002},
    {CommCommand_Copy, 2004},       {CommCommand_Paste, 2005},    {CommCommand_Connect, 2006},
    {CommCommand_Disconnect, 2007}, {CommCommand_SendFile, 2008}, {CommCommand_ReceiveFile, 2009},
    {CommCommand_Properties, 2010},
};

class CommandStates : public host::BarsTest {
  public:
    void Put(CommCommand command, CommandState state) {
        EXPECT_EQ(control->put_CommandState(command, state), S_OK);
    }
    bool IsEnabled(int button) const {
        return SendMessageA(Toolbar(), TB_ISBUTTONENABLED, static_cast<WPARAM>(button), 0) != 0;
    }
};

TEST_F(CommandStates, EachButtonIsHiddenDisabledEnabled) {
    Show();
    for (const StateRow& row : stateRows) {
        Put(row.command, CommandState_Hidden);
        EXPECT_TRUE(IsHidden(row.button)) << row.button;
        EXPECT_FALSE(IsEnabled(row.button)) << row.button;
        EXPECT_EQ(StateOf(row.command), CommandState_Hidden) << row.button;
        Put(row.command, CommandState_Enabled);
        EXPECT_FALSE(IsHidden(row.button)) << row.button;
        EXPECT_TRUE(IsEnabled(row.button)) << row.button;
        EXPECT_EQ(StateOf(row.command), CommandState_Enabled) << row.button;
        Put(row.command, CommandState_Disabled);
        EXPECT_FALSE(IsHidden(row.button)) << row.button;
        EXPECT_FALSE(IsEnabled(row.button)) << row.button;
        EXPECT_EQ(StateOf(row.command), CommandState_Disabled) << row.button;
    }
}

TEST_F(CommandStates, OtherValuesShowAndDisable) {
    Show();
    for (const int value : {3, -1, 256}) {
        Put(CommCommand_New, CommandState_Hidden);
        Put(CommCommand_New, std::bit_cast<CommandState>(value));
        EXPECT_EQ(StateOf(CommCommand_New), CommandState_Disabled) << value;
    }
}

TEST_F(CommandStates, CommandsWithoutAButtonReadZero) {
    Show();
    const auto before = host::EnabledButtons(Control());
    for (const int value : {4, 12, 13, 14, 0, 15, -1, 2000}) {
        const auto command = std::bit_cast<CommCommand>(value);
        for (const auto state : {CommandState_Enabled, CommandState_Hidden, CommandState_Disabled}) {
            Put(command, state);
            EXPECT_EQ(StateOf(command), CommandState_Disabled) << value;
        }
    }
    EXPECT_EQ(host::EnabledButtons(Control()), before);
    for (const int button : host::allButtons)
        EXPECT_FALSE(IsHidden(button)) << button;
}

struct GroupRow {
    int separator;
    std::vector<CommCommand> commands;
};

TEST_F(CommandStates, SeparatorsGoWithTheLastOfTheirButtons) {
    Show();
    const GroupRow groups[] = {
        {2020, {CommCommand_New, CommCommand_Open, CommCommand_Save}},
        {2021, {CommCommand_Copy, CommCommand_Paste}},
        {2022, {CommCommand_Connect, CommCommand_Disconnect}},
        {2023, {CommCommand_SendFile, CommCommand_ReceiveFile}},
    };
    for (const GroupRow& group : groups) {
        for (const CommCommand command : group.commands) {
            EXPECT_FALSE(IsHidden(group.separator)) << group.separator;
            Put(command, CommandState_Hidden);
        }
        EXPECT_TRUE(IsHidden(group.separator)) << group.separator;
        Put(group.commands.back(), CommandState_Disabled);
        EXPECT_FALSE(IsHidden(group.separator)) << group.separator;
    }
}

TEST_F(CommandStates, OnlyTheFirstOfTheTwoEqualSeparatorsGoes) {
    Show();
    Put(CommCommand_SendFile, CommandState_Hidden);
    Put(CommCommand_ReceiveFile, CommandState_Hidden);
    for (const WPARAM place : {12, 14}) {
        TBBUTTON button = {};
        SendMessageA(Toolbar(), TB_GETBUTTON, place, reinterpret_cast<LPARAM>(&button));
        EXPECT_EQ((button.fsState & TBSTATE_HIDDEN) != 0, place == 12) << place;
    }
}

TEST_F(CommandStates, TheNextStatusOverwritesThem) {
    Show();
    Put(CommCommand_Connect, CommandState_Disabled);
    Put(CommCommand_Paste, CommandState_Enabled);
    Put(CommCommand_Open, CommandState_Hidden);
    control->UpdateStatus();
    EXPECT_EQ(StateOf(CommCommand_Connect), CommandState_Enabled);
    EXPECT_EQ(StateOf(CommCommand_Paste), CommandState_Disabled);
    EXPECT_EQ(StateOf(CommCommand_Open), CommandState_Hidden) << "a hidden one stays hidden";
}

TEST_F(CommandStates, SystemInformationStaysEnabled) {
    Show();
    OpenPort();
    EXPECT_TRUE(IsEnabled(sysInfoButton));
}

TEST_F(CommandStates, WithoutAWindowThereAreNone) {
    for (const StateRow& row : stateRows) {
        Put(row.command, CommandState_Enabled);
        EXPECT_EQ(StateOf(row.command), CommandState_Disabled);
    }
    EXPECT_EQ(control->get_CommandState(CommCommand_New, nullptr), E_POINTER);
}

TEST_F(CommandStates, AreNotLogged) {
    Show();
    host::StartLogAnew();
    logfiles::RemoveLog();
    control->Properties().m_bWireTap = trueFlag;
    control->Properties().m_bWireTapProperties = trueFlag;
    Put(CommCommand_New, CommandState_Disabled);
    StateOf(CommCommand_New);
    EXPECT_EQ(Log(), Lines{});
}

// The status bar

TEST_F(StatusPanes, ShowsTheStatusAndThePort) {
    Show();
    EXPECT_EQ(host::PaneOf(Control(), 0), "");
    EXPECT_EQ(host::PaneOf(Control(), 1), "");
    OpenPort();
    EXPECT_EQ(host::PaneOf(Control(), 0), "Connected");
    EXPECT_EQ(host::PaneOf(Control(), 1), "COM5");
    control->put_PortOpen(VARIANT_FALSE);
    EXPECT_EQ(host::PaneOf(Control(), 0), "Disconnected");
}

TEST_F(StatusPanes, ShowsTextsAsTheyAre) {
    Show();
    const std::string name = "R&D's 100%s %n \xfc";
    std::snprintf(control->Properties().m_szPort, sizeof control->Properties().m_szPort, "%s", name.c_str());
    control->Properties().m_sPortStatus = L"50 %d &here";
    control->UpdateStatus();
    EXPECT_EQ(host::PaneOf(Control(), 0), "50 %d &here");
    EXPECT_EQ(host::PaneOf(Control(), 1), name);
}

TEST_F(StatusPanes, PortTakesTheRoomOfItsName) {
    Show();
    for (const char* name : {"", "COM5", "A modem with quite a long name"}) {
        std::snprintf(control->Properties().m_szPort, sizeof control->Properties().m_szPort, "%s", name);
        control->UpdateStatus();
        const HDC dc = GetDC(StatusBar());
        const auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(StatusBar(), WM_GETFONT, 0, 0));
        const HGDIOBJ before = SelectObject(dc, font ? font : GetStockObject(SYSTEM_FONT));
        SIZE size = {};
        GetTextExtentPoint32A(dc, name, static_cast<int>(std::strlen(name)), &size);
        SelectObject(dc, before);
        ReleaseDC(StatusBar(), dc);
        RECT client = {};
        GetClientRect(control->Window(), &client);
        int ends[3] = {};
        EXPECT_EQ(SendMessageA(StatusBar(), SB_GETPARTS, 3, reinterpret_cast<LPARAM>(ends)), 2);
        EXPECT_EQ(ends[0], std::max<LONG>(client.right - size.cx - 20, 0)) << name;
        EXPECT_EQ(ends[1], -1);
    }
}

TEST_F(StatusPanes, ANameWiderThanTheBarLeavesNoOtherPane) {
    Show();
    const std::string name(99, 'W');
    std::snprintf(control->Properties().m_szPort, sizeof control->Properties().m_szPort, "%s", name.c_str());
    control->UpdateStatus();
    int ends[2] = {-5, -5};
    SendMessageA(StatusBar(), SB_GETPARTS, 2, reinterpret_cast<LPARAM>(ends));
    EXPECT_EQ(ends[0], 0);
    EXPECT_EQ(host::PaneOf(Control(), 1), name);
}

TEST_F(StatusPanes, LeavesTheSimpleMode) {
    Show();
    SendMessageA(StatusBar(), SB_SIMPLE, TRUE, 0);
    ASSERT_TRUE(SendMessageA(StatusBar(), SB_ISSIMPLE, 0, 0));
    control->UpdateStatus();
    EXPECT_FALSE(SendMessageA(StatusBar(), SB_ISSIMPLE, 0, 0));
}

TEST_F(StatusPanes, NeedsNoWindow) {
    control->UpdateStatus();
    Show();
    DestroyWindow(StatusBar());
    DestroyWindow(Toolbar());
    control->UpdateStatus();
    EXPECT_EQ(StateOf(CommCommand_New), CommandState_Disabled);
    const RECT all = host::PlaceOf(Control(), Object());
    control->put_ToolbarVisible(VARIANT_FALSE);
    RECT client = {};
    GetClientRect(control->Window(), &client);
    const RECT now = host::PlaceOf(Control(), Object());
    EXPECT_TRUE(EqualRect(&client, &now)) << "bars that are gone take no space";
    EXPECT_FALSE(EqualRect(&all, &now));
    DestroyWindow(control->Window());
    control->UpdateStatus();
}

// Their places

struct LayoutRow {
    bool toolbar;
    bool status;
};

constexpr LayoutRow layouts[] = {{true, true}, {true, false}, {false, true}, {false, false}};

void ExpectLayout(host::BarsTest& test, const LayoutRow& row) {
    SCOPED_TRACE(testing::Message() << row.toolbar << row.status);
    RECT client = {};
    GetClientRect(test.control->Window(), &client);
    const RECT terminal = host::PlaceOf(test.Control(), test.Object());
    const RECT toolbar = host::PlaceOf(test.Control(), test.Toolbar());
    const RECT status = host::PlaceOf(test.Control(), test.StatusBar());
    const LONG statusHeight = status.bottom - status.top;
    EXPECT_GT(statusHeight, 10);
    EXPECT_EQ(terminal.left, 0);
    EXPECT_EQ(terminal.top, row.toolbar ? 23 : 0);
    EXPECT_EQ(terminal.right, client.right);
    EXPECT_EQ(terminal.bottom, client.bottom - (row.status ? statusHeight : 0));
    EXPECT_EQ(IsWindowVisible(test.Toolbar()) != 0, row.toolbar);
    EXPECT_EQ(IsWindowVisible(test.StatusBar()) != 0, row.status);
    EXPECT_EQ(toolbar.left, 0);
    EXPECT_EQ(toolbar.top, 0);
    EXPECT_EQ(toolbar.right, client.right);
    EXPECT_EQ(toolbar.bottom, 23);
    EXPECT_EQ(status.left, 0);
    EXPECT_EQ(status.right, client.right);
    EXPECT_EQ(row.status ? status.top : terminal.bottom, terminal.bottom);
}

void PutBars(CTarnCommCtl& control, const LayoutRow& row) {
    EXPECT_EQ(control.put_ToolbarVisible(row.toolbar ? VARIANT_TRUE : VARIANT_FALSE), S_OK);
    EXPECT_EQ(control.put_StatusbarVisible(row.status ? VARIANT_TRUE : VARIANT_FALSE), S_OK);
}

TEST_F(BarLayout, TheTerminalTakesWhatTheBarsLeave) {
    Show();
    ExpectLayout(*this, {true, true});
    for (const LayoutRow& row : layouts) {
        PutBars(Control(), row);
        ExpectLayout(*this, row);
    }
}

TEST_F(BarLayout, FollowsTheSizeOfTheControl) {
    Show();
    for (const LayoutRow& row : layouts) {
        PutBars(Control(), row);
        for (const LONG width : {333, 64, 700}) {
            const RECT place = {0, 0, width, 222};
            control->SetObjectRects(&place, &place);
            ExpectLayout(*this, row);
        }
    }
}

TEST_F(BarLayout, IsReadyAtTheFirstWindow) {
    for (const LayoutRow& row : layouts) {
        PutBars(Control(), row);
        Show();
        ExpectLayout(*this, row);
        control->InPlaceDeactivate();
    }
}

// Into a control with its window, as a host does that reads a form anew.
TEST_F(BarLayout, ALoadedStreamPlacesTheBars) {
    Show();
    for (const LayoutRow& row : layouts) {
        ComPtr<CTarnCommCtl> stored;
        ASSERT_EQ(NewObject(stored), S_OK);
        PutBars(*stored.Get(), row);
        const bool hasBorder = row.toolbar;
        stored->put_BorderStyle(hasBorder ? CommBorderStyle_Single : CommBorderStyle_None);
        const ComPtr<IStream> stream = host::StreamOf("");
        ASSERT_EQ(stored->Save(stream.Get(), TRUE), S_OK);
        stream->Seek({}, STREAM_SEEK_SET, nullptr);
        ASSERT_EQ(control->Load(stream.Get()), S_OK);
        ExpectLayout(*this, row);
        EXPECT_EQ((GetWindowLongA(Object(), GWL_STYLE) & WS_BORDER) != 0, hasBorder);
        EXPECT_EQ((GetWindowLongA(Object(), GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0, hasBorder);
    }
}

TEST_F(BarLayout, HidingTheToolbarGivesItsRowsToTheTerminal) {
    Show();
    const RECT before = host::PlaceOf(Control(), Object());
    control->put_ToolbarVisible(VARIANT_FALSE);
    const RECT after = host::PlaceOf(Control(), Object());
    EXPECT_EQ((after.bottom - after.top) - (before.bottom - before.top), 23);
}

TEST_F(BarLayout, TooLittleSpaceLeavesNoTerminal) {
    Show();
    const RECT place = {0, 0, 100, 30};
    control->SetObjectRects(&place, &place);
    const RECT terminal = host::PlaceOf(Control(), Object());
    EXPECT_EQ(terminal.top, 23);
    EXPECT_EQ(terminal.bottom, 23);
}

TEST_F(BarLayout, TheSameValueMovesNothing) {
    Show();
    SetWindowPos(Object(), nullptr, 5, 6, 70, 80, SWP_NOZORDER);
    control->put_ToolbarVisible(VARIANT_TRUE);
    control->put_StatusbarVisible(VARIANT_TRUE);
    EXPECT_EQ(host::PlaceOf(Control(), Object()).left, 5);
    control->put_StatusbarVisible(VARIANT_FALSE);
    ExpectLayout(*this, {true, false});
}

TEST_F(BarLayout, ActivatesNothingAndKeepsTheFocus) {
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    ASSERT_EQ(GetFocus(), Object());
    PutBars(Control(), {false, false});
    PutBars(Control(), {true, true});
    EXPECT_EQ(GetFocus(), Object());
}

} // namespace
