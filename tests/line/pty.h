// One pty in raw mode. Both sides stay open here, so that a host that closes its side hangs nothing up.
#pragma once

#include "byte_queue.h"
#include "unique_fd.h"

#include <string>

class Pty {
  public:
    Pty(); // throws std::system_error

    int Master() const { return master_.Get(); }
    const std::string& Path() const { return path_; }
    unsigned Minor() const { return minor_; }

    // Bytes that the host has not read yet, at most about 4095 (the line discipline's buffer).
    std::size_t Unread() const;
    // The same after `fed` bytes went in on top of `before`: gives the kernel a moment to move them across.
    std::size_t UnreadAfterFeeding(std::size_t before, std::size_t fed) const;

    // The count that went through; 0 when it would block.
    std::size_t Read(std::span<std::uint8_t> room) const;
    std::size_t Write(Bytes bytes) const;

    // Throws away what either side has written and the other has not read.
    void Flush() const;

  private:
    UniqueFd master_;
    UniqueFd slave_;
    std::string path_;
    unsigned minor_ = 0;
};
