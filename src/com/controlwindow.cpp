#include "controlwindow.h"

#include "modulefile.h"
#include "wall.h"

#include <olectl.h>

using Microsoft::WRL::ComPtr;

namespace {

constexpr DWORD style = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;

OleControl* ControlOf(HWND window) {
    return reinterpret_cast<OleControl*>(GetWindowLongPtrA(window, 0));
}

void SetControl(HWND window, OleControl* control) {
    SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(control));
}

} // namespace

bool ControlWindow::RegisterWindowClass(const char* name) {
    WNDCLASSA existing = {};
    if (GetClassInfoA(ModuleInstance(), name, &existing))
        return true;
    WNDCLASSA window = {};
    window.style = CS_DBLCLKS;
    window.lpfnWndProc = Procedure;
    window.cbWndExtra = sizeof(OleControl*);
    window.hInstance = ModuleInstance();
    window.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    window.lpszClassName = name;
    return RegisterClassA(&window) || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

bool ControlWindow::Create(OleControl& control, HWND parent) {
    const char* name = control.Facts().windowClass;
    const RECT& at = control.position_;
    return RegisterWindowClass(name) &&
           CreateWindowExA(0, name, "", style, at.left, at.top, at.right - at.left, at.bottom - at.top,
                           parent, nullptr, ModuleInstance(), &control);
}

LRESULT CALLBACK ControlWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        auto* control =
            static_cast<OleControl*>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams);
        SetControl(window, control);
        control->window_ = window;
    }
    OleControl* control = ControlOf(window);
    if (!control)
        return DefWindowProcA(window, message, wParam, lParam);
    const ComPtr<IUnknown> keep(control->Identity());
    LRESULT result = message == WM_CREATE ? -1 : 0;
    AsResult([&] {
        result = control->AnswerWindow(message, wParam, lParam);
        return S_OK;
    });
    if (message == WM_NCDESTROY) {
        SetControl(window, nullptr);
        control->window_ = nullptr;
    }
    return result;
}

void UnregisterControlWindow(const char* windowClass) noexcept {
    UnregisterClassA(windowClass, ModuleInstance());
}

LRESULT OleControl::AnswerWindow(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND window = window_; // a hook may destroy it
    TellContainer(message, wParam);
    if (message == WM_CREATE)
        return OnWindowCreated() ? 0 : -1;
    if (message == WM_DESTROY)
        OnWindowDestroyed();
    LRESULT result = 0;
    if (OnMessage(message, wParam, lParam, result))
        return result;
    if (message == WM_PAINT && window_) {
        PaintWindow();
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

// What the container's protocol wants before the control may have the message.
void OleControl::TellContainer(UINT message, WPARAM wParam) {
    if (message == WM_SETFOCUS) {
        TellFocus(true);
    } else if (message == WM_KILLFOCUS) {
        if (!window_ || !IsChild(window_, reinterpret_cast<HWND>(wParam)))
            TellFocus(false);
    } else if (message == WM_MOUSEACTIVATE && inPlaceActive_ && Ambient().IsUserMode()) {
        Activate(true, nullptr);
    }
}

void OleControl::TellFocus(bool got) {
    if (got && inPlaceActive_ && !uiActive_)
        Activate(true, nullptr);
    ComPtr<IOleControlSite> site;
    if (clientSite_ && SUCCEEDED(clientSite_.As(&site)))
        site->OnFocus(got);
}

bool OleControl::FocusIsInside() const {
    const HWND focus = GetFocus();
    return focus && (focus == window_ || IsChild(window_, focus));
}
