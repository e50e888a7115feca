// One overlapped call on the device, in memory that outlives the call whatever the device does.
#pragma once

#include "handle.h"

#include <memory>

struct OverlappedCall {
    OVERLAPPED state = {};
    EventHandle done = ManualResetEvent();

    // Makes it ready for the next call. False: there is no event to wait on.
    bool Prepare() { return PrepareWrite() && ResetEvent(done.get()); }

    // The same for a write, which resets the event by itself: a call to the system less for each.
    bool PrepareWrite() {
        state = {};
        // The low bit keeps the call out of a completion port that the host may have bound the device to; the
        // system spares itself a call per write, port or not.
        state.hEvent = reinterpret_cast<HANDLE>(reinterpret_cast<ULONG_PTR>(done.get()) | 1);
        return static_cast<bool>(done);
    }
};

inline constexpr DWORD CancelLimit = 500; // ms that a cancelled call may take to end

// Ends a pending call before its memory goes away: cancels it and waits. A device that doesn't let go keeps
// the memory; a lost block is better than a device that writes into freed memory.
template <class Call>
void EndPendingCall(HANDLE device, std::unique_ptr<Call> call) {
    CancelIoEx(device, &call->state);
    if (WaitForSingleObject(call->done.get(), CancelLimit) != WAIT_OBJECT_0)
        static_cast<void>(call.release());
}
