#include "fifo.h"

#include "pty.h"

#include <algorithm>

namespace {

constexpr std::size_t kHoldLimit = 64 * 1024;

// With a FIFO so much of it stands in the pty. More than about 4095 would hide in kernel buffers where it
// cannot be counted.
constexpr std::size_t kUnreadLimit = 2048;

} // namespace

std::size_t Receiver::Room() const {
    if (capacity_ > 0 || Held() == 0)
        return kHoldLimit;
    return Held() < kHoldLimit ? kHoldLimit - Held() : 0;
}

std::size_t Receiver::Offer(Bytes bytes, const Pty& pty) {
    std::size_t taken = bytes.size();
    if (capacity_ > 0) {
        const std::size_t present = Held() + pty.Unread();
        taken = std::min(taken, capacity_ > present ? capacity_ - present : 0);
    }
    held_.Push(bytes.first(taken));
    Feed(pty);
    return bytes.size() - taken;
}

void Receiver::Feed(const Pty& pty) {
    if (capacity_ > 0)
        FeedLittle(pty);
    else
        FeedFreely(pty);
}

void Receiver::FeedFreely(const Pty& pty) {
    while (!held_.Empty()) {
        const std::size_t count = pty.Write(held_.All());
        if (count == 0)
            return;
        held_.Pop(count);
    }
}

void Receiver::FeedLittle(const Pty& pty) {
    if (held_.Empty())
        return;
    std::size_t unread = pty.Unread();
    while (!held_.Empty() && unread < kUnreadLimit) {
        const std::size_t fed = pty.Write(held_.Front(std::min(Held(), kUnreadLimit - unread)));
        if (fed == 0)
            return;
        held_.Pop(fed);
        unread = pty.UnreadAfterFeeding(unread, fed);
    }
}
