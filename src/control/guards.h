// The guard on the stack of a blocking property: refuses a second one meanwhile, and holds the control.
#pragma once

#include "TarnCommCtl.h"

class CBusyGuard {
  public:
    // Reports the refusal.
    CBusyGuard(CTarnCommCtl& control, const char* name);
    ~CBusyGuard();
    CBusyGuard(const CBusyGuard&) = delete;
    CBusyGuard& operator=(const CBusyGuard&) = delete;

    // S_OK, or what the caller returns.
    HRESULT Result() const { return result_; }

  private:
    ComPtr<CTarnCommCtl> control_;
    HRESULT result_ = S_OK;
};
