// What the tests on the scripted device share: the device, an object, and a watch on terminated threads.
#pragma once

#include "scripteddevice.h"

#include "core/comctl.h"
#include "core/live.h"
#include "core/thread.h"
#include "support/host.h"

#include <chrono>
#include <future>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace host {

// Terminating a thread is a failure, whatever the device does.
class NoThreadIsTerminated {
  public:
    NoThreadIsTerminated() : before_(TerminatedThreadCount()) {}
    ~NoThreadIsTerminated() { EXPECT_EQ(TerminatedThreadCount(), before_) << "a thread was terminated"; }
    NoThreadIsTerminated(const NoThreadIsTerminated&) = delete;
    NoThreadIsTerminated& operator=(const NoThreadIsTerminated&) = delete;

  private:
    int before_;
};

class Stopwatch {
  public:
    DWORD Milliseconds() const { return GetTickCount() - start_; }

  private:
    DWORD start_ = GetTickCount();
};

// Of all threads of the process, ms.
inline DWORD ProcessorTime() {
    FILETIME created, ended, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    return (kernel.dwLowDateTime + user.dwLowDateTime) / 10000;
}

// A transfer's worker that is held up inside a call of the driver, until let go or for longer than any limit.
class HeldDevice {
  public:
    explicit HeldDevice(COMCTL& record) : thread_([this, &record] { Hold(record); }) {
        taken_.get_future().wait();
    }
    ~HeldDevice() { LetGo(); }
    HeldDevice(const HeldDevice&) = delete;
    HeldDevice& operator=(const HeldDevice&) = delete;

    void LetGo() {
        if (!thread_.joinable())
            return;
        end_.set_value();
        thread_.join();
    }

  private:
    void Hold(COMCTL& record) {
        const std::scoped_lock guard(record.DeviceLock);
        taken_.set_value();
        end_.get_future().wait_for(std::chrono::seconds(8));
    }

    std::promise<void> taken_;
    std::promise<void> end_;
    std::thread thread_;
};

inline constexpr LONG neverTicks = 1000000; // ms; a test that sends its own ticks wants no others

class DeviceTest : public testing::Test {
  protected:
    // With the monitor, once it waits for its first character.
    void OpenWithMonitor() {
        ASSERT_EQ(object.Open(ScriptedDevice::Name, "9600,n,8,1"), "");
        ASSERT_TRUE(PumpUntil([&] { return device.PendingCount(PendingKind::Wait) == 1; }));
    }
    void OpenWithTimer(LONG interval = neverTicks) {
        SetInterval(object, interval);
        ASSERT_EQ(object.Open(ScriptedDevice::Name, "9600,n,8,1"), "");
    }
    void Tick() { SendMessageA(object, WM_TIMER, 0, 0); }
    COMCTL& Record() { return *RecordOf(object); }

    // Declared in the order of their making: the object goes before its device.
    NoThreadIsTerminated noThreadIsTerminated;
    ScriptedDevice device;
    CommObject object;
};

} // namespace host
