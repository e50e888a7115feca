#include "memorylimit.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>
#include <thread>

namespace {

constexpr size_t noLimit = std::numeric_limits<size_t>::max();

std::atomic<size_t> limit{noLimit};
std::atomic<std::thread::id> limited;
std::atomic<int> refusals{0};

bool IsRefused(size_t size) {
    return size > limit && std::this_thread::get_id() == limited.load();
}

} // namespace

namespace host {

MemoryLimit::MemoryLimit(size_t bytes) {
    refusals = 0;
    limited = std::this_thread::get_id();
    limit = bytes;
}

MemoryLimit::~MemoryLimit() {
    limit = noLimit;
}

int MemoryLimit::Refusals() const {
    return refusals;
}

} // namespace host

// The array and the quiet forms come here by themselves.
void* operator new(size_t size) {
    if (IsRefused(size)) {
        ++refusals;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
