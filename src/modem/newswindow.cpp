#include "newswindow.h"

#include "diagnostics/swallow.h"

// A class of the system's own: nothing is registered that would outlive this module.
NewsWindow::NewsWindow(Take take)
    : take_(std::make_shared<const Take>(std::move(take))),
      hWnd_(CreateWindowExA(0, "Static", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    if (!hWnd_)
        return;
    SetWindowLongPtrA(hWnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrA(hWnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
}

NewsWindow::~NewsWindow() {
    if (!hWnd_)
        return;
    SetWindowLongPtrA(hWnd_, GWLP_USERDATA, 0);
    DestroyWindow(hWnd_);
}

LRESULT CALLBACK NewsWindow::Procedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    const auto* self = reinterpret_cast<const NewsWindow*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    if (!self || message != NewsWindow::message)
        return DefWindowProcA(hWnd, message, wParam, lParam);
    const std::shared_ptr<const Take> take = self->take_;
    try {
        (*take)(wParam);
    } catch (...) {
        SwallowException(reinterpret_cast<const char*>(lParam));
    }
    return 0;
}
