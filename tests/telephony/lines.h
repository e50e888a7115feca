// Lines that applications have open. All of it under the exchange's lock.
#pragma once

#include "handles.h"
#include "service.h"

struct OpenLine {
    HLINEAPP application = 0;
    DWORD device = 0;
    DWORD privileges = 0;
    DWORD_PTR instance = 0;

    bool IsOwner() const { return (privileges & LINECALLPRIVILEGE_OWNER) != 0; }
};

HandleTable<OpenLine>& OpenLines();

// With its calls.
void CloseLine(HLINE line);
void CloseLinesOf(HLINEAPP application);

// Tells every application that has this device open.
void QueueForDevice(DWORD device, DWORD messageId, DWORD_PTR param1, DWORD_PTR param2, DWORD_PTR param3);
