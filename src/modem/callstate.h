// The call of one CTapiApp, as its owner's thread and the telephony thread see it. Everything is read and
// changed under the lock; no function of the service and nothing of the host runs while it is held.
#pragma once

#include "tapiservice.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <utility>

inline constexpr char callCanceled[] = "Canceled";

enum class DialResult { Running = 0, Connected = 1, Failed = 2 };

inline constexpr DWORD noDevice = static_cast<DWORD>(-1);

struct CallState {
    mutable std::mutex lock; // of all members below
    HLINE hLine = 0;
    HCALL hCall = 0;
    bool bAnswering = false;
    bool bReopening = false;         // the answering line is idle and about to be opened again
    const char* lpszError = nullptr; // why the last call failed; until the next dial
    LONG lMakeCallResult = 0;
    LONG lDropResult = 0;            // the last request to drop a call
    DWORD dwAnswerDevice = noDevice; // of the open line
    DialResult nDialResult = DialResult::Connected;
    DWORD dwLastHeard = 0; // tick count of the last line message
    HCALL hReleased = 0;   // given up last; messages about it may still come

    // Where the service writes the handle of a call that was placed, now or before its reply comes. It stays
    // for as long as the line is open; the service's write is no concern of the lock.
    alignas(std::atomic_ref<HCALL>::required_alignment) HCALL hMadeCall = 0;

    bool IsDialling() const { return nDialResult == DialResult::Running; }

    // Requests whose late replies are of no concern any more; the oldest makes room.
    std::array<LONG, 8> retired = {};
    size_t nextRetired = 0;

    void Retire(LONG request) {
        if (request > 0)
            retired[nextRetired++ % retired.size()] = request;
    }
    bool IsRetired(DWORD_PTR request) const {
        return std::find(retired.begin(), retired.end(), static_cast<LONG>(request)) != retired.end() &&
               request;
    }

    void AdoptMadeCall() {
        if (IsDialling() && !hCall)
            hCall = std::atomic_ref(hMadeCall).load();
    }

    // The dial has failed, and why is still to be told by a state of the call.
    bool AwaitsReason() const { return nDialResult == DialResult::Failed && hCall && !lpszError; }

    void Fail(const char* szReason) {
        nDialResult = DialResult::Failed;
        if (!lpszError)
            lpszError = szReason;
    }

    // The handles go to whoever takes them: he alone releases them.
    HLINE TakeLine() { return std::exchange(hLine, 0); }
    HCALL TakeCall() {
        if (hCall)
            hReleased = hCall;
        return std::exchange(hCall, 0);
    }

    // Of a message's device. False: it is a call that was given up, or another one than the current.
    bool Concerns(DWORD hDevice) const {
        if (!hDevice || hDevice == hLine)
            return true;
        return hCall ? hDevice == hCall : hDevice != hReleased;
    }
};
