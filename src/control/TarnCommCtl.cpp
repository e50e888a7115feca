#include "TarnCommCtl.h"

#include "commands.h"
#include "objectaccess.h"
#include "scriptextension.h"
#include "statusbar.h"
#include "TarnComm.h"
#include "terminal/gdi.h"
#include "toolbar.h"

#include <commctrl.h>
#include <olectl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace {

constexpr DWORD miscStatus = 131473;
constexpr UINT_PTR commWindowHook = 1;
constexpr int commandOfCommObject = 0;   // the identifier of the control's child
constexpr WORD commandFromCode = 0xFFFF; // in place of a notification, as DoCommand

const ControlFacts facts = {&CLSID_TarnComm, L"Tarn Link Objects", &DIID__ITarnCommEvents, ControlWindowClass,
                            miscStatus};

[[maybe_unused]] const bool connected = ConnectControlRoom({
    [](CTarnCommCtl& control, int code) { control.FireCommEvent(code); },
    [](CTarnCommCtl& control, const char* text, int count) {
        control.FireLookUp({text, static_cast<size_t>(count)});
    },
    [](const CTarnCommCtl& control) { return control.IsConnected(); },
});

int HeightOf(HWND bar) {
    return bar ? static_cast<int>(OuterSize(bar).cy) : 0;
}

void PlaceBar(HWND bar, const RECT& place, bool visible) {
    const UINT shown = visible ? SWP_SHOWWINDOW : SWP_HIDEWINDOW;
    SetWindowPos(bar, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | shown);
}

// The host's loop makes no character of a key that is dealt with.
void PostCharacterOf(MSG key, HWND window) {
    key.hwnd = window;
    TranslateMessage(&key);
}

} // namespace

CTarnCommCtl::CTarnCommCtl() : m_Tapi(*this) {
    std::snprintf(m_Properties.m_szModemOptions, sizeof m_Properties.m_szModemOptions, "%s",
                  defaultModemOptions);
}

CTarnCommCtl::~CTarnCommCtl() = default;

const ControlFacts& CTarnCommCtl::Facts() const {
    return facts;
}

// A line for an object that is gone would silence the log for all, so that there is none. The container,
// which is asked for the mode, may take it away.
PropertyLog CTarnCommCtl::Log() const {
    const ControlProperties& switches = m_Properties;
    const bool hasKind = switches.m_bWireTapProperties || switches.m_bWireTapEvents;
    const bool isQuiet = m_nNoLog > 0 || EventsAreFrozen() || m_szControlName.empty();
    const bool isWanted = switches.m_bWireTap && hasKind && !isQuiet && Ambient().IsUserMode();
    const HWND object = CommObject();
    const bool mayLog = isWanted && ControlOf(object) == this;
    return PropertyLog({object, m_szControlName, mayLog && switches.m_bWireTapProperties,
                        mayLog && switches.m_bWireTapEvents});
}

// A control that never gets a window works from here on.
HRESULT CTarnCommCtl::FinalConstruct() {
    m_hWndNonVisibleControl = CreateCommObject(nullptr);
    if (!IsWindow(m_hWndNonVisibleControl))
        return E_OUTOFMEMORY;
    AttachControl(m_hWndNonVisibleControl, this);
    HRESULT result = NewObject(m_pScriptExtension, *this);
    if (SUCCEEDED(result))
        result = NewObject(m_pCommPorts);
    if (SUCCEEDED(result))
        result = NewObject(m_pLocations);
    if (FAILED(result))
        return result;
    m_pCommPorts->Contents().Attach(m_Tapi);
    SetDefaultFont();
    ApplyProperties();
    return S_OK;
}

// The host is gone: nothing may reach it any more, but what it opened is closed as it would have been.
void CTarnCommCtl::FinalRelease() {
    put_PortOpen(VARIANT_FALSE);
    if (m_pScriptExtension)
        m_pScriptExtension->Detach();
    if (m_pCommPorts)
        m_pCommPorts->Contents().Detach();
    DropInvisibleObject();
    DropWindowObject();
}

// What was open goes with its object.
void CTarnCommCtl::EndConnection() {
    m_OpenDialog.Close();
    if (m_bTapiCall)
        m_Tapi.HangUp();
    m_hCallDevice = INVALID_HANDLE_VALUE;
    m_bTapiCall = false;
    m_bConnected = false;
}

// Somebody else may have closed the object's window and own its handle by now.
void CTarnCommCtl::DropInvisibleObject() {
    if (!m_hWndNonVisibleControl)
        return;
    EndConnection();
    const HWND object = std::exchange(m_hWndNonVisibleControl, nullptr);
    if (ControlOf(object) != this)
        return;
    SetEventHandler(object, nullptr);
    AttachControl(object, nullptr);
    DestroyWindow(object);
}

void CTarnCommCtl::DropWindowObject() {
    if (!m_hWndComm)
        return;
    EndConnection();
    const HWND object = std::exchange(m_hWndComm, nullptr);
    RemoveWindowSubclass(object, CommWindowProc, commWindowHook);
    AttachControl(object, nullptr);
    DestroyWindow(object);
}

// The control's window is there. What the host talked to so far goes, with its port; the cached values stay.
bool CTarnCommCtl::OnWindowCreated() {
    DropInvisibleObject();
    m_hWndComm = CreateCommObject(Window());
    if (!m_hWndComm)
        return false;
    SetWindowLongPtrA(m_hWndComm, GWLP_ID, commandOfCommObject);
    SetWindowSubclass(m_hWndComm, CommWindowProc, commWindowHook, reinterpret_cast<DWORD_PTR>(this));
    OutputDebugStringA("Comm Control Created\n");
    m_hWndToolbar = CreateToolbar(Window());
    m_hWndStatusbar = CreateStatusBar(Window());
    Layout();
    ApplyProperties();
    ShowWindow(m_hWndComm, SW_SHOWNA); // its first event, in which the host may destroy the window
    put_BorderStyle(static_cast<CommBorderStyle>(m_Properties.m_nBorderStyle)); // logged, too
    m_bCreated = m_hWndComm != nullptr;
    return m_bCreated;
}

void CTarnCommCtl::OnWindowDestroyed() {
    m_bCreated = false;
    m_OpenDialog.Close();
    m_hWndToolbar = nullptr; // they go with the window
    m_hWndStatusbar = nullptr;
    DropWindowObject();
}

bool CTarnCommCtl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    switch (message) {
    case WM_COMMAND:
        return TakeCommand(wParam, lParam);
    case WM_NOTIFY:
        return AnswerToolbar(m_hWndToolbar, *reinterpret_cast<NMHDR*>(lParam), result);
    case WM_PARENTNOTIFY:
        if (LOWORD(wParam) == WM_DESTROY)
            ForgetChild(reinterpret_cast<HWND>(lParam));
        return false;
    case WM_SYSCOLORCHANGE:
        SendMessageA(m_hWndToolbar, message, wParam, lParam);
        SendMessageA(m_hWndStatusbar, message, wParam, lParam);
        return false;
    case WM_SIZE:
        Layout();
        return false;
    case WM_PAINT: // the comm object and the bars cover all of it
        ValidateRect(Window(), nullptr);
        return true;
    case WM_SETFOCUS:
        if (IsInPlaceActive() && m_hWndComm && !IsChild(Window(), GetFocus()))
            SetFocus(m_hWndComm);
        return true;
    default:
        return false;
    }
}

// Of the comm object or of a button.
bool CTarnCommCtl::TakeCommand(WPARAM wParam, LPARAM lParam) {
    if (LOWORD(wParam) == commandOfCommObject) {
        if (LOWORD(lParam) != LOWORD(reinterpret_cast<UINT_PTR>(m_hWndComm)))
            return false;
        FireCommEvent(GetLastCommEvent(m_hWndComm));
        return true;
    }
    const ControlCommand* command = CommandOfButton(LOWORD(wParam));
    if (!command)
        return false;
    RunCommand(*this, *command, HIWORD(wParam) == commandFromCode ? GivenBy::Code : GivenBy::User);
    return true;
}

// Somebody may destroy a bar behind the control's back.
void CTarnCommCtl::ForgetChild(HWND child) {
    for (HWND* bar : {&m_hWndToolbar, &m_hWndStatusbar})
        if (*bar == child)
            *bar = nullptr;
}

LRESULT CALLBACK CTarnCommCtl::CommWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                              UINT_PTR, DWORD_PTR control) {
    const ComPtr<CTarnCommCtl> self(reinterpret_cast<CTarnCommCtl*>(control)); // the host may release it
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(window, CommWindowProc, commWindowHook);
        if (self->m_hWndComm == window) {
            self->m_hWndComm = nullptr; // destroyed behind the control's back
            self->m_OpenDialog.Close();
        }
        return DefSubclassProc(window, message, wParam, lParam);
    }
    LRESULT result = 0;
    bool isAnswered = false;
    AsResult([&] {
        isAnswered = self->OnCommWindowMessage(message, wParam, lParam, result);
        return S_OK;
    });
    return isAnswered ? result : DefSubclassProc(window, message, wParam, lParam);
}

// The terminal takes what the bars leave.
void CTarnCommCtl::Layout() {
    RECT client = {};
    GetClientRect(Window(), &client);
    const bool hasToolbar = m_hWndToolbar && m_Properties.m_bToolbarVisible;
    const bool hasStatusbar = m_hWndStatusbar && m_Properties.m_bStatusbarVisible;
    const int statusHeight = HeightOf(m_hWndStatusbar);
    const int top = hasToolbar ? toolbarHeight : 0;
    const int bottom = std::max<int>(client.bottom - (hasStatusbar ? statusHeight : 0), top);
    SetWindowPos(m_hWndComm, nullptr, 0, top, client.right, bottom - top, SWP_NOZORDER | SWP_NOACTIVATE);
    PlaceBar(m_hWndStatusbar, {0, bottom, client.right, bottom + statusHeight}, hasStatusbar);
    PlaceBar(m_hWndToolbar, {0, 0, client.right, toolbarHeight}, hasToolbar);
    UpdateStatus();
}

void CTarnCommCtl::UpdateStatus() {
    if (!Window())
        return;
    if (m_hWndStatusbar)
        ShowStatus(m_hWndStatusbar, ClientSize(Window()).cx, m_Properties.m_sPortStatus.c_str(),
                   m_Properties.m_szPort);
    if (!m_hWndToolbar)
        return;
    const bool open = GetPortOpen(CommObject()) != 0;
    ShowConnection(m_hWndToolbar, open          ? Connection::Open
                                  : m_bTapiCall ? Connection::Dialling
                                                : Connection::Closed);
}

// Some bits of the plain style become bits of the extended one; kept so, see the tests.
void CTarnCommCtl::SetBorder() {
    if (!m_hWndComm)
        return;
    const bool single = m_Properties.m_nBorderStyle == 1;
    const LONG_PTR before = GetWindowLongPtrA(m_hWndComm, GWL_STYLE);
    const LONG_PTR style = single ? before | WS_BORDER : before & ~static_cast<LONG_PTR>(WS_BORDER);
    const LONG_PTR extended =
        single ? before | WS_EX_CLIENTEDGE : before & ~static_cast<LONG_PTR>(WS_EX_CLIENTEDGE);
    SetWindowLongPtrA(m_hWndComm, GWL_STYLE, style);
    SetWindowLongPtrA(m_hWndComm, GWL_EXSTYLE, extended);
    SetWindowPos(m_hWndComm, nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// For a picture outside of the window only.
void CTarnCommCtl::OnDraw(HDC context, const RECT& bounds) {
    PassFont();
    FillRect(context, &bounds, GetSysColorBrush(COLOR_ACTIVECAPTION));
}

void CTarnCommCtl::OnAmbientChanged(DISPID) {}

// Without a site there may be nobody any more.
void CTarnCommCtl::OnClientSite(IOleClientSite* site) {
    if (!site)
        m_OpenDialog.Close();
}

// Tab and arrows belong to the terminal.
bool CTarnCommCtl::OnTranslateAccelerator(MSG& message) {
    const UINT kind = message.message; // of a character the codes would mean something else
    const bool isKey = kind == WM_KEYDOWN || kind == WM_KEYUP || kind == WM_SYSKEYDOWN || kind == WM_SYSKEYUP;
    const bool isOurs = message.wParam == VK_TAB || (message.wParam >= VK_LEFT && message.wParam <= VK_DOWN);
    if (!isKey || !isOurs || !m_hWndComm)
        return false;
    if (kind == WM_KEYDOWN && message.wParam == VK_TAB)
        PostCharacterOf(message, m_hWndComm);
    SendMessageA(m_hWndComm, message.message, message.wParam, message.lParam);
    return true;
}
