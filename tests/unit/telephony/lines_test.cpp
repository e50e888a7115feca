// The lines of the service.
#include "testowner.h"

namespace {

class TapiLines : public TapiTest {};

TEST_F(TapiLines, NegotiatesWithinItsRange) {
    Start();
    ExchangeClearRecord();
    EXPECT_EQ(app->NegotiateVersion(dataLine), 0x20000U);
    EXPECT_EQ(Asked("low=10004 high=20000"), 1) << Record();
}

TEST_F(TapiLines, AVersionThatIsRefusedIsThatOfTheStart) {
    Start();
    ExchangeFail("lineNegotiateAPIVersion", TapiError(LINEERR_INCOMPATIBLEAPIVERSION), 1);
    EXPECT_EQ(app->NegotiateVersion(dataLine), 0x20000U);
    ExchangeFail("lineNegotiateAPIVersion", 0, 1);
    EXPECT_EQ(app->NegotiateVersion(dataLine), 0x20000U) << "nothing filled in";
    EXPECT_EQ(app->NegotiateVersion(99), 0x20000U) << "no such device";
}

TEST_F(TapiLines, TellsDataModemsFromOthers) {
    Start();
    EXPECT_TRUE(app->IsDataModem(dataLine));
    EXPECT_FALSE(app->IsDataModem(voiceLine));
    EXPECT_TRUE(app->IsDataModem(otherLine));
    EXPECT_FALSE(app->IsDataModem(3)) << "no such device";
}

TEST_F(TapiLines, GrowsTheBlockForAsLongAsTheServiceWants) {
    Start();
    for (const DWORD more : {0U, 1U, 300U, 5000U}) {
        ExchangeDemandMore(more);
        EXPECT_TRUE(app->IsDataModem(dataLine)) << more;
        EXPECT_EQ(app->GetModemName(dataLine), "Alpha Modem") << more;
    }
}

TEST_F(TapiLines, AFailureIsLoggedAndNoModem) {
    Start();
    ExchangeFail("lineGetDevCapsA", TapiError(LINEERR_NODRIVER), 1);
    EXPECT_FALSE(app->IsDataModem(dataLine));
    EXPECT_EQ(Logged("lineGetDevCaps returned -2147483581\n"), 1) << logfiles::Messages();
    ExchangeFail("lineGetDevCapsA", 0, 1);
    EXPECT_FALSE(app->IsDataModem(dataLine)) << "nothing filled in";
    ExchangeFail("lineGetDevCapsA", TapiError(LINEERR_STRUCTURETOOSMALL), INFINITE);
    EXPECT_FALSE(app->IsDataModem(dataLine)) << "never enough";
}

TEST_F(TapiLines, NextModemStartsAtTheGivenLine) {
    Start();
    const std::pair<DWORD, DWORD> rows[] = {{0, 0}, {1, 2}, {2, 2}};
    for (const auto& [from, found] : rows) {
        DWORD device = from;
        EXPECT_TRUE(app->FindNextDataModem(device)) << from;
        EXPECT_EQ(device, found);
    }
    for (const DWORD from : {3U, 0xFFFFFFFFU}) {
        DWORD device = from;
        EXPECT_FALSE(app->FindNextDataModem(device));
        EXPECT_EQ(device, from) << "unchanged";
    }
}

TEST_F(TapiLines, GivesNameProviderAndPermanentId) {
    Start();
    std::string name, provider;
    DWORD permanentId = 0;
    EXPECT_TRUE(app->GetModemName(otherLine, name, provider, permanentId));
    EXPECT_EQ(name, "Beta Modem");
    EXPECT_EQ(provider, "Provider B");
    EXPECT_NE(permanentId, 0U);
    EXPECT_FALSE(app->GetModemName(voiceLine, name, provider, permanentId));
    EXPECT_EQ(name + provider, "");
    EXPECT_EQ(permanentId, 0U);
    EXPECT_EQ(app->GetModemName(voiceLine), "");
}

TEST_F(TapiLines, FindsAModemByItsNameCaseAside) {
    Start();
    const std::pair<const char*, int> rows[] = {
        {"Alpha Modem", 0}, {"ALPHA modem", 0}, {"beta modem", 2}, {"Desk Set", noLine},
        {"Alpha", noLine},  {"", noLine},       {nullptr, noLine}, {"COM5", noLine},
    };
    for (const auto& [name, line] : rows)
        EXPECT_EQ(app->FindModem(name), line) << (name ? name : "null");
}

// As much of a name as a control keeps is the whole of it.
TEST_F(TapiLines, LongNamesAreComparedAsFarAsAControlKeepsThem) {
    const std::string kept(99, 'm');
    ExchangeAddLine((kept + "ore").c_str(), "", LINEMEDIAMODE_DATAMODEM, "103", nullptr);
    Start();
    const std::pair<std::string, int> rows[] = {
        {kept + "ore", 3},
        {kept, 3},
        {std::string(99, 'M'), 3},
        {kept + "any", 3},
        {std::string(98, 'm'), noLine},
        {std::string(98, 'm') + "x", noLine},
    };
    for (const auto& [name, line] : rows)
        EXPECT_EQ(app->FindModem(name.c_str()), line) << name;
}

TEST_F(TapiLines, AFailingConfigDialogIsLogged) {
    Start();
    app->ConfigDialog(dataLine, nullptr);
    EXPECT_EQ(Logged("lineConfigDialog"), 0);
    ExchangeFail("lineConfigDialogA", TapiError(LINEERR_OPERATIONFAILED), 1);
    app->ConfigDialog(dataLine, nullptr);
    const std::string line =
        "lineConfigDialog returned " + std::to_string(TapiError(LINEERR_OPERATIONFAILED));
    EXPECT_EQ(Logged(line), 1) << logfiles::Messages();
}

TEST_F(TapiLines, TheConfigDialogIsThatOfThePort) {
    Start();
    app->ConfigDialog(otherLine, GetDesktopWindow());
    EXPECT_EQ(Asked("lineConfigDialog device=2 class=COMM owner=1"), 1) << Record();
}

} // namespace
