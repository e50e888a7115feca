// The module's lock count: it stays in memory while an object, a factory or LockServer holds one.
#pragma once

#include <windows.h>

LONG ModuleLockCount() noexcept;

// One lock, for as long as it lives.
class ModuleLock {
  public:
    ModuleLock() noexcept;
    ~ModuleLock();
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;
};

// LockServer's share of the count.
void LockModule(bool lock) noexcept;
