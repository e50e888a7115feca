// Dialling, ringing, answering.
#include "simulation.h"

namespace {

constexpr Nanoseconds kDigits = 7 * 100 * kMillisecond; // of a number, by tones
constexpr Nanoseconds kRing = 2 * kSecond;
constexpr Nanoseconds kRingCycle = 6 * kSecond;
constexpr Nanoseconds kTraining = 500 * kMillisecond;

} // namespace

TEST(ModemDialing, TakesTheTimeOfItsDigits) {
    const struct {
        const char* line;
        Nanoseconds time;
    } rows[] = {{"ATDT5550100", kDigits},
                {"ATD 555-(01) 00", kDigits},
                {"ATDP5550100", (5 + 5 + 5 + 10 + 1 + 10 + 10) * 100 * kMillisecond},
                {"ATPD5550100", (5 + 5 + 5 + 10 + 1 + 10 + 10) * 100 * kMillisecond},
                {"ATPTD5550100", kDigits},
                {"ATDT,5550100", kDigits + 2 * kSecond},
                {"ATS8=7DT555,0100", kDigits + 7 * kSecond},
                {"ATDT!5550100", kDigits + 500 * kMillisecond},
                {"ATDT9W5550100", kDigits + 100 * kMillisecond},
                {"ATX3DT5550100", kDigits + 2 * kSecond}, // blind
                {"ATX3S6=4DT5550100", kDigits + 4 * kSecond}};
    for (const auto& row : rows) {
        Simulation lab;
        EXPECT_EQ(lab.Reply(0, row.line), "") << row.line;
        EXPECT_EQ(lab.State(0, "mode"), "dialing");
        EXPECT_EQ(lab.Await(0, Framed("BUSY")), row.time) << row.line;
        EXPECT_EQ(lab.State(0, "mode"), "command");
        EXPECT_EQ(lab.State(0, "hook"), "0");
    }
}

TEST(ModemDialing, NeedsADialToneWhereItListensForOne) {
    const struct {
        const char* line;
        const char* answer;
        Nanoseconds time;
    } rows[] = {{"ATX4DT5550100", "NO DIALTONE", 2 * kSecond},
                {"ATX2DT5550100", "NO DIALTONE", 2 * kSecond},
                {"ATS6=5DT5550100", "NO DIALTONE", 5 * kSecond},
                {"ATX3DT5550100", "NO CARRIER", 52 * kSecond + kDigits},
                {"ATX1DT5550100", "NO CARRIER", 52 * kSecond + kDigits},
                {"ATX3DTW5550100", "NO DIALTONE", 4 * kSecond}};
    for (const auto& row : rows) {
        Simulation lab;
        lab.Control("0 dialtone off");
        lab.Reply(0, row.line);
        EXPECT_EQ(lab.Await(0, Framed(row.answer)), row.time) << row.line;
    }
}

TEST(ModemDialing, ExtendedResultsDecideWhatIsHeard) {
    const struct {
        const char* setting;
        const char* busy;
        const char* connect;
    } rows[] = {{"ATX0", "NO CARRIER", "CONNECT"},
                {"ATX1", "NO CARRIER", "CONNECT 14400"},
                {"ATX2", "NO CARRIER", "CONNECT 14400"},
                {"ATX3", "BUSY", "CONNECT 14400"},
                {"ATX4", "BUSY", "CONNECT 14400"}};
    for (const auto& row : rows) {
        Simulation lab;
        lab.Reply(0, row.setting);
        lab.Reply(0, "ATDT5550100");
        lab.Await(0, Framed(row.busy));
        lab.Type(1, "ATS0=1\r");
        lab.Reply(0, "ATDT5550002");
        lab.Await(0, Framed(row.connect));
    }
}

TEST(ModemDialing, TheMannersOfOutsideSubscribers) {
    const struct {
        const char* dialled;
        const char* answer;
        Nanoseconds time;
    } rows[] = {{"5550101", "NO CARRIER", 50 * kSecond + kDigits},
                {"5550102", "NO CARRIER", 50 * kSecond + kDigits},
                {"5550103", "NO CARRIER", 50 * kSecond + kDigits},
                {"5559999", "NO CARRIER", 50 * kSecond + kDigits},
                {"5550101@", "NO ANSWER", 50 * kSecond + kDigits},
                {"5550103@", "NO ANSWER", 50 * kSecond + kDigits},
                {"5550102@", "NO CARRIER", 50 * kSecond + kRing + kDigits}, // somebody said hello
                {"5550100@", "BUSY", kDigits},
                {"5550001", "BUSY", kDigits}}; // its own
    for (const auto& row : rows) {
        Simulation lab;
        lab.Reply(0, std::string("ATDT") + row.dialled);
        EXPECT_EQ(lab.Await(0, Framed(row.answer)), row.time) << row.dialled;
    }
}

TEST(ModemDialing, ABusyModemIsBusy) {
    Simulation lab;
    lab.ConnectTwo();
    for (const char* number : {"5550001", "5550002"}) {
        lab.Reply(2, std::string("ATDT") + number);
        lab.Await(2, Framed("BUSY"));
    }
    EXPECT_EQ(lab.State(0, "mode"), "online");
}

TEST(ModemDialing, AnyByteAbortsIt) {
    for (const Nanoseconds after : {Nanoseconds{0}, 300 * kMillisecond, 5 * kSecond}) {
        Simulation lab;
        lab.Type(0, "ATDT5550002\r");
        lab.Run(after);
        lab.Heard(0);
        lab.Type(0, "x");
        EXPECT_EQ(lab.Heard(0), Framed("NO CARRIER"));
        EXPECT_EQ(lab.State(1, "mode"), "command");
        EXPECT_EQ(lab.State(1, "ring"), "0");
    }
}

TEST(ModemDialing, ASemicolonReturnsToTheCommandState) {
    Simulation lab;
    lab.Reply(0, "ATDT555;");
    EXPECT_EQ(lab.Await(0, Framed("OK")), 300 * kMillisecond);
    EXPECT_EQ(lab.State(0, "mode"), "command");
    EXPECT_EQ(lab.State(0, "hook"), "1");
    lab.Reply(0, "ATDT0100"); // the rest of the number
    EXPECT_EQ(lab.Await(0, Framed("BUSY")), 400 * kMillisecond);
    lab.Reply(0, "ATDT5550002;");
    lab.Await(0, Framed("OK"));
    EXPECT_EQ(lab.State(1, "mode"), "ringing");
    EXPECT_EQ(lab.Reply(0, "ATH"), Framed("OK"));
    EXPECT_EQ(lab.State(1, "mode"), "command");
}

TEST(ModemDialing, AfterACallTheLineIsSilentUntilItIsHungUp) {
    Simulation lab;
    lab.Control("0 call 5");
    lab.Reply(0, "ATH1"); // lifted by hand
    lab.Control("0 hangup");
    lab.Reply(0, "ATS7=3DT5550100");
    EXPECT_EQ(lab.Await(0, Framed("NO CARRIER")), kDigits + 3 * kSecond);
    lab.Reply(0, "ATDT5550100");
    lab.Await(0, Framed("BUSY"));
}

TEST(ModemRinging, FollowsTheCadenceWithTheSignal) {
    Simulation lab;
    EXPECT_EQ(lab.Control("1 cadence 1000 3000"), "ok");
    EXPECT_EQ(lab.Control("1 call 3"), "ok");
    for (int ring = 1; ring <= 3; ring++) {
        EXPECT_EQ(lab.Heard(1), Framed("RING"));
        EXPECT_EQ(lab.State(1, "s1"), std::to_string(ring));
        EXPECT_TRUE(lab.At(1).RingSignal());
        EXPECT_EQ(lab.State(1, "mode"), "ringing");
        EXPECT_EQ(lab.RunUntil([&] { return !lab.At(1).RingSignal(); }), kSecond);
        lab.Run(3 * kSecond);
    }
    EXPECT_EQ(lab.Heard(1), "");
    EXPECT_EQ(lab.State(1, "s1"), "0");
    EXPECT_EQ(lab.State(1, "mode"), "command");
}

TEST(ModemRinging, EndsWhenTheCallerGivesUp) {
    Simulation lab;
    lab.Reply(0, "ATDT5550002");
    EXPECT_EQ(lab.Await(1, Framed("RING")), kDigits);
    lab.Type(0, "x");
    EXPECT_FALSE(lab.At(1).RingSignal());
    lab.Run(60 * kSecond);
    EXPECT_EQ(lab.Heard(1), "");
}

TEST(ModemAnswering, ByItselfAfterItsRings) {
    Simulation lab;
    lab.Type(1, "ATS0=3\r");
    lab.Heard(1);
    lab.Reply(0, "ATDT5550002");
    const Nanoseconds time = lab.Await(0, Framed("CONNECT 14400"));
    EXPECT_EQ(time, kDigits + 2 * kRingCycle + kRing + kTraining);
    EXPECT_EQ(lab.Heard(1), Framed("RING") + Framed("RING") + Framed("RING") + Framed("CONNECT 14400"));
    EXPECT_TRUE(lab.At(0).CarrierSignal() && lab.At(1).CarrierSignal());
}

TEST(ModemAnswering, ByHand) {
    Simulation lab;
    lab.Reply(0, "ATDT5550002");
    lab.Await(1, Framed("RING"));
    EXPECT_EQ(lab.Reply(1, "ATA"), "");
    EXPECT_FALSE(lab.At(1).RingSignal());
    EXPECT_EQ(lab.State(1, "mode"), "ringing");
    lab.Run(kTraining - 1);
    EXPECT_FALSE(lab.At(0).CarrierSignal() || lab.At(1).CarrierSignal());
    EXPECT_EQ(lab.Await(1, Framed("CONNECT 14400")), 1);
    EXPECT_EQ(lab.State(0, "mode"), "online");
    EXPECT_TRUE(lab.At(0).CarrierSignal() && lab.At(1).CarrierSignal());
}

TEST(ModemAnswering, WithoutACallerThereIsNoCarrier) {
    Simulation lab;
    lab.Reply(1, "ATS7=3A");
    EXPECT_EQ(lab.Await(1, Framed("NO CARRIER")), 3 * kSecond);
    lab.Control("1 call 5"); // a person
    lab.Reply(1, "ATA");
    EXPECT_EQ(lab.Await(1, Framed("NO CARRIER")), 3 * kSecond);
}

TEST(ModemAnswering, NotByItselfWhileTheComputerIsAway) {
    const struct {
        const char* setting;
        bool answers;
    } rows[] = {{"ATS0=1&D2", false}, {"ATS0=1&D0", true}};
    for (const auto& row : rows) {
        Simulation lab;
        lab.Type(1, std::string(row.setting) + "\r");
        lab.SetDtr(1, false);
        lab.Run(kSecond);
        lab.Reply(0, "ATS7=20DT5550002");
        lab.Await(0, Framed(row.answers ? "CONNECT 14400" : "NO CARRIER"));
    }
}
