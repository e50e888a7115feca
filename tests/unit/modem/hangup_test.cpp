// The end of a call: by DTR, by command, by neither.
#include "modemobject.h"

namespace {

class ModemHangUp : public host::ModemTest {
  protected:
    // When DTR was seen to fall and to rise.
    struct Drop {
        DWORD fell = 0;
        DWORD rose = 0;
    };
    std::unique_ptr<host::Every> Watch(Drop& drop, bool modemListens) {
        return std::make_unique<host::Every>(5, [this, &drop, modemListens] {
            const bool up = cable.Signal("a.dtr");
            if (!up && !drop.fell)
                drop.fell = GetTickCount();
            if (up && drop.fell && !drop.rose)
                drop.rose = GetTickCount();
            if (!up && modemListens)
                cable.Carrier('a', "off");
        });
    }
    bool DtrIsUp() { return cable.Signal("a.dtr"); }
};

TEST_F(ModemHangUp, WithoutCarrierThereIsNothingToDo) {
    OpenWithoutCarrier();
    const host::Clock clock;
    EXPECT_EQ(HangUp(object), 1);
    EXPECT_EQ(Disconnect(object), 1);
    EXPECT_LT(clock.Gone(), 1000u);
    host::Pump(50);
    EXPECT_EQ(Heard(), "");
    EXPECT_TRUE(DtrIsUp());
}

TEST_F(ModemHangUp, ClosedPortIsDown) {
    EXPECT_EQ(HangUp(object), 1);
    EXPECT_EQ(Disconnect(object), 1);
}

TEST_F(ModemHangUp, DropsDtrFor200Milliseconds) {
    for (int(TARNAPI * function)(HWND) : {HangUp, Disconnect}) {
        cable.Carrier('a', "on");
        Open();
        Drop drop;
        const auto watch = Watch(drop, true);
        const host::Clock clock;
        EXPECT_EQ(function(object), 1);
        EXPECT_GE(clock.Gone(), 190u);
        EXPECT_LT(clock.Gone(), 1200u);
        EXPECT_TRUE(host::PumpUntil([&] { return drop.rose != 0; }));
        EXPECT_GE(drop.rose - drop.fell, 150u);
        EXPECT_EQ(Heard(), "");
        object.Close();
    }
}

TEST_F(ModemHangUp, PutsDtrBackAsItWas) {
    SetDTR(object, 0);
    Open();
    EXPECT_FALSE(DtrIsUp());
    const auto off = host::After(100, [&] { cable.Carrier('a', "off"); });
    EXPECT_EQ(HangUp(object), 1);
    EXPECT_EQ(GetDTR(object), 0);
    EXPECT_FALSE(DtrIsUp());
}

TEST_F(ModemHangUp, DisconnectRaisesDtrWhateverItWas) {
    SetDTR(object, 0);
    Open();
    const auto off = host::After(100, [&] { cable.Carrier('a', "off"); });
    EXPECT_EQ(Disconnect(object), 1);
    EXPECT_EQ(GetDTR(object), 0) << "the field";
    EXPECT_TRUE(DtrIsUp()) << "the line";
}

TEST_F(ModemHangUp, CarrierThatStaysGetsTheCommand) {
    Open();
    const auto answer = Answer("ATH0\r", "\r\nOK\r\n");
    const host::Clock clock;
    EXPECT_EQ(HangUp(object), 1) << "the modem said OK, whatever the signal says";
    EXPECT_TRUE(GetCarrier(object));
    ExpectHeard("+++ATH0\r");
    EXPECT_GE(clock.Gone(), 4300u) << "DTR, the rest, two seconds on each side of the escape";
    EXPECT_LT(clock.Gone(), 8000u);
}

struct EndCase {
    const char* answer;
    bool carrierGoes;
    int result;
};

TEST_F(ModemHangUp, WithoutOkTheCarrierDecides) {
    SetModemOptions(object, "Quick\tATZ\tATDT\tATDP\tATA\tATH^M");
    Open();
    const EndCase cases[] = {{"ERROR", false, 0}, {"ERROR", true, 1}};
    for (const EndCase& row : cases) {
        cable.Carrier('a', "on");
        Forget();
        const auto answer = std::make_unique<host::Every>(5, [&, done = false]() mutable {
            if (done || !Heard().ends_with("ATH\r"))
                return;
            done = true;
            if (row.carrierGoes)
                cable.Carrier('a', "off");
            modem.Send(row.answer);
        });
        EXPECT_EQ(HangUp(object), row.result) << row.answer << ' ' << row.carrierGoes;
    }
}

TEST_F(ModemHangUp, DisconnectDoesNotWaitForTheAnswer) {
    SetModemOptions(object, "Quick\tATZ\tATDT\tATDP\tATA\tATH^M");
    Open();
    const host::Clock clock;
    EXPECT_EQ(Disconnect(object), 0) << "the carrier is still there";
    EXPECT_GE(clock.Gone(), 390u);
    EXPECT_LT(clock.Gone(), 1100u);
    host::Pump(50);
    ExpectHeard("ATH\r");
}

TEST_F(ModemHangUp, DisconnectSeesTheCarrierThatWentByTheCommand) {
    SetModemOptions(object, "Quick\tATZ\tATDT\tATDP\tATA\tATH^M~");
    Open();
    const host::Every listen(5, [&] {
        if (Heard() == "ATH\r")
            cable.Carrier('a', "off");
    });
    EXPECT_EQ(Disconnect(object), 1);
}

TEST_F(ModemHangUp, ObjectMayGoMeanwhile) {
    for (int(TARNAPI * function)(HWND) : {HangUp, Disconnect})
        for (const UINT when : {100u, 300u, 1500u}) {
            const HWND other = CreateCommObject(nullptr);
            SetModemOptions(other, host::hayesOptions);
            SetCommPort(other, host::nearPort);
            ASSERT_TRUE(SetPortOpen(other, 1, nullptr));
            ASSERT_TRUE(GetCarrier(other));
            const auto destroy = host::After(when, [&] { DestroyWindow(other); });
            EXPECT_EQ(function(other), 0) << when;
            EXPECT_FALSE(IsWindow(other));
            cable.Reset();
        }
}

TEST_F(ModemHangUp, InsideAnotherWaitTheCarrierDecides) {
    SetModemOptions(object, "Quick\tATZ\tATDT\tATDP\tATA\tATH^M");
    Open();
    int hungUp = -1;
    const auto inside = host::After(50, [&] { hungUp = HangUp(object); });
    ComPause(object, 1500);
    EXPECT_EQ(hungUp, 0) << "no answer can be awaited there";
    ExpectHeard("ATH\r");
}

} // namespace
