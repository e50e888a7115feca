// Applications and the messages that wait for them. All of it under the exchange's lock.
#pragma once

#include "core/handle.h"
#include "handles.h"
#include "service.h"

#include <deque>

struct Application {
    // Signalled while a message waits, or while there will never be one again.
    EventHandle event = ManualResetEvent();
    std::deque<LINEMESSAGE> messages;
};

HandleTable<Application>& Applications();

void QueueMessage(HLINEAPP application, const LINEMESSAGE& message);
void QueueReply(HLINEAPP application, DWORD request, LONG result);
// To every application.
void QueueReplyToAll(DWORD request, LONG result);
DWORD NextRequest();

// lineGetMessage fails from now on.
void FailMessages();
// Messages work again, and none waits.
void ClearMessages();
