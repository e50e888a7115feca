#include "portmonitor.h"

#include "comapartment.h"
#include "growingpause.h"
#include "overlapped.h"
#include "stoppablesend.h"
#include "TarnComm.h"

namespace {

struct CharacterWait : OverlappedCall {
    DWORD mask = 0;
};

enum class WaitResult {
    Stopped,
    Ticks,  // the line has something
    Nothing // the wait ended with nothing, or failed
};

// A wait that ends at once although nothing has changed (bytes that the host leaves unread, a device that is
// gone) would spin. Each such turn makes the pause before the next one longer, up to this many ms.
constexpr DWORD LongestSlowdown = 40;

class Monitor {
  public:
    Monitor(HWND hWnd, HANDLE hStop)
        : device_(GetCommID(hWnd)), hStop_(hStop), sender_(hWnd, hStop),
          wait_(std::make_unique<CharacterWait>()) {}

    void Run() {
        SetCommMask(device_, EV_RXCHAR);
        for (;;) {
            const WaitResult result = WaitForCharacter();
            if (result == WaitResult::Stopped)
                return;
            if (!TickAndPause(result))
                return;
        }
    }

  private:
    WaitResult WaitForCharacter() {
        if (!wait_ || !wait_->Prepare())
            return WaitResult::Nothing;
        wait_->mask = 0;
        if (WaitCommEvent(device_, &wait_->mask, &wait_->state))
            return wait_->mask & EV_RXCHAR ? WaitResult::Ticks : WaitResult::Nothing;
        if (GetLastError() != ERROR_IO_PENDING)
            return WaitResult::Nothing;
        const HANDLE handles[] = {hStop_, wait_->done.get()};
        if (WaitForMultipleObjects(2, handles, FALSE, INFINITE) == WAIT_OBJECT_0) {
            SetCommMask(device_, 0); // ends the wait
            EndPendingCall(device_, std::move(wait_));
            return WaitResult::Stopped;
        }
        return WaitResult::Ticks;
    }

    // False when it is time to stop.
    bool TickAndPause(WaitResult result) {
        LRESULT answer = TickFoundNothing;
        if (result == WaitResult::Ticks) {
            const auto sent = sender_.Send(WM_TIMER, 0, 0, TickFoundNothing);
            if (!sent)
                return false;
            answer = *sent;
        }
        const bool newBytes = answer == 0 || (answer > 0 && answer != unread_);
        unread_ = answer;
        if (newBytes) {
            slowdown_.Reset();
            return true;
        }
        return WaitForSingleObject(hStop_, slowdown_.Next()) == WAIT_TIMEOUT;
    }

    HANDLE device_;
    HANDLE hStop_;
    StoppableSend sender_;
    std::unique_ptr<CharacterWait> wait_;
    GrowingPause slowdown_{LongestSlowdown};
    LRESULT unread_ = 0;
};

} // namespace

CMonitorThread::CMonitorThread(HWND hWnd) : hWnd_(hWnd), hStop_(ManualResetEvent()) {
    hThread_ = StartModuleThread([hWnd, hStop = hStop_.get()] {
        Monitor monitor(hWnd, hStop);
        // Left before the monitor goes: leaving it may still serve a late answer to a tick.
        ComApartment apartment;
        monitor.Run();
    });
}

CMonitorThread::~CMonitorThread() {
    SetEvent(hStop_.get());
    EndModuleThread(std::move(hThread_), MonitorStopLimit);
}
