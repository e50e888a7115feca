// The waits that a host asks for. Each runs the idle loop until its condition or its limit.
#include "deadline.h"
#include "growingpause.h"
#include "idle.h"
#include "live.h"
#include "portstatus.h"
#include "TarnComm.h"

#include <algorithm>

namespace {

DWORD PauseUntil(const Deadline& deadline) {
    return std::min(IdlePause, deadline.Left());
}

// Waits until a count has come to 0; does not make it so. 1 if it has.
int WaitUntilEmpty(HWND hWnd, LONG lTimeOut, IdleFor what, int LineCounts::*queue) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return 0;
    const ObjectWatch watch(*record);
    const Deadline deadline(lTimeOut);
    for (;;) {
        const int count = record->bPortOpen ? ReadLineStatus(*record).*queue : 0;
        if (watch.Gone())
            return 0;
        if (!count)
            return 1;
        if (!IdleLoop(record, what, PauseUntil(deadline)))
            return 0;
        if (record->bShutDown || deadline.Passed())
            return 0;
    }
}

} // namespace

void TARNAPI ComPause(HWND hWnd, LONG lTime) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return;
    const Deadline end(lTime);
    while (!end.Passed() && !record->bShutDown)
        if (!IdleLoop(record, IdleFor::Time, PauseUntil(end)))
            return;
}

int TARNAPI WaitForInput(HWND hWnd, LONG lTimeOut) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return 0;
    const ObjectWatch watch(*record);
    const Deadline end(lTimeOut);
    GrowingPause pause(IdlePause); // short at first, since a fast line has more in no time
    for (;;) {
        const int count = record->bPortOpen ? ReadLineStatus(*record).input : 0;
        if (watch.Gone())
            return 0;
        if (count)
            return 1;
        if (!record->bPortOpen || record->bShutDown || end.Passed())
            return 0;
        if (!IdleLoop(record, IdleFor::Input, std::min(pause.Next(), PauseUntil(end))))
            return 0;
    }
}

int TARNAPI FlushInputBuffer(HWND hWnd, LONG lTimeOut) {
    return WaitUntilEmpty(hWnd, lTimeOut, IdleFor::Input, &LineCounts::input);
}

int TARNAPI FlushOutputBuffer(HWND hWnd, LONG lTimeOut) {
    return WaitUntilEmpty(hWnd, lTimeOut, IdleFor::Output, &LineCounts::output);
}

DWORD TARNAPI CreateTimer(DWORD lTime) {
    const DWORD now = GetTickCount();
    return now + lTime < now ? MAXDWORD : now + lTime;
}
