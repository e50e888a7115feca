// Sends a message from a thread of the module to an object's window and waits for the answer, or until the
// thread is told to stop: the window's thread may be waiting for this very thread to end, so it must not be
// waited for then. A late answer may still come to the sender, which therefore lives as long as its thread
// serves messages.
#pragma once

#include <windows.h>

#include <optional>

class StoppableSend {
  public:
    StoppableSend(HWND hWnd, HANDLE hStop) : hWnd_(hWnd), hStop_(hStop) {}
    StoppableSend(const StoppableSend&) = delete;
    StoppableSend& operator=(const StoppableSend&) = delete;

    // The answer, or unanswered where there is no window to give one; nothing when it is time to stop.
    std::optional<LRESULT> Send(UINT message, WPARAM wParam, LPARAM lParam, LRESULT unanswered);

  private:
    static void CALLBACK TakeAnswer(HWND hWnd, UINT message, ULONG_PTR sender, LRESULT answer);

    HWND hWnd_;
    HANDLE hStop_;
    bool answered_ = false;
    LRESULT answer_ = 0;
};
