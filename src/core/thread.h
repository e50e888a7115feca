// Threads of the module. Each holds a reference on the module, so that its code can't be unloaded under it,
// and leaves by unwinding to its entry.
#pragma once

#include "handle.h"

#include <functional>
#include <type_traits>
#include <utility>

using WorkerHandle = UniqueHandle<AllOnesInvalid>;
using ThreadWork = std::function<DWORD()>;

// Starts work on a thread of its own; the handle is invalid if there is none to be had. What work gives is
// the thread's exit code. What it throws ends at the thread's entry, and the code is 0.
WorkerHandle StartModuleThread(ThreadWork work);

template <class Work>
requires std::is_void_v<std::invoke_result_t<const Work&>> WorkerHandle StartModuleThread(Work work) {
    return StartModuleThread(ThreadWork([work = std::move(work)] {
        work();
        return DWORD{0};
    }));
}

// Waits for a thread that was told to stop, and terminates it when the limit has passed. The last resort:
// what the thread owned is lost.
void EndModuleThread(WorkerHandle thread, DWORD limitMilliseconds);

// How many threads had to be terminated so far. Anything but 0 is a fault of a device or of this module.
int TerminatedThreadCount();
