// The telephony thread: what it logs, and what of its messages it acts upon.
#include "testowner.h"

#include <tlhelp32.h>

#include <stdexcept>

namespace {

class TapiThreadLog : public TapiTest {
  protected:
    // Sends a message, and waits until the log has this.
    void ExpectLog(DWORD message, DWORD_PTR param1, DWORD_PTR param2, const std::string& line) {
        StartAnew();
        ExchangeSendMessage(dataLine, message, param1, param2, 0);
        EXPECT_TRUE(host::PumpUntil([&] { return Logged(line) == 1; })) << line << logfiles::Messages();
    }
};

struct NameRow {
    DWORD message;
    const char* name;
};

constexpr NameRow names[] = {
    {LINE_ADDRESSSTATE, "LINE_ADDRESSSTATE"},
    {LINE_CALLINFO, "LINE_CALLINFO"},
    {LINE_CLOSE, "LINE_CLOSE"},
    {LINE_DEVSPECIFIC, "LINE_DEVSPECIFIC"},
    {LINE_DEVSPECIFICFEATURE, "LINE_DEVSPECIFICFEATURE"},
    {LINE_GATHERDIGITS, "LINE_GATHERDIGITS"},
    {LINE_GENERATE, "LINE_GENERATE"},
    {LINE_MONITORDIGITS, "LINE_MONITORDIGITS"},
    {LINE_MONITORMEDIA, "LINE_MONITORMEDIA"},
    {LINE_MONITORTONE, "LINE_MONITORTONE"},
    {LINE_REQUEST, "LINE_REQUEST"},
    {LINE_CREATE, "LINE_CREATE"},
    {LINE_AGENTSPECIFIC, "LINE_AGENTSPECIFIC"},
    {LINE_AGENTSTATUS, "LINE_AGENTSTATUS"},
    {LINE_APPNEWCALL, "LINE_APPNEWCALL"},
    {LINE_PROXYREQUEST, "LINE_PROXYREQUEST"},
    {LINE_REMOVE, "LINE_REMOVE"},
    {LINE_LINEDEVSTATE, "LINE_LINEDEVSTATE"},
    {LINE_REPLY, "LINE_REPLY"},
};

TEST_F(TapiThreadLog, EachMessageHasItsName) {
    StartAnswering();
    ExchangeClearRecord();
    for (const NameRow& row : names)
        ExpectLog(row.message, 0, 0, std::string("Line message received: ") + row.name + "\n");
    EXPECT_EQ(Record(), "") << "none of them asks the service for anything";
    EXPECT_EQ(owner.Events(), std::vector<std::string>{});
    EXPECT_EQ(Held().lines, 1U);
}

TEST_F(TapiThreadLog, AReplyHasABreakBeforeIt) {
    StartAnswering();
    ExpectLog(LINE_REPLY, 1, 0, "<time> \nLine message received: LINE_REPLY\n");
}

TEST_F(TapiThreadLog, OthersAreUnknown) {
    StartAnswering();
    for (const DWORD message : {14UL, 20UL, 26UL, 35UL, 5000UL})
        ExpectLog(message, 0, 0, "Unknown line message!\n");
}

struct StateRow {
    DWORD state;
    DWORD mode;
    const char* word;
};

constexpr StateRow states[] = {
    {LINECALLSTATE_IDLE, 0, "Idle"},
    {LINECALLSTATE_OFFERING, 0, "Offering"},
    {LINECALLSTATE_ACCEPTED, 0, "Accepted"},
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_NORMAL, "Dial tone Normal"},
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_SPECIAL, "Dial tone Special"},
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_INTERNAL, "Dial tone Internal"},
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_EXTERNAL, "Dial tone External"},
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_UNKNOWN, "Dial tone Unknown"},
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_UNAVAIL, "Dial tone Unavailable"},
    {LINECALLSTATE_DIALTONE, 0x40, "Dial tone Other"},
    {LINECALLSTATE_DIALTONE, 0, "Dial tone Other"},
    {LINECALLSTATE_DIALING, 0, "Dialing"},
    {LINECALLSTATE_RINGBACK, 0, "Ring back"},
    {LINECALLSTATE_BUSY, 0, "Busy"},
    {LINECALLSTATE_SPECIALINFO, 0, "Special Info"},
    {LINECALLSTATE_CONNECTED, 0, "Connected"},
    {LINECALLSTATE_PROCEEDING, 0, "Proceeding"},
    {LINECALLSTATE_ONHOLD, 0, "On Hold"},
    {LINECALLSTATE_DISCONNECTED, LINEDISCONNECTMODE_NORMAL, "Disconnected - "},
    {LINECALLSTATE_UNKNOWN, 0, "Unkown"},
    {LINECALLSTATE_CONFERENCED, 0, "Other"},
    {LINECALLSTATE_ONHOLDPENDCONF, 0, "Other"},
    {LINECALLSTATE_ONHOLDPENDTRANSFER, 0, "Other"},
    {0, 0, "Other"},
};

TEST_F(TapiThreadLog, EachStateHasItsWord) {
    for (const StateRow& row : states) {
        StartAnswering();
        ExpectLog(LINE_CALLSTATE, row.state, row.mode,
                  std::string("Line message received: LINE_CALLSTATE  ") + row.word + "\n");
        app.reset();
    }
}

class TapiThread : public TapiTest {};

TEST_F(TapiThread, OnlyRingingFiresTheRingEvent) {
    StartAnswering();
    ExchangeSendMessage(dataLine, LINE_LINEDEVSTATE, LINEDEVSTATE_CONNECTED, 0, 0);
    ExchangeSendMessage(dataLine, LINE_LINEDEVSTATE, LINEDEVSTATE_RINGING, 0, 0);
    EXPECT_TRUE(host::PumpUntil([] { return Logged("LINE_LINEDEVSTATE") == 2; }));
    EXPECT_EQ(owner.Events(), std::vector<std::string>{"notify 6"});
    EXPECT_TRUE(owner.AllOnThread(GetCurrentThreadId()));
}

TEST_F(TapiThread, GoesOnAfterAnExceptionInEachEvent) {
    for (const char* event : {"notify 6", "answered", "disconnected", "notify 5", "idle"}) {
        owner.OnEventDo({});
        owner.Forget();
        StartAnswering();
        owner.OnEventDo([&](const std::string& heard) {
            if (heard == event)
                throw std::runtime_error("a fault of the host");
        });
        for (int call = 1; call <= 2; ++call) {
            ExchangeRing(dataLine);
            ASSERT_TRUE(PumpUntilHeard("answered", call)) << event;
            ExchangeFarHangUp(dataLine, LINEDISCONNECTMODE_NORMAL);
            ASSERT_TRUE(PumpUntilHeard("idle", call)) << event;
            ASSERT_TRUE(host::PumpUntil([] { return Held().lines == 1 && Held().calls == 0; })) << event;
        }
        owner.OnEventDo({});
        app.reset();
    }
}

bool IsSomethingSent() {
    return HIWORD(GetQueueStatus(QS_SENDMESSAGE)) & QS_SENDMESSAGE;
}

// Without serving messages.
bool WaitUntilSomethingIsSent() {
    for (const host::Clock clock; clock.Gone() < 5000; Sleep(1))
        if (IsSomethingSent())
            return true;
    return false;
}

TEST_F(TapiThread, TellsABusyOwnerWhenItServesMessagesAgain) {
    StartAnswering();
    ExchangeRing(dataLine);
    EXPECT_TRUE(WaitUntilSomethingIsSent());
    EXPECT_EQ(owner.Events().size(), 0U);
    EXPECT_TRUE(PumpUntilHeard("answered"));
}

TEST_F(TapiThread, EndsWhileTheOwnerOwesItAnAnswer) {
    StartAnswering();
    ExchangeRing(dataLine);
    ASSERT_TRUE(WaitUntilSomethingIsSent());
    const host::Clock clock;
    app.reset();
    EXPECT_LT(clock.Gone(), 1500U);
    host::Pump(20);
    EXPECT_EQ(owner.Events().size(), 0U);
}

TEST_F(TapiThread, LateNewsOfACallThatWasGivenUpDoNotHarmTheNextOne) {
    ExchangeAddRule("666", ExchangeBusyStateOnly, 0);
    ExchangeAddRule("5551", ExchangeConnects, 0);
    ExchangeSetPace(1);
    Start();
    for (int turn = 0; turn < 20; ++turn) {
        EXPECT_FALSE(app->Dial(dataLine, "666", 0));
        ASSERT_TRUE(app->Dial(dataLine, "5551", 0)) << turn << app->LastError();
        owner.Forget();
        EXPECT_TRUE(app->HangUp());
        ASSERT_TRUE(PumpUntilHeard("idle"));
    }
}

// The number of the service's next request: they are counted.
LONG NextRequest(DWORD device) {
    const TapiService& service = *BindTapiService();
    HLINEAPP application = 0;
    HLINE line = 0;
    HCALL call = 0;
    DWORD lines = 0, version = 0x20000;
    LINEINITIALIZEEXPARAMS parameters = {};
    parameters.dwTotalSize = sizeof parameters;
    parameters.dwOptions = LINEINITIALIZEEXOPTION_USEEVENT;
    service.lineInitializeExA(&application, nullptr, nullptr, "", &lines, &version, &parameters);
    service.lineOpenA(application, device, &line, version, 0, 0, LINECALLPRIVILEGE_NONE, 0, nullptr);
    ExchangeAddRule("0", ExchangeNeverReplies, 0);
    const LONG request = service.lineMakeCallA(line, &call, "0", 0, nullptr);
    service.lineShutdown(application);
    return request + 1;
}

const auto failedReply = static_cast<DWORD_PTR>(static_cast<LONG_PTR>(TapiError(LINEERR_OPERATIONFAILED)));

TEST_F(TapiThread, ALateReplyToADialThatWasGivenUpDoesNotEndTheNextOne) {
    ExchangeAddRule("5553", ExchangeNeverReplies, 0);
    ExchangeAddRule("5552", ExchangeRings, 0);
    TapiLimits limits;
    limits.silence = 50;
    Start(limits);
    const LONG request = NextRequest(otherLine);
    ASSERT_FALSE(app->Dial(dataLine, "5553", 0));
    const auto late = host::When(
        [] { return Logged("Ring back") > 0; },
        [&] {
            ExchangeSendMessage(dataLine, LINE_REPLY, static_cast<DWORD_PTR>(request), failedReply, 0);
            ExchangeSendMessage(dataLine, LINE_CALLSTATE, LINECALLSTATE_CONNECTED, 0, 0);
        });
    EXPECT_TRUE(app->Dial(dataLine, "5552", 0)) << app->LastError();
    EXPECT_EQ(Logged("LINE_REPLY"), 2);
}

TEST_F(TapiThread, ADropThatFailsIsNotAskedForAgain) {
    ExchangeAddRule("5551", ExchangeConnects, 0);
    Start();
    const LONG dial = NextRequest(otherLine);
    ASSERT_TRUE(app->Dial(dataLine, "5551", 0));
    ExchangeSetPace(200);
    ASSERT_TRUE(app->HangUp());
    ExchangeSendMessage(dataLine, LINE_REPLY, static_cast<DWORD_PTR>(dial + 1), failedReply, 0);
    EXPECT_TRUE(PumpUntilHeard("idle"));
    EXPECT_EQ(Asked("lineDrop"), 1);
    EXPECT_EQ(owner.Count("disconnected"), 1);
}

TEST_F(TapiThread, AServiceThatClosesTheLineIsNotCleanedUpAfter) {
    StartAnswering();
    ExchangeSendMessage(dataLine, LINE_CLOSE, 0, 0, 0);
    EXPECT_TRUE(host::PumpUntil([] { return Logged("LINE_CLOSE") == 1; }));
    EXPECT_TRUE(app->SetAnswer(true, dataLine)) << "the same value";
    EXPECT_EQ(Asked("lineClose"), 0);
}

TEST_F(TapiThread, AReplyToNobodysRequestIsNothing) {
    StartAnswering();
    ExchangeSendMessage(dataLine, LINE_REPLY, 0x7FFFFFFF, failedReply, 0);
    EXPECT_TRUE(host::PumpUntil([] { return Logged("LINE_REPLY") == 1; }));
    EXPECT_EQ(owner.Events(), std::vector<std::string>{});
    EXPECT_EQ(Held().lines, 1U);
}

// Of this process, and whoever has begun since the last look.
class NewThreads {
  public:
    NewThreads() : before_(All()) {}

    std::vector<DWORD> Begun() const {
        std::vector<DWORD> begun;
        for (const DWORD thread : All())
            if (std::find(before_.begin(), before_.end(), thread) == before_.end())
                begun.push_back(thread);
        return begun;
    }

  private:
    static std::vector<DWORD> All() {
        std::vector<DWORD> all;
        const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
        THREADENTRY32 entry = {};
        entry.dwSize = sizeof entry;
        for (BOOL more = Thread32First(snapshot.get(), &entry); more;
             more = Thread32Next(snapshot.get(), &entry))
            if (entry.th32OwnerProcessID == GetCurrentProcessId())
                all.push_back(entry.th32ThreadID);
        return all;
    }

    std::vector<DWORD> before_;
};

struct ExitRow {
    const char* what;
    void (*end)(std::unique_ptr<CTapiApp>& app);
    DWORD code;
};

const ExitRow exits[] = {
    {"the owner ends it", [](std::unique_ptr<CTapiApp>& app) { app.reset(); }, 0},
    {"the service is gone",
     [](std::unique_ptr<CTapiApp>&) {
         ExchangeFail("lineGetMessage", TapiError(LINEERR_NODRIVER), INFINITE);
         ExchangeSendMessage(0, LINE_REQUEST, 0, 0, 0);
     },
     static_cast<DWORD>(-1)},
};

TEST_F(TapiThread, ItsExitCodeTellsWhetherTheServiceIsGone) {
    for (const ExitRow& row : exits) {
        const NewThreads threads;
        StartAnswering();
        const std::vector<DWORD> begun = threads.Begun();
        ASSERT_EQ(begun.size(), 1U) << row.what;
        const ThreadHandle thread(OpenThread(SYNCHRONIZE | THREAD_QUERY_INFORMATION, FALSE, begun.front()));
        row.end(app);
        ASSERT_TRUE(host::PumpUntil([&] { return WaitForSingleObject(thread.get(), 0) == WAIT_OBJECT_0; }));
        DWORD code = 77;
        EXPECT_TRUE(GetExitCodeThread(thread.get(), &code));
        EXPECT_EQ(code, row.code) << row.what;
    }
}

TEST_F(TapiThread, AQueueThatSeemsEmptyIsLookedAtAgain) {
    StartAnswering();
    ExchangeFail("lineGetMessage", TapiError(LINEERR_OPERATIONFAILED), 1);
    ExchangeSendMessage(dataLine, LINE_REQUEST, 0, 0, 0);
    EXPECT_TRUE(host::PumpUntil([] { return Logged("LINE_REQUEST") == 1; }));
    EXPECT_EQ(Logged("lineGetMessage returned error"), 0);
}

} // namespace
