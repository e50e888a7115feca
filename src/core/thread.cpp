#include "thread.h"

#include "wall.h"

#include <atomic>
#include <memory>

namespace {

std::atomic<int> terminatedThreads{0};

struct ThreadStart {
    ThreadWork work;
    HMODULE module = nullptr;
};

DWORD RunWork(std::unique_ptr<ThreadStart> start) noexcept {
    return BehindWall("ModuleThread", [&] { return start->work(); });
}

DWORD CALLBACK ThreadEntry(void* argument) {
    std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(argument));
    const HMODULE module = start->module;
    const DWORD exitCode = RunWork(std::move(start)); // what it owned is gone, too
    FreeLibraryAndExitThread(module, exitCode);
}

} // namespace

WorkerHandle StartModuleThread(ThreadWork work) {
    auto start = std::make_unique<ThreadStart>();
    start->work = std::move(work);
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<const char*>(&ThreadEntry), &start->module))
        return {};
    const HANDLE thread = CreateThread(nullptr, 0, ThreadEntry, start.get(), 0, nullptr);
    if (!thread) {
        FreeLibrary(start->module);
        return {};
    }
    start.release(); // the thread owns it from its first instruction on
    return WorkerHandle(thread);
}

void EndModuleThread(WorkerHandle thread, DWORD limitMilliseconds) {
    if (!thread)
        return;
    if (WaitForSingleObject(thread.get(), limitMilliseconds) == WAIT_OBJECT_0)
        return;
    ++terminatedThreads;
    TerminateThread(thread.get(), 0);
}

int TerminatedThreadCount() {
    return terminatedThreads;
}
