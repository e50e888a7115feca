// Calls between modems: what comes of a number, what is said on the line, how a call ends.
#include "telephone.h"

#include "support/every.h"

namespace {

class TelephoneSetUp : public host::Telephone {};
class TelephoneDial : public host::Telephone {};
class TelephoneCall : public host::Telephone {};

TEST_F(TelephoneSetUp, ModemIsThere) {
    EXPECT_EQ(CheckModem(caller.object), 1);
    EXPECT_EQ(InitModem(caller.object), 1);
    EXPECT_EQ(caller.State("last"), "ATX4E1V1S7=60&C1");
    EXPECT_EQ(caller.State("s7"), "60");
}

TEST_F(TelephoneSetUp, AnswerModeCountsRings) {
    EXPECT_EQ(InitModemForAnswer(callee.object), 1);
    EXPECT_EQ(callee.State("s0"), "2");
}

TEST_F(TelephoneSetUp, CommandThatTheModemRefuses) {
    SetModemOptions(caller.object, "Odd\tAT@@@^M\tATDT\tATDP\tATS0=1^M\tATH^M");
    EXPECT_EQ(InitModem(caller.object), 0);
    SetModemOptions(caller.object, "Odd\tATE1^M\tATDT\tATDP\tAT@@@^M\tATH^M");
    EXPECT_EQ(InitModem(caller.object), 1);
    EXPECT_EQ(InitModemForAnswer(caller.object), 0);
}

TEST_F(TelephoneSetUp, NoiseBetweenRepliesDoesNotMatter) {
    caller.modem.Do("garbage \\x80~\\x1B[O\\xFFK\\x20");
    EXPECT_EQ(CheckModem(caller.object), 1);
    EXPECT_EQ(InitModem(caller.object), 1);
}

TEST_F(TelephoneSetUp, WorksWithoutCommandEcho) {
    SetModemOptions(caller.object, "Quiet\tATE0Q0V1X4&C1&D2S7=60^M\tATDT\tATDP\tATS0=1^M\t~~+++~~ATH0^M");
    EXPECT_EQ(InitModem(caller.object), 1);
    EXPECT_EQ(CheckModem(caller.object), 1) << "without command echo";
}

struct NumberCase {
    const char* number;
    int result;
};

TEST_F(TelephoneDial, NumbersHaveTheirResults) {
    SetModemOptions(caller.object, "Short\tATX4E1V1S7=2&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M");
    ASSERT_EQ(InitModem(caller.object), 1);
    const NumberCase cases[] = {
        {host::busyNumber, TARN_DIAL_BUSY},
        {host::nearNumber, TARN_DIAL_BUSY},
        {host::unansweredNumber, TARN_DIAL_NO_CARRIER},
        {host::voiceNumber, TARN_DIAL_NO_CARRIER},
        {host::deadNumber, TARN_DIAL_NO_CARRIER},
        {"", TARN_DIAL_TIMED_OUT},
    };
    for (const NumberCase& row : cases) {
        SetDialTimeOut(caller.object, *row.number ? 20000 : 300);
        EXPECT_EQ(Dial(caller.object, row.number), row.result) << row.number;
        EXPECT_TRUE(caller.Becomes("mode", "command"));
        EXPECT_FALSE(GetCarrier(caller.object));
    }
}

TEST_F(TelephoneDial, WallSocketIsDead) {
    caller.modem.Do("dialtone off");
    EXPECT_EQ(Dial(caller.object, host::farNumber), TARN_DIAL_NO_DIAL_TONE);
}

TEST_F(TelephoneDial, ModemIsDead) {
    caller.modem.Do("silent on");
    SetDialTimeOut(caller.object, 1000);
    EXPECT_EQ(Dial(caller.object, host::farNumber), TARN_DIAL_TIMED_OUT);
    EXPECT_EQ(CheckModem(caller.object), 0);
}

TEST_F(TelephoneDial, TimeOutStopsTheModem) {
    SetDialTimeOut(caller.object, 1500);
    EXPECT_EQ(Dial(caller.object, host::unansweredNumber), TARN_DIAL_TIMED_OUT);
    EXPECT_TRUE(caller.Becomes("mode", "command"));
    EXPECT_EQ(caller.State("hook"), "0");
}

TEST_F(TelephoneDial, HangUpStopsTheModem) {
    std::string dialling;
    const auto cancel = host::After(1500, [&] {
        dialling = caller.State("mode");
        HangUp(caller.object);
    });
    EXPECT_EQ(Dial(caller.object, host::unansweredNumber), TARN_DIAL_CANCELLED);
    EXPECT_EQ(dialling, "dialing");
    EXPECT_TRUE(caller.Becomes("mode", "command"));
    EXPECT_EQ(caller.State("hook"), "0");
    EXPECT_EQ(CheckModem(caller.object), 1) << "ready for the next";
}

TEST_F(TelephoneDial, PulsesReachTheSameNumber) {
    SetDialMode(caller.object, TARN_DIAL_PULSE);
    EXPECT_EQ(Dial(caller.object, host::busyNumber), TARN_DIAL_BUSY);
    EXPECT_EQ(caller.State("last"), "ATDP5550100");
}

TEST_F(TelephoneDial, SpeedStaysInTheInput) {
    caller.modem.Do("rate 33600/V42BIS");
    callee.Say("ATS0=1\r");
    ASSERT_NE(callee.ReadUntil("OK"), "");
    ASSERT_EQ(Dial(caller.object, host::farNumber), TARN_DIAL_CONNECTED);
    EXPECT_EQ(caller.ReadUntil("\n"), " 33600/V42BIS\r\n");
}

TEST_F(TelephoneDial, BasicGetsWords) {
    char text[13] = "#";
    tarnbasDial(caller.object, host::busyNumber, text);
    EXPECT_STREQ(text, "Busy");
    caller.modem.Do("dialtone off");
    tarnbasDial(caller.object, host::busyNumber, text);
    EXPECT_STREQ(text, "No Dial Tone");
}

TEST_F(TelephoneDial, ObjectMayGoWhileTheModemDials) {
    auto other = std::make_unique<host::CommObject>();
    caller.object.Close();
    ASSERT_EQ(other->Open(caller.port), "");
    SetModemOptions(*other, host::hayesOptions);
    const auto destroy = host::After(1000, [&] { DestroyWindow(*other); });
    EXPECT_EQ(Dial(*other, host::unansweredNumber), TARN_DIAL_TIMED_OUT);
    EXPECT_TRUE(caller.Becomes("mode", "command")) << "the object's end has dropped DTR";
}

TEST_F(TelephoneCall, BytesCrossBothWays) {
    Connect();
    caller.Say("from the caller");
    EXPECT_EQ(callee.ReadUntil("caller"), "from the caller");
    callee.Say("and back");
    EXPECT_EQ(caller.ReadUntil("back"), "and back");
}

TEST_F(TelephoneCall, RingAndCarrierAreEvents) {
    callee.modem.Do("cadence 300 300");
    ASSERT_EQ(InitModemForAnswer(callee.object), 1);
    callee.object.ForgetEvents();
    ASSERT_EQ(Dial(caller.object, host::farNumber), TARN_DIAL_CONNECTED);
    EXPECT_TRUE(host::PumpUntil([&] { return callee.object.Saw(TARN_EVENT_CARRIER); }));
    EXPECT_EQ(callee.object.Count(TARN_EVENT_RING), 2);
}

TEST_F(TelephoneCall, DtrEndsIt) {
    for (int(TARNAPI * function)(HWND) : {HangUp, Disconnect}) {
        Connect();
        EXPECT_EQ(function(caller.object), 1);
        EXPECT_TRUE(caller.Becomes("mode", "command"));
        EXPECT_NE(callee.ReadUntil("NO CARRIER").find("NO CARRIER"), std::string::npos);
        EXPECT_FALSE(GetCarrier(callee.object));
        callee.Say("ATZ\r");
        callee.ReadUntil("OK");
    }
}

TEST_F(TelephoneCall, EscapeAndCommandEndItWhereDtrDoesNot) {
    SetModemOptions(caller.object, "Deaf\tATX4E1V1S7=60&C1&D0^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M");
    ASSERT_EQ(InitModem(caller.object), 1);
    Connect();
    EXPECT_EQ(HangUp(caller.object), 1);
    EXPECT_TRUE(caller.Becomes("mode", "command")) << "the first OK answers the escape";
    EXPECT_EQ(caller.State("last"), "ATH0");
    const std::string heard = callee.ReadUntil("NO CARRIER");
    EXPECT_EQ(heard.substr(0, 3), "+++") << "the escape is data for the other side";
}

TEST_F(TelephoneCall, DisconnectEscapesToo) {
    SetModemOptions(caller.object, "Deaf\tATX4E1V1S7=60&C1&D0^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M~");
    ASSERT_EQ(InitModem(caller.object), 1);
    Connect();
    EXPECT_EQ(Disconnect(caller.object), 1);
    EXPECT_TRUE(caller.Becomes("mode", "command"));
}

TEST_F(TelephoneCall, OtherSideHangsUp) {
    Connect();
    EXPECT_EQ(HangUp(callee.object), 1);
    EXPECT_NE(caller.ReadUntil("NO CARRIER").find("NO CARRIER"), std::string::npos);
    EXPECT_TRUE(host::PumpUntil([&] { return !GetCarrier(caller.object); }));
    EXPECT_EQ(HangUp(caller.object), 1) << "nothing to do";
}

TEST_F(TelephoneCall, SetUpEndsACallFirst) {
    Connect();
    EXPECT_EQ(InitModem(caller.object), 1);
    EXPECT_FALSE(GetCarrier(caller.object));
    EXPECT_NE(callee.ReadUntil("NO CARRIER").find("NO CARRIER"), std::string::npos);
}

TEST_F(TelephoneCall, BusySubscriberStaysInHisCall) {
    Connect();
    EXPECT_EQ(HangUp(caller.object), 1);
    callee.ReadUntil("NO CARRIER");
    callee.Say("ATDT5550101\r");
    EXPECT_TRUE(callee.Becomes("mode", "dialing"));
    EXPECT_EQ(Dial(caller.object, host::farNumber), TARN_DIAL_BUSY);
}

} // namespace
