// RuntimeError: a system call failed where the code could not go on without it.
#pragma once

#include <windows.h>

#include <stdexcept>

class RuntimeError : public std::runtime_error {
  public:
    // Takes the system's message for the code and logs it.
    explicit RuntimeError(DWORD code);

    DWORD Code() const { return code_; }
    const char* Text() const { return text_; } // empty if the system knows no message

  private:
    DWORD code_;
    char text_[1000];
};
