#include "calls.h"

#include "exchange.h"
#include "lines.h"
#include "messages.h"
#include "plant.h"
#include "worker.h"

#include <algorithm>
#include <vector>

namespace {

// What a state means where there is but one meaning; 0 for the rest.
DWORD_PTR ModeOf(DWORD state) {
    switch (state) {
    case LINECALLSTATE_OFFERING:
        return LINEOFFERINGMODE_ACTIVE;
    case LINECALLSTATE_CONNECTED:
        return LINECONNECTEDMODE_ACTIVE;
    default:
        return 0;
    }
}

std::vector<HCALL> OthersOf(HCALL handle) {
    std::vector<HCALL> others;
    const DWORD conversation = Calls().Find(handle)->conversation;
    for (const auto& [other, call] : Calls())
        if (other != handle && call.conversation == conversation && !call.IsIdle())
            others.push_back(other);
    return others;
}

bool IsOffering(HCALL handle) {
    return Calls().Find(handle)->IsOffering();
}

bool IsOutgoing(HCALL handle) {
    return !Calls().Find(handle)->isOffered;
}

std::vector<HCALL> CallsOfDevice(DWORD device) {
    std::vector<HCALL> its;
    for (const auto& [handle, call] : Calls())
        if (call.device == device && !call.IsIdle())
            its.push_back(handle);
    return its;
}

} // namespace

HandleTable<Call>& Calls() {
    static auto* calls = new HandleTable<Call>;
    return *calls;
}

HCALL AddCall(HLINE line, DWORD conversation) {
    const OpenLine& opened = *OpenLines().Find(line);
    Call call;
    call.application = opened.application;
    call.line = line;
    call.device = opened.device;
    call.conversation = conversation;
    return Calls().Add(call);
}

void ChangeState(HCALL handle, DWORD state, DWORD_PTR mode) {
    Call* call = Calls().Find(handle);
    if (!call || call->IsIdle())
        return;
    // The first message of a call says what its application may do with it.
    const DWORD_PTR privilege = call->state ? 0 : LINECALLPRIVILEGE_OWNER;
    call->state = state;
    QueueMessage(call->application, {handle, LINE_CALLSTATE, OpenLines().Find(call->line)->instance, state,
                                     mode ? mode : ModeOf(state), privilege});
}

void Disconnect(HCALL handle, DWORD disconnectMode) {
    Call* call = Calls().Find(handle);
    if (!call)
        return;
    call->isPlayed = false;
    if (call->state != LINECALLSTATE_DISCONNECTED)
        ChangeState(handle, LINECALLSTATE_DISCONNECTED, disconnectMode);
    After(ThePlant().pace, [handle] { ChangeState(handle, LINECALLSTATE_IDLE); });
}

void Connect(HCALL handle) {
    Call* call = Calls().Find(handle);
    if (!call || !call->IsOffering())
        return;
    for (const HCALL other : OthersOf(handle))
        ChangeState(other, IsOffering(other) ? LINECALLSTATE_IDLE : LINECALLSTATE_CONNECTED);
    ChangeState(handle, LINECALLSTATE_CONNECTED);
}

void LeaveConversation(HCALL handle) {
    const std::vector<HCALL> others = OthersOf(handle);
    // The caller goes on ringing for as long as somebody else may answer.
    const bool mayStillAnswer = IsOffering(handle) && std::any_of(others.begin(), others.end(), IsOffering);
    if (mayStillAnswer)
        return;
    for (const HCALL other : others)
        Disconnect(other, LINEDISCONNECTMODE_NORMAL);
}

void EndCallsOf(HLINE line) {
    std::vector<HCALL> its;
    for (const auto& [handle, call] : Calls())
        if (call.line == line)
            its.push_back(handle);
    for (const HCALL call : its) {
        if (!Calls().Find(call)->IsIdle())
            LeaveConversation(call);
        Calls().Remove(call);
    }
}

bool IsEngaged(DWORD device) {
    return !CallsOfDevice(device).empty();
}

HCALL RingDevice(DWORD device, DWORD conversation) {
    constexpr DWORD_PTR ringMode = 1, ringCount = 1;
    QueueForDevice(device, LINE_LINEDEVSTATE, LINEDEVSTATE_RINGING, ringMode, ringCount);
    std::vector<HLINE> owners;
    for (const auto& [handle, line] : OpenLines())
        if (line.device == device && line.IsOwner())
            owners.push_back(handle);
    HCALL first = 0;
    for (const HLINE line : owners) {
        const HCALL call = AddCall(line, conversation);
        Calls().Find(call)->isOffered = true;
        ChangeState(call, LINECALLSTATE_OFFERING);
        first = first ? first : call;
    }
    return first;
}

DWORD WINAPI ExchangeRing(DWORD device) {
    const std::lock_guard guard(ExchangeLock());
    return RingDevice(device, NextHandle());
}

void WINAPI ExchangeFarHangUp(DWORD device, DWORD disconnectMode) {
    const std::lock_guard guard(ExchangeLock());
    for (const HCALL call : CallsOfDevice(device)) {
        for (const HCALL other : OthersOf(call))
            if (IsOutgoing(other) || IsOutgoing(call))
                ChangeState(other, LINECALLSTATE_IDLE);
        Disconnect(call, disconnectMode);
    }
}
