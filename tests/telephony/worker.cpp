#include "worker.h"

#include "service.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <thread>

namespace {

using Time = std::chrono::steady_clock::time_point;

class Worker {
  public:
    Worker() {
        KeepModule();
        thread_ = std::thread([this] { Run(); });
    }
    ~Worker() {
        {
            const std::lock_guard guard(lock_);
            stopped_ = true;
        }
        changed_.notify_all();
        thread_.join();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void Add(Time due, std::function<void()> action) {
        {
            const std::lock_guard guard(lock_);
            actions_.emplace(due, std::move(action));
        }
        changed_.notify_all();
    }

  private:
    // Whoever frees the library must not take the code from under the thread, nor wait for it in DllMain.
    static void KeepModule() {
        HMODULE module = nullptr;
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                           reinterpret_cast<LPCSTR>(&KeepModule), &module);
    }

    void Run() {
        while (const std::function<void()> action = Next()) {
            const std::lock_guard guard(ExchangeLock());
            action();
        }
    }

    std::function<void()> Next() {
        std::unique_lock guard(lock_);
        for (;;) {
            if (stopped_)
                return {};
            if (actions_.empty())
                changed_.wait(guard);
            else if (actions_.begin()->first > std::chrono::steady_clock::now())
                changed_.wait_until(guard, actions_.begin()->first);
            else
                return std::move(actions_.extract(actions_.begin()).mapped());
        }
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::multimap<Time, std::function<void()>> actions_;
    bool stopped_ = false;
    std::thread thread_;
};

std::mutex workerLock;
Worker* worker = nullptr; // left alone when the process ends: its thread is gone by then

} // namespace

void After(DWORD milliseconds, std::function<void()> action) {
    const Time due = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    const std::lock_guard guard(workerLock);
    if (!worker)
        worker = new Worker;
    worker->Add(due, std::move(action));
}

void StopWorker() {
    Worker* old = nullptr;
    {
        const std::lock_guard guard(workerLock);
        old = std::exchange(worker, nullptr);
    }
    delete old;
}
