// The line of a transfer under a simulated clock: either a script of what the far end says and when, or one
// end of a cable whose other end is a transfer of its own. It stands where the worker's line stands in the
// module.
#pragma once

#include "transfer/services.h"

#include <deque>
#include <functional>
#include <string>

class SimulatedCable;

class WorkerLine {
  public:
    WorkerLine();

    // What the far end says: the first byte comes so many ms from now, or at once after what was said before.
    void Say(const std::string& bytes, DWORD afterMilliseconds = 0);

    std::string sent;                                // all that was written
    std::function<void(const std::string&)> onWrite; // each block that is written; may Say something
    std::function<void()> onWait;                    // before each wait for input
    int purges = 0;                                  // of the input
    int flushes = 0;
    DWORD waited = 0;   // ms that the clock was moved by waits
    DWORD abortAt = 0;  // tick from which the host has asked for an end, 0 is never
    DWORD closeAt = 0;  // tick from which the port is closed, 0 is never
    DWORD patience = 0; // ms of waiting after which the test gives up (by an exception), 0 is a day

    size_t Unread() const;

  private:
    friend struct LineServices;
    friend class SimulatedCable;

    struct Byte {
        DWORD due;
        unsigned char value;
    };

    bool Due() const;
    void WaitFor(TRANSFER& transfer, DWORD milliseconds); // until a byte is due or the time has passed
    void CountWait(DWORD milliseconds);

    std::deque<Byte> input_;
    DWORD lastDue_ = 0;
    SimulatedCable* cable_ = nullptr;
    int side_ = 0;
};

// A transfer waited longer than the test allows.
struct WaitedTooLong {};
