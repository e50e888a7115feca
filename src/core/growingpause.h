// The pause of somebody who looks again and again: each is twice as long as the one before, up to a limit.
#pragma once

#include <windows.h>

#include <algorithm>

class GrowingPause {
  public:
    explicit GrowingPause(DWORD longest) : longest_(longest) {}

    void Reset() { pause_ = 0; }

    // Milliseconds, from 1 on.
    DWORD Next() {
        pause_ = pause_ ? std::min(pause_ * 2, longest_) : 1;
        return pause_;
    }

  private:
    DWORD longest_;
    DWORD pause_ = 0;
};
