// A comm object beside a modem that the test plays: what it says, what it hears and when.
#pragma once

#include "support/line.h"

#include "core/live.h"

#include <memory>

namespace host {

inline constexpr const char* hayesOptions =
    "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400\n";

// Runs an action on this thread again and again, while it waits.
class Every {
  public:
    Every(UINT milliseconds, std::function<void()> action)
        : action_(std::make_shared<std::function<void()>>(std::move(action))) {
        timer_ = SetTimer(nullptr, 0, milliseconds, OnTimer);
        Timers()[timer_] = this;
    }
    ~Every() { Stop(); }
    Every(const Every&) = delete;
    Every& operator=(const Every&) = delete;

    void Stop() {
        KillTimer(nullptr, timer_);
        Timers().erase(timer_);
    }

  private:
    static std::map<UINT_PTR, Every*>& Timers() {
        static std::map<UINT_PTR, Every*> timers;
        return timers;
    }
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD) {
        const auto found = Timers().find(timer);
        if (found == Timers().end())
            return;
        const auto action = found->second->action_; // held, since it may stop its timer
        (*action)();
    }

    std::shared_ptr<std::function<void()>> action_;
    UINT_PTR timer_;
};

// Milliseconds since its making.
class Clock {
  public:
    DWORD Gone() const { return GetTickCount() - start_; }

  private:
    DWORD start_ = GetTickCount();
};

class ModemTest : public LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        SetModemOptions(object, hayesOptions);
    }

    void Open() { ASSERT_EQ(object.Open(nearPort), ""); }

    // No carrier, as a modem without a call has it; its end of the cable is ready.
    void OpenWithoutCarrier() {
        cable.Carrier('a', "off");
        Open();
    }

    // All that has been sent by now. The cable has carried it when it has answered a command.
    std::string Heard() {
        cable.Stat("ab.out");
        heard_ += modem.Read();
        return heard_;
    }
    void Forget() { Heard(), heard_.clear(); }

    // Answers when a line has come whose end this is, once.
    std::unique_ptr<Every> Answer(std::string line, std::string answer) {
        return std::make_unique<Every>(5, [this, line, answer, done = false]() mutable {
            if (done || !Heard().ends_with(line))
                return;
            done = true;
            modem.Send(answer);
        });
    }

    // Acts once when the time has come.
    std::unique_ptr<Every> After(UINT milliseconds, std::function<void()> action) {
        return std::make_unique<Every>(milliseconds, [action = std::move(action), done = false]() mutable {
            if (!std::exchange(done, true))
                action();
        });
    }

    CommObject object;
    FarEnd modem;

  private:
    std::string heard_;
};

} // namespace host
