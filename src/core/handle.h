// Owners of the platform's handles. A kind of handle is one line of policy: its invalid value and how it
// closes.
#pragma once

#include <windows.h>

#include <utility>

// Closing must not hide the error that the caller is about to read.
class LastErrorKeeper {
  public:
    LastErrorKeeper() : error_(GetLastError()) {}
    ~LastErrorKeeper() { SetLastError(error_); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

  private:
    DWORD error_;
};

template <class Policy>
class UniqueHandle {
  public:
    using Value = typename Policy::Value;

    UniqueHandle() = default;
    explicit UniqueHandle(Value value) : value_(value) {}
    UniqueHandle(UniqueHandle&& other) noexcept : value_(other.release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~UniqueHandle() { reset(); }

    Value get() const { return value_; }
    explicit operator bool() const { return value_ != Policy::Invalid(); }
    Value release() { return std::exchange(value_, Policy::Invalid()); }
    void reset(Value value = Policy::Invalid()) {
        const Value old = std::exchange(value_, value);
        if (old == Policy::Invalid())
            return;
        LastErrorKeeper keeper;
        Policy::Close(old);
    }

  private:
    Value value_ = Policy::Invalid();
};

struct NullInvalid {
    using Value = HANDLE;
    static Value Invalid() { return nullptr; }
    static void Close(Value value) { CloseHandle(value); }
};

struct AllOnesInvalid {
    using Value = HANDLE;
    static Value Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(Value value) { CloseHandle(value); }
};

using EventHandle = UniqueHandle<NullInvalid>;
using ThreadHandle = UniqueHandle<NullInvalid>;
using FileMappingHandle = UniqueHandle<NullInvalid>;
using FileHandle = UniqueHandle<AllOnesInvalid>;

inline EventHandle ManualResetEvent() {
    return EventHandle(CreateEventA(nullptr, TRUE, FALSE, nullptr));
}

inline EventHandle AutoResetEvent() {
    return EventHandle(CreateEventA(nullptr, FALSE, FALSE, nullptr));
}
