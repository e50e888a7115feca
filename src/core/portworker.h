// WorkerLine: the open port in the hands of a transfer's worker. Worker's thread only.
//
// Every call on the device is made under the record's DeviceLock and only while the record still has the
// device that the worker began with, so that the host may close the port at any time. Input is read in blocks
// of what is there; what the transfer doesn't use goes back to the object when the line is given up. For a
// wait, one read of one byte stays pending: the system wakes the worker as soon as something comes.
#pragma once

#include "comctl.h"
#include "overlapped.h"

#include <array>

class WorkerLine {
  public:
    // The stop event ends every pause.
    WorkerLine(COMCTL& record, HANDLE hStop);
    ~WorkerLine();
    WorkerLine(const WorkerLine&) = delete;
    WorkerLine& operator=(const WorkerLine&) = delete;

    bool IsOpen();
    bool GetState(DCB& block);
    bool SetState(DCB block);

    DWORD InQueue();                                // bytes that came and were not taken
    DWORD OutQueue();                               // bytes that have not left the driver
    int Take();                                     // the next byte, or -1 if none is there
    bool Write(const void* lpBytes, DWORD cbBytes); // the whole block or nothing

    void ClearInput();
    void ClearOutput();
    void SendBreak(bool on);

    // Waits until there is input, the output is gone, a message has come for the thread, the stop event is
    // set or the time has passed, whichever is first. True: it was what the pause was for.
    enum class Until { Time, Input, OutputGone };
    bool Pause(Until what, DWORD milliseconds);

  private:
    struct ByteRead : OverlappedCall {
        char byte = 0;
    };
    struct BlockRead : OverlappedCall {
        std::array<char, 4096> bytes;
    };

    template <class Call>
    auto OnDevice(Call&& call); // call() under the lock, or false (0) without a device

    bool HasUnread() const { return next_ < end_; }
    bool Fill();
    bool TakePending();
    bool ReadBlock();
    bool EndsSoon(BlockRead& read);
    void StartPending();
    void EndPending();
    void GiveBack();

    COMCTL& record_;
    HANDLE device_;
    int number_; // the record's nDevice for it
    HANDLE hStop_;
    COMMTIMEOUTS timeouts_ = {};
    bool timeoutsChanged_ = false;
    std::unique_ptr<BlockRead> block_;
    size_t next_ = 0; // in block_
    size_t end_ = 0;
    std::unique_ptr<ByteRead> pending_; // under way; null for none
    std::unique_ptr<ByteRead> spare_;
    bool pendingFailed_ = false; // so the next pause is a short one without
};
