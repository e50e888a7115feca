// CRingBuffer: a byte ring between one who writes blocks and one who takes pieces. Its own lock guards it.
// The data event is signalled when the first bytes come, and by each take that leaves some. A call to the
// system for each event is what a fast line pays for most, so events that nobody waits for are not set.
#pragma once

#include "handle.h"

#include <memory>
#include <mutex>

class CRingBuffer {
  public:
    // hStop ends a write that waits for room; it is borrowed. If memory is out, the ring has no room at all.
    CRingBuffer(int cbSize, HANDLE hStop);

    int Count();
    int Free();
    HANDLE DataEvent() const { return hDataEvent_.get(); }

    // The whole block or nothing.
    bool Write(const void* lpBytes, int cbBytes);

    // The same, but waits for room until the stop event is set. A block larger than the ring is refused.
    bool WriteWaiting(const void* lpBytes, int cbBytes);

    // Takes at most cbBytes, never past the end of the store, so that one take never wraps.
    int Take(void* lpBytes, int cbBytes);

    // The same without the data event, for a taker that goes on until the ring is empty. One that stops
    // before calls SignalHeld.
    int TakeOn(void* lpBytes, int cbBytes);
    void SignalHeld();

    void Purge();
    void Resize(int cbSize);

  private:
    bool WriteLocked(const char* bytes, int cbBytes);
    int TakeLocked(void* lpBytes, int cbBytes);
    void SignalRoom();

    int cbSize_ = 0;
    int cbCount_ = 0;
    int iHead_ = 0;
    int nRoomWaiters_ = 0;
    std::unique_ptr<char[]> lpBuffer_;
    std::mutex lock_; // guards all of the above
    EventHandle hDataEvent_;
    HANDLE hStop_;
    EventHandle hRoomEvent_;
};
