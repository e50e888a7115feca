// The one wait primitive: keeps the host's windows alive while the object waits. Window's thread only.
#pragma once

#include "comctl.h"

// What a waiting loop looks for between two turns of the idle loop; it decides how soon the pause may end.
enum class IdleFor {
    Time,   // the clock alone
    Input,  // bytes in the input queue
    Output, // an empty output queue
};

inline constexpr DWORD IdlePause = 50; // ms, the longest pause of one turn

// One turn: counts itself in nBusy, runs the host's idle handler or the thread's messages, and pauses until
// something may have come, longestPause ms at the most. False: the object is gone, touch nothing of it.
bool IdleLoop(COMCTL* record, IdleFor what, DWORD longestPause = IdlePause);

// Waits for a handle and serves the messages that other threads send to this thread meanwhile, posting and
// input left alone. WAIT_OBJECT_0 or WAIT_TIMEOUT.
DWORD WaitServingSentMessages(HANDLE handle, DWORD milliseconds);
