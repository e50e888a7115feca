// The receiving side of one end: what has arrived and the host has not read.
//
// Without a FIFO it holds a little and then refuses, so that nothing is lost. With a FIFO of N bytes it never
// refuses: what arrives while N bytes are unread is dropped, as a UART does.
#pragma once

#include "byte_queue.h"

class Pty;

class Receiver {
  public:
    // 0 is no FIFO.
    void SetCapacity(std::size_t bytes) { capacity_ = bytes; }
    std::size_t Capacity() const { return capacity_; }

    // How many bytes may be offered.
    std::size_t Room() const;
    // Returns how many bytes found no room in the FIFO.
    std::size_t Offer(Bytes bytes, const Pty& pty);
    // Moves held bytes into the pty as far as it takes them.
    void Feed(const Pty& pty);

    std::size_t Held() const { return held_.Size(); }
    void Clear() { held_.Clear(); }

  private:
    void FeedFreely(const Pty& pty);
    void FeedLittle(const Pty& pty);

    std::size_t capacity_ = 0;
    ByteQueue held_;
};
