// How the call to a number goes on after the service has accepted it.
#pragma once

#include "service.h"

// What the service does with a request for this number before there is a call.
struct Acceptance {
    LONG atOnce = 0;     // negative: the request's own result
    LONG reply = 0;      // the reply's
    bool silent = false; // no reply, ever
};

Acceptance AcceptanceOf(const std::string& number);

// The states of a call that has just been accepted come by themselves from now on.
void PlayCall(HCALL call, const std::string& number);
