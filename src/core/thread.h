// Threads of the module. Each holds a reference on the module, so that its code can't be unloaded under it,
// and leaves by unwinding to its entry.
#pragma once

#include "handle.h"

#include <functional>

using WorkerHandle = UniqueHandle<AllOnesInvalid>;

// Starts work on a thread of its own; the handle is invalid if there is none to be had. What work throws ends
// at the thread's entry.
WorkerHandle StartModuleThread(std::function<void()> work);

// Waits for a thread that was told to stop, and terminates it when the limit has passed. The last resort:
// what the thread owned is lost.
void EndModuleThread(WorkerHandle thread, DWORD limitMilliseconds);

// How many threads had to be terminated so far. Anything but 0 is a fault of a device or of this module.
int TerminatedThreadCount();
