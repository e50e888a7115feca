#include "idle.h"

#include "deadline.h"
#include "live.h"
#include "writer.h"

#include <algorithm>

namespace {

// Input and the driver's output queue have no event that every open port can offer (a port with a timer has
// no monitor, and a monitor inside its own tick hears nothing), so their waits look again after this many ms.
constexpr DWORD inputPoll = 5;
constexpr DWORD outputPoll = 2;
constexpr DWORD longestTurn = 50; // ms

// Counts a running idle loop in the record, and takes it back if the object still stands.
class BusyCount {
  public:
    explicit BusyCount(COMCTL& record) : watch_(record), record_(record) { ++record_.nBusy; }
    ~BusyCount() {
        if (watch_.Alive())
            --record_.nBusy;
    }
    BusyCount(const BusyCount&) = delete;
    BusyCount& operator=(const BusyCount&) = delete;

  private:
    ObjectWatch watch_;
    COMCTL& record_;
};

// Lets other threads' sent messages in, and leaves the queue as it is.
void ServeSentMessages() {
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

// True if the next message is worth waking for. Windows that always have a message more must not keep a wait
// from its limit. The wide functions, as the host's windows may be of that kind.
bool PumpMessages(const COMCTL& record, const ObjectWatch& watch) {
    const Deadline turn(longestTurn);
    MSG message;
    while (!turn.Passed() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        if (watch.Gone() || record.bShutDown)
            return false;
        TranslateMessage(&message);
        DispatchMessageW(&message);
        if (watch.Gone() || record.bShutDown)
            return false;
    }
    return true;
}

DWORD PauseFor(IdleFor what, DWORD longestPause) {
    switch (what) {
    case IdleFor::Time:
        return longestPause;
    case IdleFor::Input:
        return std::min(longestPause, inputPoll);
    case IdleFor::Output:
        return std::min(longestPause, outputPoll);
    }
    return longestPause;
}

} // namespace

DWORD WaitServingSentMessages(HANDLE handle, DWORD milliseconds) {
    const Deadline deadline(milliseconds);
    for (;;) {
        const DWORD left = milliseconds == INFINITE ? INFINITE : deadline.Left();
        const DWORD woken = MsgWaitForMultipleObjects(1, &handle, FALSE, left, QS_SENDMESSAGE);
        if (woken != WAIT_OBJECT_0 + 1)
            return woken;
        ServeSentMessages();
    }
}

bool IdleLoop(COMCTL* record, IdleFor what, DWORD longestPause) {
    if (!IsLive(record))
        return false;
    const ObjectWatch watch(*record);
    const HWND hWnd = record->hWnd;
    const BusyCount busy(*record);
    bool wakeForMessages = false;
    if (record->lpfnIdleLoop)
        record->lpfnIdleLoop();
    else
        wakeForMessages = PumpMessages(*record, watch);
    if (watch.Gone() || record->bShutDown)
        return watch.Alive();

    HANDLE drained = nullptr;
    if (what == IdleFor::Output && record->lpOverlappedWrite)
        drained = record->lpOverlappedWrite->DrainedEvent();
    const DWORD handles = drained ? 1 : 0;
    // Messages that nobody takes off the queue must not end each pause at once: then only sent ones count.
    const DWORD mask = wakeForMessages ? QS_ALLINPUT : QS_SENDMESSAGE;
    const DWORD woken =
        MsgWaitForMultipleObjects(handles, &drained, FALSE, PauseFor(what, longestPause), mask);
    if (woken == WAIT_OBJECT_0 + handles && !wakeForMessages)
        ServeSentMessages();
    return RecordOf(hWnd) == record;
}
