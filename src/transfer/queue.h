// The names that wait for their turn in a transfer. Any thread; under TransferLock.
#pragma once

#include "core/comctl.h"

#include <string>

// Joins the name to the object's folder and puts it at the end. False: out of memory, or nobody takes it any
// more; nothing queued.
bool QueueFile(COMCTL& record, const char* szName);

std::string FirstQueuedFile(const COMCTL& record); // empty for none
std::string FirstQueuedFileOrEnd(COMCTL& record);  // the same; for none, the queue ends until it is reopened
void ReopenQueue(COMCTL& record);
void DropFirstQueuedFile(COMCTL& record);
void DropQueuedFiles(COMCTL& record);
