// A CTapiApp's start and end.
#include "startuprows.h"
#include "testowner.h"

namespace {

class TapiStart : public TapiTest {};

TEST_F(TapiStart, GivesTheReasonOfEachFailure) {
    for (const telephony::StartUpRow& row : telephony::startUpRows) {
        ExchangeFail("lineInitializeExA", TapiError(row.error), 1);
        const CTapiApp disabled(owner);
        EXPECT_TRUE(disabled.IsDisabled()) << row.text;
        EXPECT_EQ(disabled.StartUpError(), row.text);
    }
    EXPECT_EQ(Logged("lineInitializeEx failed"), static_cast<int>(std::size(telephony::startUpRows)));
    EXPECT_EQ(Asked("lineShutdown"), 0) << "there is nothing to shut down";
}

TEST_F(TapiStart, ADisabledObjectFailsEverythingWithoutAskingTheService) {
    ExchangeFail("lineInitializeExA", TapiError(LINEERR_NOMEM), 1);
    Start();
    ExchangeClearRecord();
    DWORD device = 0, permanentId = 5;
    std::string name = "x", provider = "y";
    EXPECT_EQ(app->NegotiateVersion(dataLine), 0x20000U);
    EXPECT_FALSE(app->IsDataModem(dataLine));
    EXPECT_FALSE(app->FindNextDataModem(device));
    EXPECT_EQ(app->GetModemName(dataLine), "");
    EXPECT_FALSE(app->GetModemName(dataLine, name, provider, permanentId));
    EXPECT_EQ(name + provider, "");
    EXPECT_EQ(permanentId, 0U);
    EXPECT_EQ(app->FindModem("Alpha Modem"), noLine);
    app->ConfigDialog(dataLine, nullptr);
    EXPECT_FALSE(app->Dial(dataLine, "555", 0));
    EXPECT_EQ(app->LastError(), "");
    EXPECT_FALSE(app->IsDialling());
    EXPECT_EQ(app->GetCommHandle(), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(app->SetAnswer(true, dataLine));
    EXPECT_EQ(Logged("TAPI is disabled"), 1);
    EXPECT_FALSE(app->HangUp());
    EXPECT_EQ(owner.Events(), std::vector<std::string>{"disconnected"});
    EXPECT_EQ(Record(), "");
}

TEST_F(TapiStart, AsksForVersionTwoUnderItsName) {
    Start();
    EXPECT_FALSE(app->IsDisabled());
    EXPECT_EQ(app->StartUpError(), "");
    EXPECT_EQ(Asked("lineInitializeEx name=Lantry version=20000"), 1) << Record();
}

TEST_F(TapiStart, LogsTheKindOfEachLine) {
    Start();
    EXPECT_EQ(Logged("Data\r"), 2) << logfiles::Messages();
    EXPECT_EQ(Logged("Voice\n"), 1);
}

TEST_F(TapiStart, EndsWithItsLineClosed) {
    StartAnswering();
    EXPECT_EQ(Held().lines, 1U);
    ExchangeClearRecord();
    app.reset();
    EXPECT_EQ(Asked("lineClose"), 1);
    EXPECT_EQ(Asked("lineShutdown"), 1);
    EXPECT_EQ(Held().applications, 0U);
}

TEST_F(TapiStart, ManyObjectsLeaveNoHandleBehind) {
    Start();
    app.reset();
    DWORD before = 0, after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int turn = 0; turn < 20; ++turn) {
        Start();
        app.reset();
    }
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_LE(after, before + 5);
}

TEST_F(TapiStart, AServiceThatHoldsTheThreadIsLeftBehind) {
    TapiLimits limits;
    limits.threadEnd = 100;
    Start(limits);
    ASSERT_TRUE(app->SetAnswer(true, dataLine));
    ExchangeDelay("lineClose", 3000);
    ExchangeSendMessage(dataLine, LINE_CALLSTATE, LINECALLSTATE_IDLE, 0, 0);
    ASSERT_TRUE(host::PumpUntil([] { return Asked("lineClose") == 1; }));
    expectedTerminations = 1;
    const host::Clock clock;
    ExchangeDelay("lineClose", 0);
    app.reset();
    EXPECT_LT(clock.Gone(), 2500U);
}

} // namespace
