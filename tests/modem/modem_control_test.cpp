// What the lab sets by command.
#include "escaped_text.h"
#include "simulation.h"

TEST(ModemControl, BadCommandsGetAnErrorAndChangeNothing) {
    Simulation lab;
    const std::string before = lab.Control("0 state");
    for (const char* command : {"",
                                "state",
                                "9 state",
                                "0",
                                "0 nonsense",
                                "0 dialtone",
                                "0 dialtone maybe",
                                "0 silent 1",
                                "0 garbage \\x4",
                                "0 garbage \\q",
                                "0 setup -1",
                                "0 setup 1x",
                                "0 cadence 1",
                                "0 cadence 0 5",
                                "0 outside 555",
                                "0 outside 555 rude",
                                "0 call",
                                "0 call 0",
                                "0 hangup",
                                "0 state now",
                                "0 reset hard"})
        EXPECT_EQ(lab.Control(command).substr(0, 6), "error ") << command;
    EXPECT_EQ(lab.Control("0 state"), before);
}

TEST(ModemControl, ALoneModemNeedsNoIndex) {
    Simulation lab({"5550001"});
    EXPECT_EQ(lab.Control("state").substr(0, 15), "ok mode=command");
}

TEST(ModemControl, ADeadModemSaysNothing) {
    Simulation lab;
    lab.Type(1, "ATS0=1\r");
    lab.Heard(1);
    EXPECT_EQ(lab.Control("1 silent on"), "ok");
    lab.Type(1, "ATX1\r");
    EXPECT_EQ(lab.State(1, "x"), "4");
    lab.Type(0, "ATDT5550002\r");
    lab.Await(0, "NO CARRIER");
    EXPECT_EQ(lab.Heard(1), "");
    EXPECT_FALSE(lab.At(1).RingSignal());
    EXPECT_EQ(lab.Control("1 silent off"), "ok");
    EXPECT_EQ(lab.Reply(1, "AT"), Framed("OK"));
}

TEST(ModemControl, GarbageComesBeforeEchoAndResult) {
    Simulation lab;
    EXPECT_EQ(lab.Control("0 garbage \\xff\\x20{"), "ok");
    lab.Type(0, "AT\r");
    EXPECT_EQ(lab.Heard(0), "\xff {AT\r\xff {\r\nOK\r\n");
    lab.Type(0, "ATE0\r");
    lab.Heard(0);
    lab.Type(0, "AT\r");
    EXPECT_EQ(lab.Heard(0), "\xff {\r\nOK\r\n");
    lab.Control("0 garbage off");
    lab.Type(0, "AT\r");
    EXPECT_EQ(lab.Heard(0), "\r\nOK\r\n");
}

TEST(ModemControl, TheRateIsWhatConnectTells) {
    const struct {
        const char* rate;
        const char* words;
        const char* number;
    } rows[] = {{"none", "CONNECT", "1\r"},
                {"1200", "CONNECT 1200", "5\r"},
                {"28800 V42bis", "CONNECT 28800 V42bis", "58\r"}};
    for (const auto& row : rows) {
        Simulation lab;
        lab.Type(1, "ATS0=1V0E0\r");
        lab.Control(std::string("0 rate ") + row.rate);
        lab.Control(std::string("1 rate ") + row.rate);
        lab.Reply(0, "ATDT5550002");
        lab.Await(0, Framed(row.words));
        const std::string heard = lab.Heard(1);
        EXPECT_TRUE(heard.ends_with(std::string("2\r") + row.number)) << heard;
    }
}

TEST(ModemControl, TheSlowerSetupCounts) {
    Simulation lab;
    lab.Control("0 setup 20");
    lab.Control("1 setup 3000");
    lab.Type(0, "ATDT5550002\r");
    lab.Await(1, "RING");
    lab.Type(1, "ATA\r");
    EXPECT_EQ(lab.Await(0, "CONNECT"), 3 * kSecond);
}

TEST(ModemControl, OutsideNumbersCanBeTaught) {
    Simulation lab;
    EXPECT_EQ(lab.Control("0 outside 0123 busy"), "ok");
    lab.Type(0, "ATDT0123\r");
    lab.Await(0, "BUSY");
    lab.Type(0, "ATDT90123\r"); // through the digit for a line outside
    lab.Await(0, "BUSY");
}

TEST(ModemControl, OutsideCallersFindABusyLineBusy) {
    Simulation lab;
    EXPECT_EQ(lab.Control("0 call 2"), "ok");
    EXPECT_EQ(lab.Control("0 call 2"), "error busy");
    lab.Type(1, "ATH1\r");
    EXPECT_EQ(lab.Control("1 call 2"), "error busy");
    EXPECT_EQ(lab.Control("0 hangup"), "ok"); // the caller gives up early
    EXPECT_EQ(lab.State(0, "mode"), "command");
}

TEST(ModemControl, ResetIsAsAfterPowerOn) {
    Simulation lab;
    const std::string fresh = lab.Control("0 state");
    lab.ConnectTwo();
    lab.Control("0 garbage junk");
    lab.Control("0 rate none");
    lab.Control("0 setup 7000");
    lab.Control("0 outside 5550100 noanswer");
    lab.Type(0, "data");
    EXPECT_EQ(lab.Control("0 reset"), "ok");
    EXPECT_EQ(lab.Control("0 state"), fresh);
    EXPECT_EQ(lab.Heard(0), "");
    EXPECT_EQ(lab.Await(1, Framed("NO CARRIER")), 1400 * kMillisecond);
    lab.Reply(0, "ATDT5550100");
    lab.Await(0, Framed("BUSY"));
    lab.Control("0 silent on");
    lab.Control("0 dialtone off");
    lab.Control("0 reset");
    lab.Reply(0, "ATDT5550002");
    EXPECT_EQ(lab.Await(0, Framed("CONNECT 14400")), 3200 * kMillisecond);
}

TEST(ModemControl, ResetEndsTheRinging) {
    Simulation lab;
    lab.Control("1 call 5");
    EXPECT_EQ(lab.Heard(1), Framed("RING"));
    lab.Control("1 reset");
    EXPECT_FALSE(lab.At(1).RingSignal());
    lab.Run(60 * kSecond);
    EXPECT_EQ(lab.Heard(1), "");
}

TEST(ModemControl, TextsSurviveTheirEscapes) {
    std::string all;
    for (int i = 0; i < 256; i++)
        all += static_cast<char>(i);
    EXPECT_EQ(UnescapedText(EscapedText(all)), all);
    EXPECT_EQ(EscapedText("a b\\"), "a\\x20b\\x5c");
    EXPECT_EQ(UnescapedText("\\\\x"), "\\x");
}
