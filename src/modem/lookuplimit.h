// The object's look-up time-out, another one for as long as a modem's answer is awaited.
#pragma once

#include "core/live.h"
#include "TarnComm.h"

// Each change starts the automatic look-up anew.
class LookUpLimit {
  public:
    LookUpLimit(const COMCTL& record, LONG milliseconds)
        : watch_(record), hWnd_(record.hWnd), before_(record.lLookUpTimeOut) {
        SetLookUpTimeOut(hWnd_, milliseconds);
    }
    ~LookUpLimit() {
        if (watch_.Alive())
            SetLookUpTimeOut(hWnd_, before_);
    }
    LookUpLimit(const LookUpLimit&) = delete;
    LookUpLimit& operator=(const LookUpLimit&) = delete;

  private:
    ObjectWatch watch_;
    HWND hWnd_;
    LONG before_; // ms
};
