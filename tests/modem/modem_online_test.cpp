// In a call: bytes, escape, the ends of it.
#include "simulation.h"

namespace {

constexpr Nanoseconds kGuard = kSecond;
const std::string kOk = Framed("OK");
const std::string kNoCarrier = Framed("NO CARRIER");

std::string Pattern(std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; i++)
        bytes += static_cast<char>(i * 7 + i / 251);
    return bytes;
}

void EscapeFirst(Simulation& lab) {
    lab.Run(kGuard);
    lab.Type(0, "+++");
    EXPECT_EQ(lab.Await(0, kOk), kGuard);
    EXPECT_EQ(lab.State(0, "mode"), "escaped");
    EXPECT_EQ(lab.Heard(1), "+++");
}

} // namespace

TEST(ModemOnline, BytesCrossBothWaysUnchanged) {
    Simulation lab;
    lab.ConnectTwo();
    const std::string block = Pattern(10'000);
    lab.Type(0, block);
    lab.Type(1, "back");
    EXPECT_TRUE(lab.Heard(1) == block);
    EXPECT_EQ(lab.Heard(0), "back");
}

TEST(ModemOnline, ASlowReaderHoldsTheSenderBackAndNothingIsLost) {
    Simulation lab;
    lab.ConnectTwo();
    lab.StopReading(1);
    const std::string block = Pattern(1'000'000);
    const auto send = [&](std::size_t from) {
        std::size_t taken = 0;
        do
            taken = lab.Type(0, block.substr(from, 10'000));
        while ((from += taken) < block.size() && taken > 0);
        return from;
    };
    const std::size_t held = send(0);
    EXPECT_GT(held, 60'000u);
    EXPECT_LT(held, 200'000u);
    EXPECT_EQ(lab.At(0).Room(), 0u);
    lab.ReadAgain(1);
    EXPECT_EQ(send(held), block.size());
    EXPECT_TRUE(lab.Heard(1) == block);
}

TEST(ModemOnline, WhatWasSentBeforeTheHangUpArrives) {
    Simulation lab;
    lab.ConnectTwo();
    lab.StopReading(1);
    std::string sent;
    while (lab.At(0).Room() > 0 && sent.size() < 1'000'000)
        sent.append(lab.Type(0, std::string(10'000, 'x')), 'x');
    lab.SetDtr(0, false);
    lab.Run(10 * kSecond);
    lab.ReadAgain(1);
    EXPECT_TRUE(lab.Heard(1) == sent + kNoCarrier);
}

TEST(ModemEscape, NeedsSilenceBeforeAndAfter) {
    Simulation lab;
    lab.ConnectTwo();
    EscapeFirst(lab);
    EXPECT_TRUE(lab.At(0).CarrierSignal());
    EXPECT_EQ(lab.Reply(0, "ATS0?"), Framed("000") + kOk);
}

TEST(ModemEscape, BytesNearbyMakeItData) {
    const struct {
        Nanoseconds before;
        const char* first;
        Nanoseconds between;
        const char* second;
        Nanoseconds after;
        const char* last;
    } rows[] = {{kGuard - 1, "+++", 0, "", 0, ""},  {kGuard, "+++", kGuard - 1, "x", 0, ""},
                {kGuard, "+++", 0, "+", 0, ""},     {kGuard, "++", 0, "", 0, ""},
                {kGuard, "+", kGuard, "++", 0, ""}, {kGuard, "x+++", 0, "", 0, ""},
                {kGuard, "---", 0, "", 0, ""}};
    for (const auto& row : rows) {
        Simulation lab;
        lab.ConnectTwo();
        lab.Run(row.before);
        lab.Type(0, row.first);
        lab.Run(row.between);
        lab.Type(0, row.second);
        lab.Run(row.after);
        lab.Type(0, row.last);
        lab.Run(10 * kSecond);
        EXPECT_EQ(lab.State(0, "mode"), "online") << row.first << row.second;
        EXPECT_EQ(lab.Heard(1), std::string(row.first) + row.second + row.last);
    }
}

TEST(ModemEscape, OneByteAtATimeIsFineToo) {
    Simulation lab;
    lab.ConnectTwo();
    lab.Run(kGuard);
    for (int i = 0; i < 3; i++) {
        lab.Type(0, "+");
        lab.Run(200 * kMillisecond);
    }
    EXPECT_EQ(lab.Await(0, kOk), kGuard - 200 * kMillisecond);
}

TEST(ModemEscape, FollowsItsRegisters) {
    Simulation lab;
    lab.Reply(0, "ATS2=33S12=20");
    lab.ConnectTwo();
    lab.Run(kGuard);
    lab.Type(0, "!!!");
    EXPECT_EQ(lab.Await(0, kOk), 400 * kMillisecond);
}

TEST(ModemEscape, CanBeSwitchedOff) {
    Simulation lab;
    lab.Reply(0, "ATS2=171");
    lab.ConnectTwo();
    lab.Run(kGuard);
    lab.Type(0, "\xab\xab\xab");
    lab.Run(10 * kSecond);
    EXPECT_EQ(lab.State(0, "mode"), "online");
}

TEST(ModemEscape, OReturnsToTheCall) {
    Simulation lab;
    lab.ConnectTwo();
    EscapeFirst(lab);
    lab.Type(1, "waits");
    EXPECT_EQ(lab.Heard(0), "");
    EXPECT_EQ(lab.Reply(0, "ATO"), Framed("CONNECT 14400") + "waits");
    lab.Type(0, "again");
    EXPECT_EQ(lab.Heard(1), "again");
    EXPECT_EQ(lab.State(1, "mode"), "online");
    EXPECT_EQ(lab.Reply(2, "ATO"), kNoCarrier);
}

TEST(ModemEscape, TheSilenceBeginsAnewWithTheReturn) {
    Simulation lab;
    lab.ConnectTwo();
    EscapeFirst(lab);
    lab.Run(5 * kSecond);
    lab.Reply(0, "ATO");
    lab.Type(0, "+++");
    lab.Run(5 * kSecond);
    EXPECT_EQ(lab.State(0, "mode"), "online");
}

TEST(ModemEscape, NoSecondCallFromOnlineCommandState) {
    Simulation lab;
    lab.ConnectTwo();
    EscapeFirst(lab);
    for (const char* line : {"ATD5550003", "ATA"})
        EXPECT_EQ(lab.Reply(0, line), Framed("ERROR")) << line;
    EXPECT_EQ(lab.State(0, "mode"), "escaped");
}

TEST(ModemHangUp, BytesOfTheLastCallDoNotTurnUpInTheNext) {
    Simulation lab;
    lab.ConnectTwo();
    EscapeFirst(lab);
    lab.Type(1, "old");
    lab.Reply(0, "ATH");
    lab.Await(1, kNoCarrier);
    lab.Type(0, "ATDT5550002\r");
    lab.RunUntil([&] { return lab.State(0, "mode") == "online"; });
    lab.Type(1, "new");
    EXPECT_EQ(lab.Heard(0), "ATDT5550002\r" + Framed("CONNECT 14400") + "new");
}

TEST(ModemHangUp, ALongestDelayWaitsForEver) {
    Simulation lab;
    lab.Reply(0, "ATS10=255");
    lab.ConnectTwo();
    lab.Control("0 hangup");
    lab.Run(600 * kSecond);
    EXPECT_EQ(lab.State(0, "mode"), "online");
    EXPECT_EQ(lab.Heard(0), "");
}

TEST(ModemHangUp, HEndsTheCallForBoth) {
    for (const char* line : {"ATH", "ATH0", "ATZ"}) {
        Simulation lab;
        lab.ConnectTwo();
        EscapeFirst(lab);
        EXPECT_EQ(lab.Reply(0, line), kOk);
        EXPECT_FALSE(lab.At(0).CarrierSignal());
        EXPECT_EQ(lab.Await(1, kNoCarrier), 1400 * kMillisecond);
        EXPECT_FALSE(lab.At(1).CarrierSignal());
        EXPECT_EQ(lab.State(1, "mode"), "command");
        lab.Reply(0, "ATDT5550002"); // the lines are free again
        lab.Await(1, Framed("RING"));
    }
}

TEST(ModemHangUp, CarrierLossTakesItsDelay) {
    Simulation lab;
    lab.Reply(1, "ATS10=30");
    lab.ConnectTwo();
    EXPECT_EQ(lab.Control("0 hangup"), "ok");
    EXPECT_EQ(lab.Await(0, kNoCarrier), 1400 * kMillisecond);
    EXPECT_TRUE(lab.At(1).CarrierSignal());
    EXPECT_EQ(lab.Await(1, kNoCarrier), 1600 * kMillisecond);
    EXPECT_FALSE(lab.At(1).CarrierSignal());
}

TEST(ModemHangUp, CarrierLossIsToldInOnlineCommandStateToo) {
    Simulation lab;
    lab.ConnectTwo();
    EscapeFirst(lab);
    lab.Control("1 hangup");
    EXPECT_EQ(lab.Await(0, kNoCarrier), 1400 * kMillisecond);
    EXPECT_EQ(lab.State(0, "mode"), "command");
}

TEST(ModemHangUp, TheCarrierSignalCanStayOn) {
    Simulation lab;
    lab.Reply(0, "AT&C0");
    EXPECT_TRUE(lab.At(0).CarrierSignal());
    lab.ConnectTwo();
    lab.Control("0 hangup");
    lab.Await(0, kNoCarrier);
    EXPECT_TRUE(lab.At(0).CarrierSignal());
}

TEST(ModemDtr, LossDoesWhatTheSettingSays) {
    const struct {
        const char* setting;
        std::string says;
        const char* mode;
        const char* s7; // tells of a reset
    } rows[] = {{"AT&D0S7=33", "", "online", "33"},
                {"AT&D1S7=33", kOk, "escaped", "33"},
                {"AT&D2S7=33", kNoCarrier, "command", "33"},
                {"AT&D3S7=33", kNoCarrier, "command", "50"}};
    for (const auto& row : rows) {
        Simulation lab;
        lab.Reply(0, row.setting);
        lab.ConnectTwo();
        lab.SetDtr(0, false);
        lab.Run(50 * kMillisecond - 1);
        EXPECT_EQ(lab.State(0, "mode"), "online");
        lab.Run(1);
        EXPECT_EQ(lab.Heard(0), row.says) << row.setting;
        EXPECT_EQ(lab.State(0, "mode"), row.mode) << row.setting;
        EXPECT_EQ(lab.State(0, "s7"), row.s7) << row.setting;
        lab.Run(10 * kSecond);
        EXPECT_EQ(lab.Heard(0), "") << "once only";
    }
}

TEST(ModemDtr, AShortLossIsNone) {
    Simulation lab;
    lab.Reply(0, "ATS25=20");
    lab.ConnectTwo();
    lab.SetDtr(0, false);
    lab.Run(200 * kMillisecond - 1);
    lab.SetDtr(0, true);
    lab.Run(kSecond);
    EXPECT_EQ(lab.State(0, "mode"), "online");
}

TEST(ModemDtr, LossEndsDiallingToo) {
    Simulation lab;
    lab.Reply(0, "ATDT5550101");
    lab.Run(5 * kSecond);
    lab.SetDtr(0, false);
    EXPECT_EQ(lab.Await(0, kNoCarrier), 50 * kMillisecond);
}

TEST(ModemDtr, WhatItsLossDoesIsDoneOnce) {
    Simulation lab;
    lab.SetDtr(0, false);
    lab.Run(kSecond);
    lab.Reply(0, "ATDT5550100");
    lab.Await(0, Framed("BUSY"));
}
