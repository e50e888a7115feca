// CMonitorThread: waits on the line of one open port that has no timer, and ticks its window for each byte
// that comes. It touches nothing of the record but the device handle, which it asks for once at its start.
#pragma once

#include "thread.h"

inline constexpr DWORD MonitorStopLimit = 2000; // ms until a monitor that won't stop is terminated

class CMonitorThread {
  public:
    explicit CMonitorThread(HWND hWnd);
    virtual ~CMonitorThread();
    CMonitorThread(const CMonitorThread&) = delete;
    CMonitorThread& operator=(const CMonitorThread&) = delete;

  private:
    HWND hWnd_;
    EventHandle hStop_;
    WorkerHandle hThread_;
};

// What a tick tells the monitor that sent it: the bytes that it left unread, or that there were none at all.
inline constexpr LRESULT TickFoundNothing = -1;
