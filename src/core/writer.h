// COverlappedWrite: the writer of one comm object. It empties a ring into the device on a thread of its own,
// so that nobody who sends ever waits for the line. It lives as long as its object; the thread lives from
// Start to Stop. What the ring still holds at a Stop goes out after the next Start.
//
// Locks: the writer's own (lock_, guards hComm, hThread and the ring's pointer), then the ring's; always in
// this order.
#pragma once

#include "ring.h"
#include "thread.h"

#include <atomic>
#include <mutex>

inline constexpr int WriterRingSize = 16384;   // bytes
inline constexpr int WriterTakeSize = 1024;    // bytes handed to the device at a time
inline constexpr DWORD WriterStopLimit = 1000; // ms until a writer that won't stop is terminated

class COverlappedWrite {
  public:
    explicit COverlappedWrite(int cbRing = WriterRingSize);
    ~COverlappedWrite();

    // Refused while a device is attached.
    bool Start(HANDLE device);
    void Stop();

    int Held();   // bytes in the ring
    int InHand(); // bytes that left the ring and have not reached the device
    int Free();   // bytes that the ring has room for

    // The whole block or nothing.
    bool Write(const void* lpBytes, int cbBytes);

    // Drops what waits, in the ring and in the device.
    void Purge();

    // Replaces the ring's store; what it held is lost.
    void Resize(int cbRing);

    // Signalled (auto-reset) when the last byte of the ring has reached the device, once for each time that
    // it is asked for: a signal that nobody waits for would cost each small write a call to the system.
    HANDLE DrainedEvent();

  private:
    void Run();
    void TellDrained();

    HANDLE hComm_ = INVALID_HANDLE_VALUE;
    EventHandle hStop_;
    WorkerHandle hThread_;
    std::atomic<bool> bStop_{false};
    std::unique_ptr<CRingBuffer> lpRing_;
    std::mutex lock_;

    EventHandle hDrained_;
    std::atomic<bool> bDrainedWatched_{false};
    std::atomic<bool> bDrained_{false}; // since the last write, and nobody was told
    std::atomic<int> inHand_{0};
};
