// Work for a thread that waits: timers of it.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace host {

// Runs an action on this thread again and again, while it waits.
class Every {
  public:
    Every(UINT milliseconds, std::function<void()> action)
        : action_(std::make_shared<std::function<void()>>(std::move(action))) {
        timer_ = SetTimer(nullptr, 0, milliseconds, OnTimer);
        Timers()[timer_] = this;
    }
    ~Every() { Stop(); }
    Every(const Every&) = delete;
    Every& operator=(const Every&) = delete;

    void Stop() {
        KillTimer(nullptr, timer_);
        Timers().erase(timer_);
    }

  private:
    static std::map<UINT_PTR, Every*>& Timers() {
        static std::map<UINT_PTR, Every*> timers;
        return timers;
    }
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD) {
        const auto found = Timers().find(timer);
        if (found == Timers().end())
            return;
        const auto action = found->second->action_; // held, since it may stop its timer
        (*action)();
    }

    std::shared_ptr<std::function<void()>> action_;
    UINT_PTR timer_;
};

// Milliseconds since its making.
class Clock {
  public:
    DWORD Gone() const { return GetTickCount() - start_; }

  private:
    DWORD start_ = GetTickCount();
};

// Acts once when the time has come.
inline std::unique_ptr<Every> After(UINT milliseconds, std::function<void()> action) {
    return std::make_unique<Every>(milliseconds, [action = std::move(action), done = false]() mutable {
        if (!std::exchange(done, true))
            action();
    });
}

// Acts once when the condition holds.
inline std::unique_ptr<Every> When(std::function<bool()> condition, std::function<void()> action) {
    return std::make_unique<Every>(
        5, [condition = std::move(condition), action = std::move(action), done = false]() mutable {
            if (done || !condition())
                return;
            done = true;
            action();
        });
}

// For three seconds the thread always has a message more.
inline std::unique_ptr<Every> Restless() {
    return std::make_unique<Every>(10, [clock = Clock()] {
        if (clock.Gone() < 3000)
            Sleep(20);
    });
}

} // namespace host
