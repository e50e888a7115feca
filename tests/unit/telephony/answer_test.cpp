// Calls that are answered.
#include "testowner.h"

#include <thread>

namespace {

using Texts = std::vector<std::string>;

class TapiAnswer : public TapiTest {
  public:
    // Without serving messages.
    static bool WaitUntilAsked(const std::string& part) {
        for (const host::Clock clock; clock.Gone() < 5000; Sleep(1))
            if (Asked(part))
                return true;
        return false;
    }
};

TEST_F(TapiAnswer, OpensTheLineAsOwnerWithFiveRings) {
    Start();
    ExchangeClearRecord();
    EXPECT_TRUE(app->SetAnswer(true, otherLine));
    EXPECT_EQ(Asked("lineOpen device=2 privileges=owner media=10"), 1) << Record();
    EXPECT_EQ(Asked("lineSetNumRings address=2 rings=5"), 1) << "the device's number as address";
    for (const char* line :
         {"SetAnswer(1)", "LineOpen returns 0x0", "lineSetNumRings(5) returns 0", "SetAnswer returns 1"})
        EXPECT_EQ(Logged(line), 1) << line;
}

TEST_F(TapiAnswer, TheSameAgainDoesNothing) {
    StartAnswering();
    ExchangeClearRecord();
    EXPECT_TRUE(app->SetAnswer(true, otherLine));
    EXPECT_EQ(Record(), "");
    EXPECT_EQ(Logged("AnswerCalls set to same value - no action take"), 1);
    app->SetAnswer(false, dataLine);
    EXPECT_TRUE(app->SetAnswer(false, dataLine)) << "the answer to the same value";
    EXPECT_EQ(Logged("AnswerCalls set to same value - no action take"), 2);
}

TEST_F(TapiAnswer, OffClosesTheLine) {
    StartAnswering();
    EXPECT_FALSE(app->SetAnswer(false, dataLine));
    EXPECT_EQ(Held().lines, 0U);
    for (const char* line : {"SetAnswer(0)", "LineClose returns 0x0", "SetAnswer returns 0"})
        EXPECT_EQ(Logged(line), 1) << line;
    EXPECT_TRUE(app->SetAnswer(true, dataLine)) << "on again";
}

TEST_F(TapiAnswer, DuringACallItIsRefused) {
    ExchangeAddRule("5551", ExchangeConnects, 0);
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    ExchangeClearRecord();
    EXPECT_FALSE(app->SetAnswer(true, otherLine));
    EXPECT_EQ(Record(), "");
    const FileHandle comm(app->GetCommHandle());
    EXPECT_TRUE(comm) << "the call goes on";
}

TEST_F(TapiAnswer, ALineThatDoesNotOpenDoesNotAnswer) {
    Start();
    for (const LONG result : {TapiError(LINEERR_ALLOCATED), 0L}) {
        ExchangeFail("lineOpenA", result, 1);
        EXPECT_FALSE(app->SetAnswer(true, dataLine));
    }
    EXPECT_EQ(Logged("LineOpen returns 0x80000001"), 1) << logfiles::Messages();
    EXPECT_EQ(Logged("lineOpen failed"), 2);
    EXPECT_EQ(Asked("lineSetNumRings"), 0);
    EXPECT_TRUE(app->SetAnswer(true, dataLine)) << "it may be tried again";
}

TEST_F(TapiAnswer, ADialWhileItAnswersIsUnavailable) {
    StartAnswering();
    EXPECT_FALSE(app->Dial(dataLine, "5551", 0));
    EXPECT_EQ(app->LastError(), "Connection unavailable");
    EXPECT_EQ(Held().lines, 1U);
}

TEST_F(TapiAnswer, ACallIsAnsweredAndItsHandleTold) {
    AnswerACall();
    EXPECT_EQ(owner.Events(), (Texts{"notify 6", "answered"}));
    EXPECT_TRUE(owner.AllOnThread(GetCurrentThreadId()));
    EXPECT_TRUE(owner.comm);
    COMMTIMEOUTS timeouts = {};
    EXPECT_TRUE(GetCommTimeouts(owner.comm.get(), &timeouts));
    EXPECT_EQ(Asked("lineAnswer"), 1);
    EXPECT_EQ(Asked("lineGetID select=4"), 1);
}

TEST_F(TapiAnswer, TheLineOpensAgainWhenTheFarEndHangsUp) {
    AnswerACall();
    for (int call = 1; call <= 3; ++call) {
        owner.Forget();
        ExchangeClearRecord();
        ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL);
        EXPECT_TRUE(host::PumpUntil([] { return Asked("lineSetNumRings address=0 rings=5") == 1; }));
        EXPECT_EQ(owner.Events(), (Texts{"disconnected", "notify 5", "idle"}));
        EXPECT_FALSE(owner.comm);
        EXPECT_EQ(Held().lines, 1U);
        EXPECT_EQ(Held().calls, 0U);
        owner.Forget();
        ExchangeRing(dataLine);
        EXPECT_TRUE(PumpUntilHeard("answered")) << call;
    }
}

TEST_F(TapiAnswer, HangUpDropsTheCallAndAnswersAgain) {
    AnswerACall();
    ExchangeClearRecord();
    EXPECT_TRUE(app->HangUp());
    EXPECT_FALSE(owner.comm);
    EXPECT_TRUE(host::PumpUntil([] { return Asked("lineSetNumRings") == 1; }));
    owner.Forget();
    ExchangeRing(dataLine);
    EXPECT_TRUE(PumpUntilHeard("answered"));
}

TEST_F(TapiAnswer, ALineThatDoesNotOpenAgainAnswersNoMore) {
    AnswerACall();
    ExchangeFail("lineOpenA", TapiError(LINEERR_RESOURCEUNAVAIL), 1);
    ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL);
    EXPECT_TRUE(host::PumpUntil([] { return Logged("lineOpen failed") == 1; }));
    EXPECT_TRUE(host::PumpUntil([this] { return !app->IsAnswering(); }));
    EXPECT_EQ(Held().lines, 0U);
    EXPECT_EQ(Logged("SetAnswer returns 0"), 0);
    EXPECT_TRUE(app->SetAnswer(true, dataLine));
    EXPECT_EQ(Held().lines, 1U);
}

TEST_F(TapiAnswer, TurnedOffWhenTheLineGoesIdleItStaysOff) {
    AnswerACall();
    bool stillOn = true;
    owner.OnEventDo([&](const std::string& event) {
        if (event == "idle")
            stillOn = app->SetAnswer(false, dataLine);
    });
    ExchangeClearRecord();
    ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL);
    EXPECT_TRUE(PumpUntilHeard("idle"));
    EXPECT_FALSE(stillOn);
    host::Pump(100);
    EXPECT_EQ(Asked("lineOpen"), 0);
    EXPECT_EQ(Held().lines, 0U);
}

TEST_F(TapiAnswer, NoDialGetsBetweenIdleAndTheNextOpening) {
    AnswerACall();
    bool dialled = true;
    owner.OnEventDo([&](const std::string& event) {
        if (event == "idle")
            dialled = app->Dial(dataLine, "5551", 0);
    });
    ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL);
    EXPECT_TRUE(PumpUntilHeard("idle"));
    EXPECT_FALSE(dialled);
    EXPECT_EQ(Asked("lineMakeCall"), 0);
    EXPECT_TRUE(host::PumpUntil([] { return Held().lines == 1; }));
}

TEST_F(TapiAnswer, OffDuringACallEndsTheCall) {
    AnswerACall();
    EXPECT_FALSE(app->SetAnswer(false, dataLine));
    EXPECT_EQ(Held().lines + Held().calls, 0U);
    EXPECT_FALSE(owner.comm);
    EXPECT_TRUE(app->SetAnswer(true, dataLine));
    owner.Forget();
    ExchangeRing(dataLine);
    EXPECT_TRUE(PumpUntilHeard("answered"));
}

TEST_F(TapiAnswer, ASecondCallIsLeftToRing) {
    AnswerACall();
    const DWORD second = ExchangeRing(dataLine);
    ASSERT_NE(second, 0U);
    ASSERT_TRUE(PumpUntilHeard("notify 6", 2));
    host::Pump(50);
    EXPECT_EQ(Asked("lineAnswer"), 1);
    EXPECT_EQ(owner.Count("answered"), 1);
    EXPECT_TRUE(owner.comm) << "the first one goes on";
}

// What becomes of the next call of a function of the service.
constexpr void (*ends[])(const char* function) = {
    [](const char* function) { ExchangeFail(function, TapiError(LINEERR_OPERATIONFAILED), 1); },
    [](const char* function) { ExchangeCrash(function, 1); },
};

TEST_F(TapiAnswer, ARefusedAnswerIsHungUp) {
    for (const auto& end : ends) {
        StartAnswering();
        end("lineAnswer");
        ExchangeClearRecord();
        ExchangeRing(dataLine);
        EXPECT_TRUE(host::PumpUntil([] { return Asked("lineSetNumRings") == 1; })) << Record();
        EXPECT_EQ(Asked("lineDrop"), 1);
        EXPECT_EQ(Held().calls, 0U);
        owner.Forget();
        ExchangeRing(dataLine);
        EXPECT_TRUE(PumpUntilHeard("answered")) << "the next one is answered";
        app.reset();
    }
}

TEST_F(TapiAnswer, ALineWhoseOpeningFaultsAnswersNoMore) {
    AnswerACall();
    ExchangeCrash("lineOpenA", 1);
    ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL);
    EXPECT_TRUE(host::PumpUntil([this] { return !app->IsAnswering(); }));
    EXPECT_EQ(Held().lines, 0U);
    owner.Forget();
    EXPECT_TRUE(app->SetAnswer(true, dataLine));
    ExchangeRing(dataLine);
    EXPECT_TRUE(PumpUntilHeard("answered"));
}

TEST_F(TapiAnswer, ALineWhoseRingsCannotBeSetAnswersAllTheSame) {
    for (const auto& end : ends) {
        Start();
        end("lineSetNumRings");
        EXPECT_TRUE(app->SetAnswer(true, dataLine));
        EXPECT_EQ(Held().lines, 1U);
        owner.Forget();
        ExchangeRing(dataLine);
        EXPECT_TRUE(PumpUntilHeard("answered"));
        app.reset();
    }
}

TEST_F(TapiAnswer, DestroyedInsideOfEachEvent) {
    for (const char* event : {"notify 6", "answered", "disconnected", "notify 5", "idle"}) {
        owner.Forget();
        owner.OnEventDo({});
        StartAnswering();
        owner.OnEventDo([&](const std::string& heard) {
            if (heard == event)
                std::exchange(app, nullptr).reset();
        });
        ExchangeRing(dataLine);
        const auto hangUp = host::When([&] { return owner.Count("answered") > 0; },
                                       [] { ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL); });
        EXPECT_TRUE(host::PumpUntil([&] { return !app; })) << event;
        EXPECT_EQ(Held().applications, 0U) << event;
        EXPECT_EQ(Held().calls, 0U) << event;
        owner.comm.reset();
    }
}

TEST_F(TapiAnswer, ALateFailingReplyToAnAnswerSparesTheNextWait) {
    StartAnswering();
    ExchangeRing(dataLine);
    ASSERT_TRUE(PumpUntilHeard("answered"));
    const DWORD answer = ExchangeLastRequest();
    ASSERT_TRUE(app->HangUp());
    const DWORD drop = ExchangeLastRequest();
    ASSERT_NE(answer, drop);
    ASSERT_TRUE(host::PumpUntil([] { return Asked("lineSetNumRings") == 2; }));
    owner.Forget();
    const int replies = Logged("LINE_REPLY");
    ExchangeSendReply(answer, TapiError(LINEERR_OPERATIONFAILED));
    ExchangeSendReply(drop, TapiError(LINEERR_OPERATIONFAILED));
    EXPECT_TRUE(host::PumpUntil([&] { return Logged("LINE_REPLY") == replies + 2; }));
    EXPECT_EQ(owner.Events(), Texts{});
    EXPECT_EQ(Held().lines, 1U);
    ExchangeRing(dataLine);
    EXPECT_TRUE(PumpUntilHeard("answered"));
}

TEST_F(TapiAnswer, AFailingReplyToTheAnswerHangsUp) {
    ExchangeSetPace(60000); // no state comes by itself
    StartAnswering();
    ExchangeRing(dataLine);
    ASSERT_TRUE(host::PumpUntil([] { return Asked("lineAnswer") == 1 && Logged("LINE_REPLY") == 1; }));
    ExchangeSendReply(ExchangeLastRequest(), TapiError(LINEERR_OPERATIONFAILED));
    ASSERT_TRUE(host::PumpUntil([] { return Asked("lineDrop") == 1; }));
    for (const DWORD state : {LINECALLSTATE_CONNECTED, LINECALLSTATE_IDLE})
        ExchangeSendMessage(dataLine, LINE_CALLSTATE, state, 0, 0);
    EXPECT_TRUE(PumpUntilHeard("idle"));
    EXPECT_EQ(Asked("lineDrop"), 1);
    EXPECT_EQ(owner.Count("answered"), 0) << "it was being dropped when it was connected";
    EXPECT_TRUE(host::PumpUntil([] { return Asked("lineSetNumRings") == 2; }));
}

TEST_F(TapiAnswer, AConnectionIsToldOnce) {
    AnswerACall();
    ExchangeSendMessage(dataLine, LINE_CALLSTATE, LINECALLSTATE_CONNECTED, 0, 0);
    EXPECT_TRUE(host::PumpUntil([] { return Logged("LINE_CALLSTATE  Connected") == 2; }));
    host::Pump(20);
    EXPECT_EQ(owner.Count("answered"), 1);
    EXPECT_EQ(Asked("lineGetID"), 1);
}

TEST_F(TapiAnswer, AServiceThatDiesLeavesNoLineWaiting) {
    StartAnswering();
    ExchangeFail("lineGetMessage", TapiError(LINEERR_NODRIVER), INFINITE);
    ExchangeSendMessage(dataLine, LINE_REQUEST, 0, 0, 0);
    EXPECT_TRUE(host::PumpUntil([this] { return !app->IsAnswering() && Held().lines == 0; }));
    EXPECT_FALSE(app->SetAnswer(true, dataLine)) << "nobody would hear a call";
    EXPECT_EQ(Held().lines, 0U);
}

// Does it on a thread of its own: that of the test is held up.
class Meanwhile {
  public:
    explicit Meanwhile(std::function<void()> work) : thread_(std::move(work)) {}
    ~Meanwhile() { thread_.join(); }

  private:
    std::thread thread_;
};

// While the line is being opened.
struct OpeningRow {
    const char* what;
    void(WINAPI* hold)(const char* function, DWORD milliseconds);
    DWORD milliseconds;
    void (*callComesAndGoes)();
    Texts heard; // before the line is open
};

void SendState(DWORD state) {
    ExchangeSendMessage(0, LINE_CALLSTATE, state, 0, 0);
}

const OpeningRow openings[] = {
    {"the owner can hear of nothing",
     ExchangeDelay,
     1000,
     [] {
         ExchangeFail("lineAnswer", 1, 1); // a request that is accepted
         SendState(LINECALLSTATE_OFFERING);
         EXPECT_TRUE(TapiAnswer::WaitUntilAsked("lineAnswer"));
         SendState(LINECALLSTATE_IDLE);
         EXPECT_TRUE(TapiAnswer::WaitUntilAsked("lineDeallocateCall"));
     },
     {}},
    {"the owner hears of all",
     ExchangeServe,
     3000,
     [] {
         EXPECT_NE(ExchangeRing(0), 0U);
         EXPECT_TRUE(TapiAnswer::WaitUntilAsked("lineGetID"));
         ExchangeFarHangUp(0, LINEDISCONNECTMODE_NORMAL);
     },
     {"notify 6", "answered", "disconnected", "notify 5", "idle"}},
};

TEST_F(TapiAnswer, ACallMayComeAndGoWhileTheLineIsOpenedForTheFirstTime) {
    for (const OpeningRow& row : openings) {
        SCOPED_TRACE(row.what);
        owner.Forget();
        owner.OnEventDo([](const std::string& event) {
            if (event == "idle")
                ExchangeDelay("lineSetNumRings", 0); // the thread opens the line at once
        });
        Start();
        ExchangeClearRecord();
        row.hold("lineSetNumRings", row.milliseconds);
        {
            const Meanwhile call([&] {
                EXPECT_TRUE(TapiAnswer::WaitUntilAsked("lineSetNumRings"));
                row.callComesAndGoes();
            });
            EXPECT_TRUE(app->SetAnswer(true, dataLine));
            EXPECT_EQ(owner.Events(), row.heard);
        }
        ASSERT_TRUE(PumpUntilHeard("idle"));
        EXPECT_TRUE(host::PumpUntil([] { return Held().lines == 1 && Held().calls == 0; }));
        EXPECT_TRUE(app->IsAnswering());
        ExchangeDelay("lineSetNumRings", 0);
        owner.OnEventDo({});
        owner.Forget();
        ExchangeRing(dataLine);
        EXPECT_TRUE(PumpUntilHeard("answered")) << "the next one";
        app.reset();
        owner.comm.reset();
    }
}

} // namespace
