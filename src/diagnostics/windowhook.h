// What meets a window's messages before the window's own procedure does.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>

class WindowHook {
  public:
    // The answer; nothing: the message goes on to the window.
    using Handler = std::function<std::optional<LRESULT>(UINT uMsg, WPARAM wParam, LPARAM lParam)>;

    WindowHook() = default;
    ~WindowHook();
    WindowHook(const WindowHook&) = delete;
    WindowHook& operator=(const WindowHook&) = delete;

    // Once; the window may go before the hook does. What the handler throws ends here.
    void Set(HWND hWnd, Handler handler);

    // Null once the window has gone.
    HWND Window() const { return hWnd; }

  private:
    static LRESULT CALLBACK Procedure(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR hook);

    HWND hWnd = nullptr;
    Handler handler;
};

// Where the mouse is, as a message tells it.
inline POINT PointOf(LPARAM lParam) {
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}
