#include "windowhook.h"

#include "swallow.h"

#include <commctrl.h>

namespace {

constexpr UINT_PTR hookId = 1;

std::optional<LRESULT> AnswerOf(const WindowHook::Handler& handler, UINT uMsg, WPARAM wParam,
                                LPARAM lParam) noexcept {
    try {
        return handler(uMsg, wParam, lParam);
    } catch (...) {
        SwallowException("WindowHook::Procedure");
        return {};
    }
}

} // namespace

WindowHook::~WindowHook() {
    if (hWnd)
        RemoveWindowSubclass(hWnd, Procedure, hookId);
}

void WindowHook::Set(HWND hHooked, Handler answers) {
    handler = std::move(answers);
    if (SetWindowSubclass(hHooked, Procedure, hookId, reinterpret_cast<DWORD_PTR>(this)))
        hWnd = hHooked;
}

LRESULT CALLBACK WindowHook::Procedure(HWND hHooked, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                       DWORD_PTR parameter) {
    auto* hook = reinterpret_cast<WindowHook*>(parameter);
    if (uMsg == WM_NCDESTROY) {
        RemoveWindowSubclass(hHooked, Procedure, id);
        hook->hWnd = nullptr;
        return DefSubclassProc(hHooked, uMsg, wParam, lParam);
    }
    const std::optional<LRESULT> answer = AnswerOf(hook->handler, uMsg, wParam, lParam);
    return answer ? *answer : DefSubclassProc(hHooked, uMsg, wParam, lParam);
}
