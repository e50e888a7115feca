// The names that wait for their turn in a transfer. Any thread; under TransferLock.
#pragma once

#include "core/comctl.h"

#include <string>

// Joins the name to the object's folder and puts it at the end. False: out of memory, nothing queued.
bool QueueFile(COMCTL& record, const char* szName);

std::string FirstQueuedFile(const COMCTL& record); // empty for none
void DropFirstQueuedFile(COMCTL& record);
void DropQueuedFiles(COMCTL& record);
