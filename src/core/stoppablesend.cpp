#include "stoppablesend.h"

namespace {

constexpr DWORD checkWindowEvery = 1000; // ms

void ServeOwnMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
}

} // namespace

std::optional<LRESULT> StoppableSend::Send(UINT message, WPARAM wParam, LPARAM lParam, LRESULT unanswered) {
    answered_ = false;
    if (!SendMessageCallbackA(hWnd_, message, wParam, lParam, TakeAnswer, reinterpret_cast<ULONG_PTR>(this)))
        return unanswered;
    while (!answered_) {
        const DWORD woken = MsgWaitForMultipleObjects(1, &hStop_, FALSE, checkWindowEvery, QS_ALLINPUT);
        if (woken == WAIT_OBJECT_0 || woken == WAIT_FAILED)
            return std::nullopt;
        ServeOwnMessages();
        if (!answered_ && !IsWindow(hWnd_))
            return unanswered;
    }
    return answer_;
}

void CALLBACK StoppableSend::TakeAnswer(HWND, UINT, ULONG_PTR sender, LRESULT answer) {
    auto& self = *reinterpret_cast<StoppableSend*>(sender);
    self.answer_ = answer;
    self.answered_ = true;
}
