// The few platform calls of the engines, as the native tests have them: a clock that tests set, events, a
// limit on memory.
#pragma once

#include <windows.h>

#include <cstddef>

namespace platform {

void SetTick(DWORD tick);
void AdvanceTick(DWORD milliseconds);

// Handles that were made and not closed.
int OpenHandles();

// While it lives, an array that asks for more bytes gets none, where the caller is prepared for that.
class MemoryLimit {
  public:
    explicit MemoryLimit(size_t bytes);
    ~MemoryLimit();
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;
};

// While it lives, no event can be made.
class NoEvents {
  public:
    NoEvents();
    ~NoEvents();
    NoEvents(const NoEvents&) = delete;
    NoEvents& operator=(const NoEvents&) = delete;
};

} // namespace platform
