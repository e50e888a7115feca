// Calls that are placed: dialling, its ends, hanging up.
#include "testowner.h"

namespace {

class TapiCalls : public TapiTest {
  protected:
    void SetUp() override {
        TapiTest::SetUp();
        ExchangeAddRule("5551", ExchangeConnects, 0);
        ExchangeAddRule("5552", ExchangeRings, 0);
        ExchangeAddRule("5553", ExchangeNeverReplies, 0);
    }
    // A call that rings for ever, and what happens meanwhile.
    bool DialAndMeanwhile(const std::function<void()>& action, const char* number = "5552") {
        const auto when = host::When(
            [this, number] { return std::string(number) == "5553" || Logged("Ring back") > 0; }, action);
        return app->Dial(dataLine, number, 0);
    }
};

using Texts = std::vector<std::string>;

TEST_F(TapiCalls, AConnectedDialHasAHandle) {
    Start();
    EXPECT_TRUE(app->Dial(dataLine, "5551", 9600));
    EXPECT_EQ(app->LastError(), "");
    EXPECT_FALSE(app->IsDialling());
    const FileHandle comm(app->GetCommHandle());
    ASSERT_TRUE(comm);
    COMMTIMEOUTS timeouts = {};
    EXPECT_TRUE(GetCommTimeouts(comm.get(), &timeouts)) << "it is an open port";
    EXPECT_EQ(Asked("lineGetID select=4 class=comm/datamodem"), 1);
    EXPECT_EQ(owner.Events(), Texts{}) << "the dialler takes the handle";
    EXPECT_EQ(Held().calls, 1U);
}

TEST_F(TapiCalls, TheRequestIsThatOfADataCall) {
    Start();
    ExchangeClearRecord();
    EXPECT_TRUE(app->Dial(dataLine, "5551", 9600));
    EXPECT_EQ(Asked("lineOpen device=0 privileges=none media=10"), 1) << Record();
    EXPECT_EQ(Asked("lineMakeCall number=5551 country=0 size=176 bearer=1 maxrate=9600 media=10 flags=2 "
                    "addressmode=1 dialtone=4000"),
              1)
        << Record();
}

TEST_F(TapiCalls, NoRateMeansAnyRate) {
    Start();
    EXPECT_TRUE(app->Dial(dataLine, "5551", 0));
    EXPECT_EQ(Asked("maxrate=0"), 1) << Record();
}

TEST_F(TapiCalls, OnlyACanonicalNumberIsTranslated) {
    ExchangeAddTranslation("+1 (206) 5551", "9,5551");
    ExchangeAddRule("9,5551", ExchangeConnects, 0);
    ExchangeAddRule("1 +5551", ExchangeBusy, 0);
    Start();
    EXPECT_TRUE(app->Dial(dataLine, "+1 (206) 5551", 0));
    EXPECT_EQ(Asked("number=9,5551 "), 1) << Record();
    app.reset();
    Start();
    EXPECT_FALSE(app->Dial(dataLine, "1 +5551", 0));
    EXPECT_EQ(Asked("number=1 +5551 "), 1) << Record();
}

TEST_F(TapiCalls, ANumberIsCutAt127Characters) {
    const std::string longest(127, '7');
    ExchangeAddRule(longest.c_str(), ExchangeConnects, 0);
    Start();
    EXPECT_TRUE(app->Dial(dataLine, (longest + "89").c_str(), 0));
    EXPECT_EQ(Asked("number=" + longest + " "), 1);
}

struct EndRow {
    int outcome;
    DWORD argument;
    const char* text;
};

constexpr EndRow ends[] = {
    {ExchangeBusy, 0, "Busy"},
    {ExchangeBusyStateOnly, 0, ""},
    {ExchangeNoAnswer, 0, "No Answer"},
    {ExchangeIdle, 0, ""},
    {ExchangeDisconnects, LINEDISCONNECTMODE_NORMAL, "Canceled"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_UNKNOWN, "Canceled"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_REJECT, "Call rejected"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_PICKUP, "Canceled"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_FORWARDED, "Canceled"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_BUSY, "Busy"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_NOANSWER, "No Answer"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_BADADDRESS, "Bad Address"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_UNREACHABLE, "Destination Unreachable"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_CONGESTION, "Canceled"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_INCOMPATIBLE, "Canceled"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_UNAVAIL, "Canceled"},
    {ExchangeDisconnects, LINEDISCONNECTMODE_NODIALTONE, "No Dial Tone"},
    {ExchangeReplyFails, LINEERR_CALLUNAVAIL, "No Dial tone"},
    {ExchangeReplyFails, LINEERR_RESOURCEUNAVAIL, "Canceled"},
    {ExchangeRequestFails, LINEERR_CALLUNAVAIL, "No Dial tone"},
    {ExchangeRequestFails, LINEERR_INVALADDRESS, "Canceled"},
    {ExchangeRequestFails, 0, "Canceled"},
};

TEST_F(TapiCalls, EachFailureHasItsTextAndLeavesNothingOpen) {
    for (const EndRow& row : ends) {
        if (row.outcome == ExchangeRequestFails && !row.argument)
            ExchangeFail("lineMakeCallA", 0, 1);
        ExchangeAddRule("666", row.outcome, row.argument);
        Start();
        EXPECT_FALSE(app->Dial(dataLine, "666", 0)) << row.outcome << " " << row.argument;
        EXPECT_EQ(app->LastError(), row.text) << row.outcome << " " << row.argument;
        EXPECT_TRUE(HoldsNothing()) << row.outcome << " " << row.argument;
        EXPECT_TRUE(owner.AllOnThread(GetCurrentThreadId()));
        EXPECT_TRUE(app->Dial(dataLine, "5551", 0)) << "again, at once, after " << row.outcome;
        EXPECT_EQ(app->LastError(), "") << "cleared by the next dial";
        app.reset();
    }
}

TEST_F(TapiCalls, ABusyDialTellsOfTheDisconnectionAndTheCarrier) {
    ExchangeAddRule("666", ExchangeDisconnects, LINEDISCONNECTMODE_BUSY);
    Start();
    EXPECT_FALSE(app->Dial(dataLine, "666", 0));
    ASSERT_GE(owner.Events().size(), 2U);
    EXPECT_EQ(owner.Events()[0], "disconnected");
    EXPECT_EQ(owner.Events()[1], "notify 5");
}

TEST_F(TapiCalls, TheReasonComesAfterTheDisconnectionWasTold) {
    ExchangeAddRule("666", ExchangeReplyFails, LINEERR_CALLUNAVAIL);
    Start();
    EXPECT_FALSE(app->Dial(dataLine, "666", 0));
    const int told = owner.Count("disconnected");
    EXPECT_EQ(told, 1);
    host::Pump(100);
    EXPECT_EQ(owner.Count("disconnected"), told) << "no late one, which would hide the reason";
}

TEST_F(TapiCalls, ALineThatDoesNotOpenIsUnavailable) {
    Start();
    for (const LONG result : {TapiError(LINEERR_ALLOCATED), 0L}) {
        ExchangeFail("lineOpenA", result, 1);
        EXPECT_FALSE(app->Dial(dataLine, "5551", 0));
        EXPECT_EQ(app->LastError(), "Connection unavailable");
    }
    EXPECT_EQ(Logged("lineOpen failed"), 2);
    EXPECT_EQ(Asked("lineMakeCall"), 0);
    EXPECT_EQ(Asked("lineClose"), 0);
}

TEST_F(TapiCalls, ASecondDialIsUnavailable) {
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    EXPECT_FALSE(app->Dial(dataLine, "5551", 0));
    EXPECT_EQ(app->LastError(), "Connection unavailable");
    EXPECT_EQ(Held().calls, 1U) << "the first one stays";
}

TEST_F(TapiCalls, HangUpOfAConnectedCallDropsItAndIdleReleasesIt) {
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    ExchangeClearRecord();
    EXPECT_TRUE(app->HangUp());
    EXPECT_EQ(owner.Events(), Texts{"disconnected"});
    EXPECT_TRUE(PumpUntilHeard("idle"));
    EXPECT_EQ(Asked("lineDrop"), 1);
    EXPECT_EQ(Asked("lineDeallocateCall"), 1);
    EXPECT_EQ(Asked("lineClose"), 1);
    EXPECT_EQ(Held().lines + Held().calls, 0U);
    EXPECT_EQ(app->GetCommHandle(), INVALID_HANDLE_VALUE);
    EXPECT_TRUE(app->Dial(dataLine, "5551", 0)) << "the next one works";
}

TEST_F(TapiCalls, HangUpWithNothingOpenNotesThatItWasCanceled) {
    Start();
    EXPECT_TRUE(app->HangUp());
    EXPECT_EQ(app->LastError(), "Canceled");
    EXPECT_EQ(owner.Events(), Texts{"disconnected"});
    EXPECT_EQ(Asked("lineDrop") + Asked("lineClose"), 0);
}

TEST_F(TapiCalls, HangUpKeepsAReasonThatIsThere) {
    ExchangeAddRule("666", ExchangeNoAnswer, 0);
    Start();
    ASSERT_FALSE(app->Dial(dataLine, "666", 0));
    EXPECT_TRUE(app->HangUp());
    EXPECT_EQ(app->LastError(), "No Answer");
}

TEST_F(TapiCalls, HangUpOfALineWithoutACallClosesIt) {
    StartAnswering();
    EXPECT_TRUE(app->HangUp());
    EXPECT_EQ(Held().lines, 0U);
    EXPECT_EQ(app->LastError(), "Canceled");
}

TEST_F(TapiCalls, HangUpGivesTheRefusalOfTheDrop) {
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    ExchangeFail("lineDrop", TapiError(LINEERR_OPERATIONFAILED), 1);
    EXPECT_FALSE(app->HangUp());
    EXPECT_EQ(Held().calls, 1U);
    EXPECT_TRUE(app->HangUp());
    EXPECT_TRUE(PumpUntilHeard("idle"));
}

TEST_F(TapiCalls, HangUpEndsADial) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([&] { EXPECT_TRUE(app->HangUp()); }));
    EXPECT_TRUE(HoldsNothing());
}

TEST_F(TapiCalls, HangUpEndsADialThatIsNotAnsweredByTheService) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([&] { EXPECT_TRUE(app->HangUp()); }, "5553"));
    EXPECT_EQ(app->LastError(), "Canceled");
    EXPECT_EQ(Held().lines, 0U);
}

TEST_F(TapiCalls, HangUpEndsADialThoughTheDropIsRefused) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([&] {
        ExchangeFail("lineDrop", TapiError(LINEERR_OPERATIONFAILED), INFINITE);
        EXPECT_FALSE(app->HangUp());
    }));
    EXPECT_EQ(app->LastError(), "Canceled");
    EXPECT_EQ(Held().lines + Held().calls, 0U);
}

TEST_F(TapiCalls, AServiceThatFallsSilentEndsTheDial) {
    TapiLimits limits;
    limits.silence = 300;
    Start(limits);
    EXPECT_FALSE(app->Dial(dataLine, "5553", 0));
    EXPECT_EQ(app->LastError(), "Connection unavailable");
    EXPECT_EQ(Held().lines, 0U);
}

TEST_F(TapiCalls, AFarEndThatRingsIsNoSilence) {
    TapiLimits limits;
    limits.silence = 200;
    Start(limits);
    DWORD gone = 0;
    const host::Clock clock;
    const auto end = host::When([&] { return clock.Gone() > 800; },
                                [&] {
                                    gone = clock.Gone();
                                    app->HangUp();
                                });
    EXPECT_FALSE(app->Dial(dataLine, "5552", 0));
    EXPECT_GT(gone, 0U) << "it rang until then";
    EXPECT_TRUE(HoldsNothing());
}

TEST_F(TapiCalls, ADropThatIsNeverDoneEndsTheDial) {
    TapiLimits limits;
    limits.silence = 200;
    Start(limits);
    const host::Clock clock;
    EXPECT_FALSE(DialAndMeanwhile([&] {
        ExchangeSetPace(60000); // idle is far
        EXPECT_TRUE(app->HangUp());
    }));
    EXPECT_LT(clock.Gone(), 5000U);
    EXPECT_EQ(app->LastError(), "Connection unavailable");
    EXPECT_EQ(Held().lines + Held().calls, 0U);
}

TEST_F(TapiCalls, ConnectedAfterTheDropIsNotConnected) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([&] {
        ExchangeSetPace(60000); // no state comes by itself
        EXPECT_TRUE(app->HangUp());
        for (const DWORD state : {LINECALLSTATE_CONNECTED, LINECALLSTATE_IDLE})
            ExchangeSendMessage(dataLine, LINE_CALLSTATE, state, 0, 0);
    }));
    EXPECT_EQ(Logged("LINE_CALLSTATE  Connected"), 1);
    EXPECT_TRUE(HoldsNothing());
}

TEST_F(TapiCalls, ALineThatTheServiceClosesEndsTheDial) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([] { ExchangeSendMessage(dataLine, LINE_CLOSE, 0, 0, 0); }));
    EXPECT_EQ(app->LastError(), "Connection unavailable");
    EXPECT_EQ(Logged("LINE_CLOSE"), 1);
    EXPECT_EQ(Held().lines + Held().calls, 0U);
}

TEST_F(TapiCalls, AServiceThatDiesEndsTheDial) {
    ExchangeAddRule("666", ExchangeMessagesFail, 0);
    Start();
    EXPECT_FALSE(app->Dial(dataLine, "666", 0));
    EXPECT_EQ(app->LastError(), "Connection unavailable");
    EXPECT_EQ(Logged("lineGetMessage returned error\n"), 1);
    EXPECT_FALSE(app->Dial(dataLine, "5551", 0)) << "nobody listens any more";
    EXPECT_EQ(app->LastError(), "Connection unavailable");
}

TEST_F(TapiCalls, AServiceThatHandsOutNoMessageHasDied) {
    Start();
    ExchangeFail("lineGetMessage", 0, INFINITE);
    EXPECT_FALSE(app->Dial(dataLine, "5551", 0));
    EXPECT_EQ(app->LastError(), "Connection unavailable");
}

// Memory that was given back would be taken again by one of these.
class Tenants {
  public:
    Tenants() {
        for (size_t size = 16; size <= 96; size += 4)
            for (int copy = 0; copy < 200; ++copy)
                blocks_.emplace_back(size, mark);
    }
    bool AreUnharmed() const {
        return std::all_of(blocks_.begin(), blocks_.end(), [](const std::string& block) {
            return block.find_first_not_of(mark) == std::string::npos;
        });
    }

  private:
    static constexpr char mark = 'm';
    std::vector<std::string> blocks_;
};

TEST_F(TapiCalls, AHandleThatComesAfterItsDialWasGivenUpHarmsNothing) {
    TapiLimits limits;
    limits.silence = 50;
    Start(limits);
    ASSERT_FALSE(app->Dial(dataLine, "5553", 0));
    const DWORD abandoned = ExchangeLastRequest();
    const Tenants tenants;
    ExchangeClearRecord();
    ExchangeSendReply(abandoned, 0);
    EXPECT_TRUE(tenants.AreUnharmed());
    ASSERT_TRUE(host::PumpUntil([] { return Logged("LINE_REPLY") == 1; }));
    EXPECT_EQ(Record(), "");
}

TEST_F(TapiCalls, AHandleThatComesLateIsNotTakenForThatOfTheNextDial) {
    TapiLimits limits;
    limits.silence = 50;
    Start(limits);
    ASSERT_FALSE(app->Dial(dataLine, "5553", 0));
    const DWORD abandoned = ExchangeLastRequest();
    ExchangeClearRecord();
    const auto late =
        host::When([this] { return app->IsDialling(); }, [&] { ExchangeSendReply(abandoned, 0); });
    EXPECT_FALSE(app->Dial(dataLine, "5553", 0));
    EXPECT_EQ(Asked("lineDrop"), 0) << Record();
    EXPECT_TRUE(HoldsNothing());
}

struct CrashRow {
    const char* function;
    const char* number;
    const char* lastError;
    bool next; // the next dial gets through
};

constexpr CrashRow crashes[] = {
    {"lineTranslateAddressA", "+1", "Bad Address", true},
    {"lineNegotiateAPIVersion", "5551", "", true},
    {"lineOpenA", "5551", "", true},
    {"lineMakeCallA", "5551", "Canceled", true},
    {"lineGetMessage", "5551", "Connection unavailable", false},
    {"lineDrop", "666", "Busy", true},
    {"lineClose", "5553", "Connection unavailable", true},
};

TEST_F(TapiCalls, AFaultOfTheServiceEndsTheDial) {
    ExchangeAddRule("666", ExchangeBusy, 0);
    for (const CrashRow& row : crashes) {
        SCOPED_TRACE(row.function);
        TapiLimits limits;
        limits.silence = 500;
        Start(limits);
        ExchangeCrash(row.function, 1);
        EXPECT_FALSE(app->Dial(dataLine, row.number, 0));
        EXPECT_EQ(app->LastError(), row.lastError);
        EXPECT_FALSE(app->IsDialling());
        EXPECT_EQ(app->Dial(otherLine, "5551", 0), row.next);
        app.reset();
    }
}

TEST_F(TapiCalls, AFaultOfTheServiceLeavesACallWithoutAHandle) {
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    ExchangeCrash("lineGetIDA", 1);
    EXPECT_EQ(app->GetCommHandle(), INVALID_HANDLE_VALUE);
    const FileHandle comm(app->GetCommHandle());
    EXPECT_TRUE(comm) << "the next time";
}

TEST_F(TapiCalls, AnOwnerThatIsGoneEndsTheDial) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([&] { owner.wantsCall = false; }));
    EXPECT_EQ(app->LastError(), "Canceled");
    EXPECT_EQ(Held().calls, 0U);
}

TEST_F(TapiCalls, TheEndOfTheProgramEndsTheDialAndIsPutBack) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([] { PostQuitMessage(77); }));
    MSG message = {};
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 77U);
    EXPECT_EQ(Held().lines + Held().calls, 0U);
}

TEST_F(TapiCalls, ADialServesItsThreadsMessages) {
    Start();
    int served = 0;
    bool wasDialling = false;
    const auto counting = std::make_unique<host::Every>(1, [&] {
        ++served;
        wasDialling = wasDialling || app->IsDialling();
    });
    ExchangeSetPace(50);
    EXPECT_TRUE(app->Dial(dataLine, "5551", 0));
    EXPECT_GT(served, 0);
    EXPECT_TRUE(wasDialling);
}

constexpr UINT again = WM_APP + 1;

LRESULT CALLBACK PostAgain(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == again)
        PostMessageA(window, again, 0, 0);
    return DefWindowProcA(window, message, wParam, lParam);
}

TEST_F(TapiCalls, MessagesWithoutEndDoNotKeepADialFromItsEnd) {
    WNDCLASSA kind = {};
    kind.lpszClassName = "TarnAgain";
    kind.lpfnWndProc = PostAgain;
    RegisterClassA(&kind);
    const HWND window =
        CreateWindowExA(0, "TarnAgain", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_TRUE(window);
    PostMessageA(window, again, 0, 0);
    TapiLimits limits;
    limits.silence = 300;
    Start(limits);
    EXPECT_FALSE(app->Dial(dataLine, "5553", 0));
    DestroyWindow(window);
    UnregisterClassA("TarnAgain", nullptr);
}

TEST_F(TapiCalls, TheFarEndHangsUpAConnectedCall) {
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL);
    EXPECT_TRUE(PumpUntilHeard("idle"));
    EXPECT_EQ(owner.Events(), (Texts{"disconnected", "notify 5", "idle"}));
    EXPECT_EQ(app->LastError(), "Canceled");
    EXPECT_EQ(Held().lines + Held().calls, 0U);
    EXPECT_TRUE(owner.AllOnThread(GetCurrentThreadId()));
}

TEST_F(TapiCalls, ThereIsNoHandleWithoutACall) {
    Start();
    ExchangeClearRecord();
    EXPECT_EQ(app->GetCommHandle(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(Asked("lineGetID"), 0);
}

TEST_F(TapiCalls, AHandleThatTheServiceDoesNotGiveIsNone) {
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    for (const LONG result : {TapiError(LINEERR_OPERATIONUNAVAIL), 0L}) {
        ExchangeFail("lineGetIDA", result, 1);
        EXPECT_EQ(app->GetCommHandle(), INVALID_HANDLE_VALUE) << result;
    }
    ExchangeDemandMore(200);
    const FileHandle comm(app->GetCommHandle());
    EXPECT_TRUE(comm) << "in a block that had to grow";
}

TEST_F(TapiCalls, DestroyedWhileItDials) {
    Start();
    EXPECT_FALSE(DialAndMeanwhile([&] { app.reset(); }));
    EXPECT_EQ(owner.Count("disconnected"), 1);
    EXPECT_EQ(Held().applications, 0U);
}

TEST_F(TapiCalls, DestroyedInsideOfEachEventOfADial) {
    for (const char* event : {"disconnected", "notify 5"})
        for (const int outcome : {int{ExchangeBusy}, int{ExchangeReplyFails}, int{ExchangeRequestFails}}) {
            if (outcome != ExchangeBusy && event != std::string("disconnected"))
                continue;
            ExchangeAddRule("666", outcome, outcome == ExchangeBusy ? 0 : LINEERR_CALLUNAVAIL);
            owner.OnEventDo([&](const std::string& heard) {
                if (heard == event)
                    std::exchange(app, nullptr).reset();
            });
            Start();
            const host::Clock clock;
            EXPECT_FALSE(app->Dial(dataLine, "666", 0)) << event << " " << outcome;
            EXPECT_FALSE(app);
            EXPECT_LT(clock.Gone(), 1500U) << "the thread has ended by itself";
            EXPECT_EQ(Held().applications, 0U);
        }
}

TEST_F(TapiCalls, DestroyedInsideOfItsHangUp) {
    Start();
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    owner.OnEventDo([&](const std::string&) { std::exchange(app, nullptr).reset(); });
    EXPECT_FALSE(app->HangUp());
    EXPECT_EQ(Held().applications + Held().calls, 0U);
}

} // namespace
