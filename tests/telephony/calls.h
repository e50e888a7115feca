// Calls, each as one application's handle sees it, and who hears of whose end. All of it under the exchange's
// lock.
#pragma once

#include "handles.h"
#include "service.h"

#include <optional>

struct Call {
    HLINEAPP application = 0;
    HLINE line = 0;
    DWORD device = 0;
    // The calls with one number are the parties of one conversation; a party outside has no call.
    DWORD conversation = 0;
    DWORD state = 0;
    bool isOffered = false; // or was, before it was answered
    bool isPlayed = false;  // its states still come by the script of its number

    bool IsIdle() const { return state == LINECALLSTATE_IDLE; }
    bool IsOffering() const { return state == LINECALLSTATE_OFFERING; }
};

HandleTable<Call>& Calls();

// A call of this open line; no one has been told of it.
HCALL AddCall(HLINE line, DWORD conversation);
// Where a call is no more, or is idle, these do nothing. The mode is that of the state.
void ChangeState(HCALL call, DWORD state, DWORD_PTR mode = 0);
void Disconnect(HCALL call, DWORD disconnectMode); // idle follows
void Connect(HCALL call);                          // with the one who called

// The other parties hear that this one has gone.
void LeaveConversation(HCALL call);
// The calls of an open line come to their end without a word to its application.
void EndCallsOf(HLINE line);

// Is a call of this device not idle?
bool IsEngaged(DWORD device);
// The device rings for this conversation. Gives the first owner's call, or 0.
HCALL RingDevice(DWORD device, DWORD conversation);
