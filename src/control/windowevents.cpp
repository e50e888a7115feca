// Mouse, keys and paint of the comm object's window as events of the control.
#include "events.h"
#include "TarnCommCtl.h"

#include <commctrl.h>
#include <windowsx.h>

#include <cstdio>

namespace {

struct KeyRow {
    WPARAM flag;
    short mask;
};

constexpr short leftButton = 1;
constexpr short rightButton = 2;
constexpr short middleButton = 4;
constexpr KeyRow buttonFlags[] = {
    {MK_LBUTTON, leftButton}, {MK_RBUTTON, rightButton}, {MK_MBUTTON, middleButton}};

constexpr short shiftMask = 1;
constexpr short controlMask = 2;
constexpr short altMask = 4;
constexpr KeyRow shiftFlags[] = {{MK_SHIFT, shiftMask}, {MK_CONTROL, controlMask}};
constexpr KeyRow shiftKeys[] = {{VK_SHIFT, shiftMask}, {VK_CONTROL, controlMask}, {VK_MENU, altMask}};

struct WindowMessage {
    CTarnCommCtl& control;
    UINT& lastMouseMessage;
    HWND window;
    UINT id;
    WPARAM wParam;
    LPARAM lParam;
};

// What the object's window does with the message.
enum class Follows {
    Nothing,
    Message,
};

struct Answered {
    Follows follows;
    LRESULT result = 0; // where nothing follows
};

constexpr Answered passOn = {Follows::Message};
constexpr Answered done = {Follows::Nothing};

short Masks(std::span<const KeyRow> rows, WPARAM flags) {
    int masks = 0;
    for (const KeyRow& row : rows)
        masks |= flags & row.flag ? row.mask : 0;
    return static_cast<short>(masks);
}

bool IsPressed(WPARAM key) {
    return GetKeyState(static_cast<int>(key)) < 0;
}

short PressedShiftKeys() {
    int masks = 0;
    for (const KeyRow& row : shiftKeys)
        masks |= IsPressed(row.flag) ? row.mask : 0;
    return static_cast<short>(masks);
}

class ArgumentText {
  public:
    explicit ArgumentText(short only) { std::snprintf(text_, sizeof text_, "%d", only); }
    ArgumentText(short first, short second) { std::snprintf(text_, sizeof text_, "%d, %d", first, second); }
    operator const char*() const { return text_; }

  private:
    char text_[32];
};

void LogAndFire(CTarnCommCtl& control, events::Id event, const char* name) {
    control.Log().Event(name);
    control.Fire(event);
}

// The message with what the handlers made of its key, if the window outlived them.
Answered PassKey(const WindowMessage& message, short key) {
    if (!key || message.control.CommObject() != message.window)
        return done;
    return {Follows::Nothing,
            DefSubclassProc(message.window, message.id, static_cast<WORD>(key), message.lParam)};
}

short FireKey(const WindowMessage& message, events::Id event, const char* name) {
    auto key = static_cast<short>(message.wParam);
    short shift = PressedShiftKeys();
    message.control.Log().Event(name, ArgumentText(key, shift));
    VARIANT arguments[] = {events::ByReference(key), events::ByReference(shift)};
    message.control.Fire(event, arguments);
    return key;
}

struct MouseEvent {
    events::Id event;
    const char* logName; // none for no line
    short button;
};

void FireMouse(const WindowMessage& message, const MouseEvent& mouse) {
    short button = mouse.button;
    auto shift = static_cast<short>(Masks(shiftFlags, message.wParam) | (IsPressed(VK_MENU) ? altMask : 0));
    auto x = static_cast<float>(GET_X_LPARAM(message.lParam));
    auto y = static_cast<float>(GET_Y_LPARAM(message.lParam));
    if (mouse.logName)
        message.control.Log().Event(mouse.logName, ArgumentText(button, shift));
    VARIANT arguments[] = {events::ByReference(button), events::ByReference(shift), events::ByReference(x),
                           events::ByReference(y)};
    message.control.Fire(mouse.event, arguments);
}

Answered MouseDown(const WindowMessage& message, short button) {
    FireMouse(message, {events::MouseDown, "MouseDown", button});
    message.lastMouseMessage = message.id;
    return passOn;
}

Answered MouseUp(const WindowMessage& message, short button, UINT doubleClick) {
    FireMouse(message, {events::MouseUp, "MouseUp", button});
    if (message.lastMouseMessage != doubleClick)
        LogAndFire(message.control, events::Click, "Click");
    return passOn;
}

// Repaints and shows that come of the host's own work are not told while it has frozen the events.
Answered TellUnlessFrozen(const WindowMessage& message, events::Id event, const char* name) {
    if (!message.control.EventsAreFrozen())
        LogAndFire(message.control, event, name);
    return passOn;
}

Answered Paint(const WindowMessage& message) {
    return TellUnlessFrozen(message, events::Paint, "Paint");
}

Answered ShowOrHide(const WindowMessage& message) {
    return message.wParam ? TellUnlessFrozen(message, events::Show, "Show")
                          : TellUnlessFrozen(message, events::Hide, "Hide");
}

Answered LeftDown(const WindowMessage& message) {
    return MouseDown(message, leftButton);
}

Answered RightDown(const WindowMessage& message) {
    return MouseDown(message, rightButton);
}

Answered MiddleDown(const WindowMessage& message) {
    return MouseDown(message, middleButton);
}

Answered LeftUp(const WindowMessage& message) {
    return MouseUp(message, leftButton, WM_LBUTTONDBLCLK);
}

Answered RightUp(const WindowMessage& message) {
    return MouseUp(message, rightButton, WM_RBUTTONDBLCLK);
}

Answered MiddleUp(const WindowMessage& message) {
    return MouseUp(message, middleButton, WM_MBUTTONDBLCLK);
}

Answered DoubleClick(const WindowMessage& message) {
    LogAndFire(message.control, events::DblClick, "DblClick");
    message.lastMouseMessage = message.id;
    return passOn;
}

Answered MouseMove(const WindowMessage& message) {
    FireMouse(message, {events::MouseMove, nullptr, Masks(buttonFlags, message.wParam)});
    return passOn;
}

Answered KeyDown(const WindowMessage& message) {
    return PassKey(message, FireKey(message, events::KeyDown, "KeyDown"));
}

// F10 would open the menu; every other key of the kind has its meaning to the system.
Answered SystemKeyDown(const WindowMessage& message) {
    if (message.wParam != VK_F10)
        return passOn;
    FireKey(message, events::KeyDown, "KeyDown");
    return done;
}

Answered KeyUp(const WindowMessage& message) {
    FireKey(message, events::KeyUp, "KeyUp");
    return passOn;
}

Answered KeyPress(const WindowMessage& message) {
    auto character = static_cast<short>(message.wParam);
    message.control.Log().Event("KeyPress", ArgumentText(character));
    VARIANT arguments[] = {events::ByReference(character)};
    message.control.Fire(events::KeyPress, arguments);
    return PassKey(message, static_cast<BYTE>(character)); // characters are bytes here
}

struct MessageRow {
    UINT id;
    Answered (*answer)(const WindowMessage& message);
};

constexpr MessageRow messages[] = {
    {WM_PAINT, Paint},
    {WM_SHOWWINDOW, ShowOrHide},
    {WM_MOUSEMOVE, MouseMove},
    {WM_LBUTTONDOWN, LeftDown},
    {WM_LBUTTONUP, LeftUp},
    {WM_LBUTTONDBLCLK, DoubleClick},
    {WM_RBUTTONDOWN, RightDown},
    {WM_RBUTTONUP, RightUp},
    {WM_RBUTTONDBLCLK, DoubleClick},
    {WM_MBUTTONDOWN, MiddleDown},
    {WM_MBUTTONUP, MiddleUp},
    {WM_MBUTTONDBLCLK, DoubleClick},
    {WM_KEYDOWN, KeyDown},
    {WM_SYSKEYDOWN, SystemKeyDown},
    {WM_KEYUP, KeyUp},
    {WM_CHAR, KeyPress},
};

} // namespace

// The focus comes from outside of the control's window, or goes there.
void CTarnCommCtl::TellFocusAcross(bool got, HWND other) {
    const bool isInside = other && (other == Window() || IsChild(Window(), other));
    if (Window() && !isInside)
        TellFocus(got);
}

// The window answers WM_GETDLGCODE itself: it wants arrows, tab and all keys.
bool CTarnCommCtl::OnCommWindowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message == WM_SETFOCUS || message == WM_KILLFOCUS)
        TellFocusAcross(message == WM_SETFOCUS, reinterpret_cast<HWND>(wParam));
    for (const MessageRow& row : messages) {
        if (row.id != message)
            continue;
        const Answered answered =
            row.answer({*this, m_nLastMouseMessage, m_hWndComm, message, wParam, lParam});
        result = answered.result;
        return answered.follows == Follows::Nothing;
    }
    return false;
}
