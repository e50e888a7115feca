#include "pacing.h"

#include <algorithm>

namespace {

constexpr long kBitsPerByte = 10;
constexpr Nanoseconds kSlice = kMillisecond;
// A process that was not scheduled catches up, but never by a burst longer than this.
constexpr Nanoseconds kCatchUpLimit = 100 * kMillisecond;
// What an unpaced line holds; the most that a pty takes at once is about as much.
constexpr std::size_t kWindow = 64 * 1024;
// With latency a line holds more, so that it does not slow down: 20 MB/s for 50 ms.
constexpr std::size_t kLatencyWindow = 1024 * 1024;
// A paced line reads ahead by what it may have to catch up, no more, so that the sender feels the rate.
constexpr std::size_t kSlicesAhead = kCatchUpLimit / kSlice;
constexpr std::size_t kLeastAhead = 16;

} // namespace

void Pacer::SetBaud(long baud) {
    baud_ = baud;
    byteTime_ = baud > 0 ? (kBitsPerByte * kSecond + baud / 2) / baud : 0;
}

std::size_t Pacer::BytesPerSlice() const {
    return static_cast<std::size_t>(std::max<Nanoseconds>(1, kSlice / std::max<Nanoseconds>(1, byteTime_)));
}

std::size_t Pacer::Room() const {
    const std::size_t window = latency_ > 0 ? kLatencyWindow : kWindow;
    if (InFlight() >= window)
        return 0;
    if (byteTime_ == 0)
        return window - InFlight();
    const std::size_t ahead = std::max(kLeastAhead, kSlicesAhead * BytesPerSlice());
    return ahead > waiting_.Size() ? ahead - waiting_.Size() : 0;
}

void Pacer::Push(Bytes bytes, Nanoseconds now) {
    if (bytes.empty())
        return;
    if (waiting_.Empty())
        lineFree_ = std::max(lineFree_, now);
    waiting_.Push(bytes);
    Depart(now);
}

void Pacer::Depart(Nanoseconds now) {
    if (waiting_.Empty())
        return;
    if (byteTime_ == 0) {
        Send(waiting_.All(), now);
        waiting_.Clear();
        return;
    }
    lineFree_ = std::max(lineFree_, now - kCatchUpLimit);
    const std::size_t due = now > lineFree_ ? static_cast<std::size_t>((now - lineFree_) / byteTime_) : 0;
    const std::size_t count = std::min(due, waiting_.Size());
    if (count == 0)
        return;
    lineFree_ += static_cast<Nanoseconds>(count) * byteTime_;
    Send(waiting_.Front(count), now);
    waiting_.Pop(count);
}

void Pacer::Send(Bytes bytes, Nanoseconds now) {
    travelling_.Push(bytes);
    parcels_.push_back({now + latency_, bytes.size()});
}

Bytes Pacer::Arrived(Nanoseconds now, std::size_t limit) {
    Depart(now);
    std::size_t count = 0;
    for (const Parcel& parcel : parcels_) {
        if (parcel.due > now || count >= limit)
            break;
        count += parcel.count;
    }
    return travelling_.Front(std::min(count, limit));
}

void Pacer::Pop(std::size_t count) {
    travelling_.Pop(count);
    while (count > 0) {
        Parcel& first = parcels_.front();
        const std::size_t part = std::min(count, first.count);
        first.count -= part;
        count -= part;
        if (first.count == 0)
            parcels_.pop_front();
    }
}

void Pacer::Stall(Nanoseconds now) {
    lineFree_ = std::max(lineFree_, now);
}

Nanoseconds Pacer::NextDue() const {
    Nanoseconds next = parcels_.empty() ? kNever : parcels_.front().due;
    if (!waiting_.Empty()) {
        const std::size_t count = std::min(waiting_.Size(), BytesPerSlice());
        next = std::min(next, lineFree_ + static_cast<Nanoseconds>(count) * byteTime_);
    }
    return next;
}

void Pacer::Clear() {
    waiting_.Clear();
    travelling_.Clear();
    parcels_.clear();
    lineFree_ = 0;
}
