// A comm object beside a modem that the test plays: what it says, what it hears and when.
#pragma once

#include "support/every.h"
#include "support/line.h"

#include "core/live.h"

namespace host {

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
    // The writer may still be at it.
    void ExpectHeard(const std::string& text) {
        PumpUntil([&] { return Heard().size() >= text.size(); });
        EXPECT_EQ(Heard(), text);
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

    CommObject object;
    FarEnd modem;

  private:
    std::string heard_;
};

} // namespace host
