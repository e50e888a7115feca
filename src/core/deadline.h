// Time limits in milliseconds of the system's tick count.
#pragma once

#include <windows.h>

// A limit counted from its making. It measures the time that has gone, so a wrap of the tick count is no end.
class Deadline {
  public:
    explicit Deadline(DWORD milliseconds) : start_(GetTickCount()), length_(milliseconds) {}
    explicit Deadline(LONG milliseconds) : Deadline(static_cast<DWORD>(milliseconds)) {}

    bool Passed() const { return Gone() >= length_; }
    DWORD Left() const { return Passed() ? 0 : length_ - Gone(); }

  private:
    DWORD Gone() const { return GetTickCount() - start_; }

    DWORD start_;
    DWORD length_;
};
