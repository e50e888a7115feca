// The time that bytes take on the line: a rate in bits per second and a latency.
//
// Bytes wait until the line is free, leave one after the other, then travel. A line that has been idle starts
// at its rate, with no credit from the idle time.
#pragma once

#include "byte_queue.h"
#include "clock.h"

#include <deque>

class Pacer {
  public:
    // 10 bits make a byte; 0 is no pacing at all.
    void SetBaud(long baud);
    long Baud() const { return baud_; }
    void SetLatency(long milliseconds) { latency_ = milliseconds * kMillisecond; }
    long Latency() const { return static_cast<long>(latency_ / kMillisecond); }

    // How many bytes may be pushed now.
    std::size_t Room() const;
    void Push(Bytes bytes, Nanoseconds now);

    // Moves bytes on and returns those that have arrived, at most `limit`. Pop takes them away.
    Bytes Arrived(Nanoseconds now, std::size_t limit);
    void Pop(std::size_t count);

    // The receiver takes nothing: time that passes meanwhile is no credit.
    void Stall(Nanoseconds now);

    // When Arrived is worth asking again.
    Nanoseconds NextDue() const;
    std::size_t InFlight() const { return waiting_.Size() + travelling_.Size(); }
    void Clear();

  private:
    struct Parcel {
        Nanoseconds due;
        std::size_t count;
    };

    void Depart(Nanoseconds now);
    void Send(Bytes bytes, Nanoseconds now);
    std::size_t BytesPerSlice() const;

    long baud_ = 0;
    Nanoseconds byteTime_ = 0;
    Nanoseconds latency_ = 0;
    Nanoseconds lineFree_ = 0; // when the byte before the first waiting one has left
    ByteQueue waiting_;
    ByteQueue travelling_;
    std::deque<Parcel> parcels_; // cut travelling_ into pieces with one due time
};
