// The call of one CTapiApp, as its owner's thread and the telephony thread see it. Everything is read and
// changed under the lock; no function of the service and nothing of the host runs while it is held.
//
// A call has an identity, which is new when a dial begins, when a call is offered, and when the line is taken
// away. Whoever did something without the lock goes on only if the call is still the one he began with.
#pragma once

#include "tapiservice.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

inline constexpr char callCanceled[] = "Canceled";
inline constexpr char callUnavailable[] = "Connection unavailable";

enum class DialResult { Running = 0, Connected = 1, Failed = 2 };

inline constexpr DWORD noDevice = static_cast<DWORD>(-1);
inline constexpr DWORD noCall = 0; // an identity

// Where the service writes the handle of a call that was placed, now or before its reply comes: it stays
// until then. The write is no concern of the lock.
struct MadeCall {
    alignas(std::atomic_ref<HCALL>::required_alignment) HCALL handle = 0;
    LONG request = 0; // once it is known
};

struct Reply {
    LONG request;
    LONG error;
};

// What the service owes: without an end to it, a dial would have none.
enum class Owed { Nothing, Reply, Idle };

struct CallState {
    mutable std::mutex lock; // of all members below
    HLINE hLine = 0;
    HCALL hCall = 0;
    bool bAnswering = false;
    bool bReopening = false;         // the answering line is idle and about to be opened again
    bool bDeaf = false;              // the telephony thread has ended by itself: nothing is heard any more
    const char* lpszError = nullptr; // why the last call failed; until the next dial
    DWORD dwAnswerDevice = noDevice; // of the open line
    DialResult nDialResult = DialResult::Connected;
    HCALL hReleased = 0; // given up last; messages about it may still come

    // The present call's own
    DWORD nCall = 1; // its identity
    LONG lMakeCallResult = 0;
    LONG lAnswerResult = 0;
    LONG lDropResult = 0;
    bool bOffered = false; // and the owner has not been told yet that it is connected
    bool bEnding = false;  // it is being dropped
    Owed owed = Owed::Nothing;
    DWORD dwOwedSince = 0; // tick count
    std::shared_ptr<MadeCall> made;

    // Of all requests
    std::vector<std::shared_ptr<MadeCall>> placed; // without a reply yet
    int nAsking = 0;                               // requests whose numbers are not known yet
    std::vector<Reply> early;                      // which may be theirs

    bool IsDialling() const { return nDialResult == DialResult::Running; }
    bool IsTaken() const { return hLine || hCall || bAnswering; }

    void BeginNext() {
        constexpr DWORD most = 0xFFFFFF; // it goes along with the news
        nCall = nCall == most ? 1 : nCall + 1;
        lMakeCallResult = lAnswerResult = lDropResult = 0;
        bOffered = bEnding = false;
        owed = Owed::Nothing;
        made.reset();
    }
    void Owe(Owed what) {
        owed = what;
        dwOwedSince = GetTickCount();
    }

    void AdoptMadeCall() {
        if (IsDialling() && !hCall && made)
            hCall = std::atomic_ref(made->handle).load();
    }

    bool IsDrop(LONG request) const { return request > 0 && request == lDropResult; }
    bool IsRequest(LONG request) const {
        return request > 0 && (request == lMakeCallResult || request == lAnswerResult || IsDrop(request));
    }
    void TakeReply(Reply reply) {
        std::erase_if(placed, [&](const auto& call) { return call->request == reply.request; });
        if (nAsking && !IsRequest(reply.request))
            early.push_back(reply);
    }
    // The reply that came before the request's number was known, if it did.
    std::optional<LONG> EarlyReplyTo(LONG request) const {
        for (const Reply& reply : early)
            if (request > 0 && reply.request == request)
                return reply.error;
        return std::nullopt;
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
        return hCall ? hDevice == hCall : IsDialling() && hDevice != hReleased;
    }
};

// While a request is made: its reply may come before its number is known.
class AskingGuard {
  public:
    explicit AskingGuard(CallState& call) : call_(call) {
        const std::lock_guard guard(call_.lock);
        ++call_.nAsking;
    }
    ~AskingGuard() {
        const std::lock_guard guard(call_.lock);
        if (--call_.nAsking == 0)
            call_.early.clear();
    }
    AskingGuard(const AskingGuard&) = delete;
    AskingGuard& operator=(const AskingGuard&) = delete;

  private:
    CallState& call_;
};
