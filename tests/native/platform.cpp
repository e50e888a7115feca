#include "platform.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <new>
#include <string_view>

namespace {

constexpr size_t noLimit = std::numeric_limits<size_t>::max();

std::atomic<DWORD> tick;
std::atomic<int> openHandles;
std::atomic<size_t> memoryLimit{noLimit};
std::atomic<bool> eventsFail;
thread_local DWORD lastError;

struct Event {
    bool staysSet;
    bool isSet;
};

std::mutex eventLock; // guards the state of all events
std::condition_variable eventSet;

// The index of the first event that is set, or count. Takes the signal of one that resets itself.
DWORD TakeSignal(const HANDLE* handles, DWORD count) {
    for (DWORD i = 0; i < count; ++i) {
        auto* event = static_cast<Event*>(handles[i]);
        if (!event->isSet)
            continue;
        event->isSet = event->staysSet;
        return i;
    }
    return count;
}

std::string_view Counted(const char* text, int length) {
    return length < 0 ? std::string_view(text) : std::string_view(text, static_cast<size_t>(length));
}

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool UpperLess(char left, char right) {
    return static_cast<unsigned char>(Upper(left)) < static_cast<unsigned char>(Upper(right));
}

} // namespace

namespace platform {

void SetTick(DWORD value) {
    tick = value;
}

void AdvanceTick(DWORD milliseconds) {
    tick += milliseconds;
}

int OpenHandles() {
    return openHandles;
}

MemoryLimit::MemoryLimit(size_t bytes) {
    memoryLimit = bytes;
}

MemoryLimit::~MemoryLimit() {
    memoryLimit = noLimit;
}

NoEvents::NoEvents() {
    eventsFail = true;
}

NoEvents::~NoEvents() {
    eventsFail = false;
}

} // namespace platform

void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    if (size > memoryLimit)
        return nullptr;
    try {
        return ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

DWORD WINAPI GetTickCount() {
    return tick;
}

void WINAPI Sleep(DWORD milliseconds) {
    tick += milliseconds;
}

DWORD WINAPI GetLastError() {
    return lastError;
}

void WINAPI SetLastError(DWORD error) {
    lastError = error;
}

HANDLE WINAPI CreateEventA(LPSECURITY_ATTRIBUTES, BOOL manual, BOOL signalled, LPCSTR) {
    if (eventsFail)
        return nullptr;
    ++openHandles;
    return new Event{manual != FALSE, signalled != FALSE};
}

BOOL WINAPI CloseHandle(HANDLE handle) {
    delete static_cast<Event*>(handle);
    --openHandles;
    return TRUE;
}

BOOL WINAPI SetEvent(HANDLE handle) {
    if (!handle)
        return FALSE;
    {
        std::scoped_lock guard(eventLock);
        static_cast<Event*>(handle)->isSet = true;
    }
    eventSet.notify_all();
    return TRUE;
}

DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL, DWORD milliseconds) {
    if (std::find(handles, handles + count, nullptr) != handles + count)
        return WAIT_FAILED;
    std::unique_lock guard(eventLock);
    DWORD taken = count;
    const auto signalled = [&] {
        taken = TakeSignal(handles, count);
        return taken != count;
    };
    if (!eventSet.wait_for(guard, std::chrono::milliseconds(milliseconds), signalled))
        return WAIT_TIMEOUT;
    return WAIT_OBJECT_0 + taken;
}

// Of the flags only NORM_IGNORECASE is known. What the real one makes of locales is tested on the platform.
int WINAPI CompareStringA(LCID, DWORD, LPCSTR first, int firstLength, LPCSTR second, int secondLength) {
    const std::string_view left = Counted(first, firstLength);
    const std::string_view right = Counted(second, secondLength);
    if (std::ranges::lexicographical_compare(left, right, UpperLess))
        return CSTR_LESS_THAN;
    return std::ranges::lexicographical_compare(right, left, UpperLess) ? CSTR_GREATER_THAN : CSTR_EQUAL;
}
