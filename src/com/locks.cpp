#include "locks.h"

#include <atomic>

namespace {

std::atomic<LONG> locks{0};

} // namespace

LONG ModuleLockCount() noexcept {
    return locks;
}

ModuleLock::ModuleLock() noexcept {
    ++locks;
}

ModuleLock::~ModuleLock() {
    --locks;
}

void LockModule(bool lock) noexcept {
    locks += lock ? 1 : -1;
}
