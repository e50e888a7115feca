// A file descriptor with one owner.
#pragma once

#include <unistd.h>
#include <utility>

class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, kNone)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~UniqueFd() { Reset(); }

    int Get() const { return fd_; }
    explicit operator bool() const { return fd_ != kNone; }
    void Reset() {
        if (fd_ != kNone)
            close(std::exchange(fd_, kNone));
    }

  private:
    static constexpr int kNone = -1;
    int fd_ = kNone;
};
