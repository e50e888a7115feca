// What a host program brings: a comm object with its events recorded, and a message loop with a limit.
#pragma once

#include "TarnComm.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace host {

// Runs the thread's messages until the condition holds. False: the limit passed first.
inline bool PumpUntil(const std::function<bool()>& condition, DWORD limitMilliseconds = 5000) {
    const DWORD start = GetTickCount();
    for (;;) {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        if (condition())
            return true;
        if (GetTickCount() - start >= limitMilliseconds)
            return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 2, QS_ALLINPUT);
    }
}

// For things that must not happen: runs the messages for a while.
inline void Pump(DWORD milliseconds) {
    PumpUntil([] { return false; }, milliseconds);
}

class CommObject {
  public:
    using Handler = std::function<void(int code)>;

    explicit CommObject(HWND parent = nullptr) : hWnd_(CreateCommObject(parent)) {
        Objects()[hWnd_] = this;
        SetEventHandler(hWnd_, OnEvent);
    }
    ~CommObject() {
        SetShutDown(hWnd_, 1);
        DestroyCommObject(hWnd_);
        Objects().erase(hWnd_);
    }
    CommObject(const CommObject&) = delete;
    CommObject& operator=(const CommObject&) = delete;

    operator HWND() const { return hWnd_; }
    HWND Handle() const { return hWnd_; }

    // Opens a port; the reason of a failure, or nothing.
    std::string Open(const char* port, const char* settings = "115200,n,8,1") {
        char error[TARN_ERROR_TEXT_SIZE] = {};
        SetCommPort(hWnd_, port);
        SetSettings(hWnd_, settings);
        return SetPortOpen(hWnd_, 1, error) ? "" : std::string("failed: ") + error;
    }
    void Close() { SetPortOpen(hWnd_, 0, nullptr); }

    const std::vector<int>& Events() const { return events_; }
    void ForgetEvents() { events_.clear(); }
    int Count(int code) const { return static_cast<int>(std::count(events_.begin(), events_.end(), code)); }
    bool Saw(int code) const { return Count(code) > 0; }

    // Runs inside the event, after it was recorded.
    void OnEventDo(Handler handler) { handler_ = std::move(handler); }

  private:
    static std::map<HWND, CommObject*>& Objects() {
        static std::map<HWND, CommObject*> objects;
        return objects;
    }
    static void CALLBACK OnEvent(HWND object, int, int code) {
        const auto found = Objects().find(object);
        if (found == Objects().end())
            return;
        found->second->events_.push_back(code);
        const Handler handler = found->second->handler_;
        if (handler)
            handler(code);
    }

    HWND hWnd_;
    std::vector<int> events_;
    Handler handler_;
};

} // namespace host
