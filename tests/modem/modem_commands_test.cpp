// The command state: attention, echo, results, registers.
#include "simulation.h"

namespace {

const std::string kOk = Framed("OK");
const std::string kError = Framed("ERROR");

} // namespace

TEST(ModemAttention, IsUpperOrLowerCaseButNotMixed) {
    const struct {
        const char* typed;
        const char* reply;
    } rows[] = {{"AT\r", "\r\nOK\r\n"},
                {"at\r", "\r\nOK\r\n"},
                {"At\r", ""},
                {"aT\r", ""},
                {"ate1\r", "\r\nOK\r\n"},
                {"xAT\r", "\r\nOK\r\n"},
                {"AAT\r", "\r\nOK\r\n"},
                {"T\r", ""}};
    for (const auto& row : rows) {
        Simulation lab;
        lab.Type(0, row.typed);
        EXPECT_EQ(lab.Heard(0), std::string(row.typed) + row.reply) << row.typed;
    }
}

TEST(ModemAttention, ASlashRepeatsTheLastLineAtOnce) {
    Simulation lab;
    lab.Reply(0, "ATS7?");
    lab.Type(0, "A/");
    EXPECT_EQ(lab.Heard(0), "A/" + Framed("050") + kOk);
}

TEST(ModemAttention, SeveralCommandsMakeALine) {
    Simulation lab;
    EXPECT_EQ(lab.Reply(0, "AT &C0 &D0 X3 S0=4 S7=9"), kOk);
    const std::pair<const char*, const char*> rows[] = {
        {"c", "0"}, {"d", "0"}, {"x", "3"}, {"s0", "4"}, {"s7", "9"}};
    for (const auto& [name, value] : rows)
        EXPECT_EQ(lab.State(0, name), value) << name;
    EXPECT_EQ(lab.State(0, "last"), "AT\\x20&C0\\x20&D0\\x20X3\\x20S0=4\\x20S7=9");
}

TEST(ModemAttention, ALineThatIsTooLongIsAnError) {
    Simulation lab;
    const std::string longest(CommandReader::kLineLimit / 2, 'L');
    EXPECT_EQ(lab.Reply(0, "AT" + std::string(CommandReader::kLineLimit, 'L')), kOk);
    EXPECT_EQ(lab.Reply(0, "AT" + std::string(CommandReader::kLineLimit + 1, 'L')), kError);
    EXPECT_EQ(lab.Reply(0, "AT" + std::string(5000, 'L')), kError);
    EXPECT_EQ(lab.Reply(0, "AT" + longest), kOk);
}

TEST(ModemAttention, BackspaceTakesTheLastCharacterButNotTheAttention) {
    Simulation lab;
    lab.Type(0, "ATS7=12\b\b\b\b\b\b\b\bS8=3\r");
    EXPECT_EQ(lab.State(0, "s7"), "50");
    EXPECT_EQ(lab.State(0, "s8"), "3");
    EXPECT_EQ(lab.Heard(0), "ATS7=12\b \b\b \b\b \b\b \b\b \bS8=3\r" + kOk);
    lab.Type(0, "ATS5=35\rATS8=4#5\r"); // another character for it
    EXPECT_EQ(lab.State(0, "s8"), "5");
}

TEST(ModemCommands, UnknownOnesAndBadValuesAreErrors) {
    Simulation lab;
    for (const char* line : {"ATJ", "AT&", "AT~", "ATE2", "ATV9", "ATX5", "AT&D4", "AT&C2", "ATI5",
                             "ATS0=256", "ATS256=1", "AT+FCLASS=1", "ATDT555?", "AT%"})
        EXPECT_EQ(lab.Reply(0, line), kError) << line;
}

TEST(ModemCommands, WhatStandsBeforeAnErrorIsDone) {
    Simulation lab;
    EXPECT_EQ(lab.Reply(0, "ATS0=3JS0=5"), kError);
    EXPECT_EQ(lab.State(0, "s0"), "3");
}

TEST(ModemCommands, ManyAreAcceptedWithoutEffect) {
    Simulation lab;
    const std::string before = lab.Control("0 state");
    EXPECT_EQ(lab.Reply(0, "ATL2M1N1B0W2Y0&K3&Q5&S0&W0\\N3%C1&G0&R1&A3&H1&B1"), kOk);
    EXPECT_EQ(lab.Control("0 state").substr(0, before.size()), before);
}

TEST(ModemCommands, EachIdentityHasAText) {
    Simulation lab;
    for (const char* line : {"ATI", "ATI0", "ATI1", "ATI2", "ATI3", "ATI4"}) {
        const std::string reply = lab.Reply(0, line);
        EXPECT_GT(reply.size(), kOk.size() + 4) << line;
        EXPECT_TRUE(reply.ends_with(kOk)) << line;
    }
}

TEST(ModemCommands, TheFactorysSettingsComeBack) {
    for (const char* line : {"AT&F", "ATZ"}) {
        Simulation lab;
        lab.Reply(0, "ATX1S0=9&D0&C0S2=100");
        EXPECT_EQ(lab.Reply(0, line), kOk);
        const std::pair<const char*, const char*> rows[] = {
            {"x", "4"}, {"s0", "0"}, {"d", "2"}, {"c", "1"}, {"s2", "43"}};
        for (const auto& [name, value] : rows)
            EXPECT_EQ(lab.State(0, name), value) << line << name;
    }
}

TEST(ModemResults, EchoCanBeOff) {
    Simulation lab;
    lab.Type(0, "ATE0\r");
    EXPECT_EQ(lab.Heard(0), "ATE0\r" + kOk);
    lab.Type(0, "AT\r");
    EXPECT_EQ(lab.Heard(0), kOk);
    lab.Type(0, "ATE1\rAT\r");
    EXPECT_EQ(lab.Heard(0), kOk + "AT\r" + kOk);
}

TEST(ModemResults, AreNumbersWithoutWords) {
    Simulation lab;
    EXPECT_EQ(lab.Reply(0, "ATV0"), "0\r");
    EXPECT_EQ(lab.Reply(0, "ATJ"), "4\r");
    EXPECT_EQ(lab.Reply(0, "ATS7?"), "050\r\n0\r");
    EXPECT_EQ(lab.Reply(0, "ATV1"), kOk);
}

TEST(ModemResults, EachHasItsNumberAndWords) {
    const Profile words;
    Profile numbers;
    numbers.words = 0;
    const struct {
        Result result;
        const char* rate;
        const char* words;
        const char* number;
    } rows[] = {{Result::kOk, "", "OK", "0"},
                {Result::kConnect, "", "CONNECT", "1"},
                {Result::kRing, "", "RING", "2"},
                {Result::kNoCarrier, "", "NO CARRIER", "3"},
                {Result::kError, "", "ERROR", "4"},
                {Result::kConnect, "1200", "CONNECT 1200", "5"},
                {Result::kNoDialTone, "", "NO DIALTONE", "6"},
                {Result::kBusy, "", "BUSY", "7"},
                {Result::kNoAnswer, "", "NO ANSWER", "8"},
                {Result::kConnect, "14400/ARQ", "CONNECT 14400/ARQ", "13"},
                {Result::kConnect, "strange", "CONNECT strange", "99"}};
    for (const auto& row : rows) {
        EXPECT_EQ(ResultText(row.result, row.rate, words), Framed(row.words));
        EXPECT_EQ(ResultText(row.result, row.rate, numbers), std::string(row.number) + "\r");
    }
}

TEST(ModemResults, QuietOnesSayNothing) {
    Simulation lab;
    EXPECT_EQ(lab.Reply(0, "ATQ1"), "");
    EXPECT_EQ(lab.Reply(0, "ATJ"), "");
    EXPECT_EQ(lab.Reply(0, "ATS7?"), Framed("050"));
    EXPECT_EQ(lab.Reply(0, "ATQ0"), kOk);
}

TEST(ModemResults, AreFramedByTheRegisters) {
    Simulation lab;
    lab.Reply(0, "ATS4=33");
    EXPECT_EQ(lab.Reply(0, "AT"), "\r!OK\r!");
    lab.Type(0, "ATS3=59\r"); // the answer ends as the next line will
    EXPECT_EQ(lab.Heard(0), "ATS3=59\r;!OK;!");
    lab.Type(0, "AT;");
    EXPECT_EQ(lab.Heard(0), "AT;;!OK;!");
}

TEST(ModemRegisters, AreSetAndShown) {
    Simulation lab;
    EXPECT_EQ(lab.Reply(0, "ATS0?"), Framed("000") + kOk);
    EXPECT_EQ(lab.Reply(0, "ATS0=5S0?"), Framed("005") + kOk);
    EXPECT_EQ(lab.Reply(0, "ATS200=255S200?S2?"), Framed("255") + Framed("043") + kOk);
    EXPECT_EQ(lab.Reply(0, "ATS0=S0?"), Framed("000") + kOk);
}
