// What a host does to its control while it dials.
#include "dialtest.h"

namespace {

using namespace telephony;

constexpr bool shownOrNot[] = {false, true};

class ControlDialSurvival : public DialTest, public testing::WithParamInterface<Deed> {
  protected:
    void DialWith(bool visible, StatusDialog box) {
        StartLogAnew();
        StartAtAlpha()->put_DialStatusDialog(box);
        if (visible)
            phone->Show();
    }
    void DialAndActInTheCarrierEvent(bool visible, const char* number) {
        DialWith(visible, Dialog_Modal);
        int acted = 0;
        phone->ear.onEvent = [&](DISPID id, DISPPARAMS&) {
            if (id == events::CarrierChanged && acted++ == 0)
                GetParam().act(*phone);
        };
        phone->Dial(number);
        EXPECT_GT(acted, 0);
    }
    void Finish() {
        EXPECT_FALSE(phone->control && phone->IsOpen());
        phone.reset();
        EXPECT_EQ(Box(), nullptr);
    }
};

// In a timer, in an event, in the box's own cancel: the dial is then going on.
TEST_P(ControlDialSurvival, ByATimerDuringTheDial) {
    for (const bool visible : shownOrNot) {
        SCOPED_TRACE(visible);
        DialWith(visible, Dialog_Modal);
        bool acted = false;
        const auto watch = WhenItRings([&] {
            acted = true;
            GetParam().act(*phone);
            if (phone->control) // a deed that lets the dial go on
                phone->Is(&ITarnComm::get_HangUp);
        });
        const host::Clock clock;
        phone->Dial(rings);
        EXPECT_TRUE(acted);
        EXPECT_LT(clock.Gone(), 5000U);
        Finish();
    }
}

TEST_P(ControlDialSurvival, InTheCarrierEventOfTheBoxesCancel) {
    for (const bool visible : shownOrNot) {
        SCOPED_TRACE(visible);
        const auto watch = WhenItRings(PressCancel);
        DialAndActInTheCarrierEvent(visible, rings);
        Finish();
    }
}

TEST_P(ControlDialSurvival, InTheCarrierEventOfTheConnection) {
    for (const bool visible : shownOrNot) {
        SCOPED_TRACE(visible);
        DialAndActInTheCarrierEvent(visible, connects);
        phone.reset();
        EXPECT_EQ(Box(), nullptr);
    }
}

// On its form it stays, whoever else had it.
TEST_F(DialTest, AShownControlsDialGoesOnWhenAReferenceIsGivenBack) {
    StartAtAlpha()->put_DialStatusDialog(Dialog_Hidden);
    phone->Show();
    bool goesOn = false;
    std::unique_ptr<host::Every> later;
    const auto watch = WhenItRings([&] {
        phone->ear.Disconnect();
        later = host::After(300, [&] {
            goesOn = phone->Status() == std::string("Dialing ") + rings;
            phone->Is(&ITarnComm::get_HangUp);
        });
    });
    phone->Dial(rings);
    EXPECT_TRUE(goesOn);
}

INSTANTIATE_TEST_SUITE_P(Deeds, ControlDialSurvival, testing::ValuesIn(deeds));

} // namespace
