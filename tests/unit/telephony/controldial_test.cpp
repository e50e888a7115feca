// PortOpen on a line of the telephony service: a dial, and the call that comes of it.
#include "dialtest.h"

#include <cstdio>

namespace {

using namespace telephony;
using host::Failure;
using host::FailureOf;

constexpr HRESULT invalidCall = static_cast<HRESULT>(0x800A0005);

class ControlDial : public DialTest {};

struct OutcomeRow {
    const char* what;
    ExchangeOutcome outcome;
    DWORD argument;
    const char* status;
    bool tellsCarrier;
};

constexpr OutcomeRow outcomes[] = {
    {"connected", ExchangeConnects, 0, "Connected", true},
    {"disconnected, normal", ExchangeDisconnects, LINEDISCONNECTMODE_NORMAL, "Canceled", true},
    {"disconnected, unknown", ExchangeDisconnects, LINEDISCONNECTMODE_UNKNOWN, "Canceled", true},
    {"disconnected, reject", ExchangeDisconnects, LINEDISCONNECTMODE_REJECT, "Call rejected", true},
    {"disconnected, pickup", ExchangeDisconnects, LINEDISCONNECTMODE_PICKUP, "Canceled", true},
    {"disconnected, forwarded", ExchangeDisconnects, LINEDISCONNECTMODE_FORWARDED, "Canceled", true},
    {"disconnected, busy", ExchangeDisconnects, LINEDISCONNECTMODE_BUSY, "Busy", true},
    {"disconnected, no answer", ExchangeDisconnects, LINEDISCONNECTMODE_NOANSWER, "No Answer", true},
    {"disconnected, bad address", ExchangeDisconnects, LINEDISCONNECTMODE_BADADDRESS, "Bad Address", true},
    {"disconnected, unreachable", ExchangeDisconnects, LINEDISCONNECTMODE_UNREACHABLE,
     "Destination Unreachable", true},
    {"disconnected, congestion", ExchangeDisconnects, LINEDISCONNECTMODE_CONGESTION, "Canceled", true},
    {"disconnected, incompatible", ExchangeDisconnects, LINEDISCONNECTMODE_INCOMPATIBLE, "Canceled", true},
    {"disconnected, unavailable", ExchangeDisconnects, LINEDISCONNECTMODE_UNAVAIL, "Canceled", true},
    {"disconnected, no dial tone", ExchangeDisconnects, LINEDISCONNECTMODE_NODIALTONE, "No Dial Tone", true},
    {"busy, then disconnected", ExchangeBusy, 0, "Busy", true},
    {"busy, and nothing more", ExchangeBusyStateOnly, 0, "", false},
    {"ring back, then disconnected", ExchangeNoAnswer, 0, "No Answer", true},
    {"idle", ExchangeIdle, 0, "", false},
    {"reply: call unavailable", ExchangeReplyFails, LINEERR_CALLUNAVAIL, "No Dial tone", false},
    {"reply: resource unavailable", ExchangeReplyFails, LINEERR_RESOURCEUNAVAIL, "Canceled", false},
    {"request: call unavailable", ExchangeRequestFails, LINEERR_CALLUNAVAIL, "No Dial tone", false},
    {"request: invalid address", ExchangeRequestFails, LINEERR_INVALADDRESS, "Canceled", false},
    {"messages fail", ExchangeMessagesFail, 0, "Connection unavailable", false},
};

std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : ", ") + line;
    return text.empty() ? "none" : text;
}

void PrintHeading() {
    std::printf("| %-28s | %-10s | %-23s | %-8s | %-22s |\n", "The service tells", "With", "PortStatus",
                "PortOpen", "Events");
}

void PrintRow(const OutcomeRow& row, PhoneHost& phone) {
    std::printf("| %-28s | 0x%08lx | %-23s | %-8s | %-22s |\n", row.what, row.argument,
                phone.Status().c_str(), phone.IsOpen() ? "True" : "False", Joined(phone.ear.heard).c_str());
}

TEST_F(ControlDial, EndsAsTheServiceTells) {
    PrintHeading();
    for (const OutcomeRow& row : outcomes) {
        SCOPED_TRACE(row.what);
        const bool connected = row.outcome == ExchangeConnects;
        ExchangeReset();
        ExchangeAddLine(alpha, "Provider A", LINEMEDIAMODE_DATAMODEM, alphaNumber, "COM5");
        ExchangeSetPace(2);
        ExchangeAddRule("5551", row.outcome, row.argument);
        StartAtAlpha();
        ExchangeClearRecord();
        EXPECT_EQ(FailureOf(phone->Dial("5551")), (Failure{S_OK, ""})) << "a failed dial is no error";
        PrintRow(row, *phone);
        EXPECT_EQ(phone->Status(), row.status);
        EXPECT_EQ(phone->IsOpen(), connected);
        EXPECT_EQ(phone->ear.heard, row.tellsCarrier ? (Lines{"OnComm", "CarrierChanged"}) : Lines{});
        EXPECT_TRUE(phone->ear.alwaysOnThread);
        EXPECT_FALSE(phone->Is(&ITarnComm::get_Busy));
        EXPECT_TRUE(connected || HasNoLine());
        EXPECT_EQ(Asked("lineOpen device=0 privileges=none media=10"), 1) << RecordText();
        EXPECT_EQ(Asked("lineMakeCall number=5551 country=0 size=176"), 1) << RecordText();
        EXPECT_EQ(Asked("lineGetID select=4 class=comm/datamodem") > 0, connected);
        EXPECT_EQ(Asked("lineClose"), connected ? 0 : 1) << RecordText();
        phone.reset();
    }
}

TEST_F(ControlDial, ALineThatDoesNotOpenIsUnavailable) {
    StartAtAlpha();
    ExchangeFail("lineOpenA", Error(LINEERR_ALLOCATED), 1);
    EXPECT_EQ(phone->Dial(connects), S_OK);
    EXPECT_EQ(phone->Status(), "Connection unavailable");
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(phone->Dial(connects), S_OK);
    EXPECT_EQ(phone->Status(), "Connected") << "the next one";
}

TEST_F(ControlDial, ANumberIsRequired) {
    StartAtAlpha();
    ExchangeClearRecord();
    EXPECT_EQ(FailureOf(phone->control->put_PortOpen(VARIANT_TRUE)), (Failure{S_OK, ""}));
    EXPECT_EQ(phone->Status(), "Phone number required");
    EXPECT_EQ(phone->Dial(""), S_OK);
    EXPECT_EQ(phone->Status(), "Phone number required");
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(Asked("lineOpen"), 0);
    EXPECT_EQ(phone->ear.heard, Lines{});
}

struct NameRow {
    const char* port;
    const char* asked; // of the exchange
};

constexpr NameRow names[] = {
    {"Alpha Modem", "lineOpen device=0"},
    {"Beta Modem", "lineOpen device=2"},
    {"BETA modem", "lineOpen device=2"},
    {"", "lineOpen device=0"},
};

TEST_F(ControlDial, TheNameChoosesTheLine) {
    for (const NameRow& row : names) {
        SCOPED_TRACE(row.port);
        Start();
        if (*row.port)
            phone->UseLine(row.port);
        ExchangeClearRecord();
        EXPECT_EQ(phone->Dial(connects), S_OK);
        EXPECT_TRUE(phone->IsOpen());
        EXPECT_EQ(Asked(row.asked), 1) << RecordText();
        EXPECT_EQ(Asked("lineOpen"), 1);
        phone.reset();
    }
}

TEST_F(ControlDial, OtherNamesArePlainPorts) {
    for (const char* name : {"COM5", "Desk Set", "No such line"}) {
        SCOPED_TRACE(name);
        Start().UseLine(name);
        ExchangeClearRecord();
        EXPECT_EQ(phone->Dial(connects), S_OK);
        EXPECT_EQ(phone->IsOpen(), name == std::string("COM5"));
        EXPECT_EQ(Asked("lineOpen"), 0);
        phone.reset();
    }
}

TEST_F(ControlDial, UseTAPIDoesNotMatter) {
    StartAtAlpha()->put_UseTAPI(VARIANT_FALSE);
    EXPECT_EQ(phone->Dial(connects), S_OK);
    EXPECT_EQ(Asked("lineMakeCall"), 1);
}

struct NumberRow {
    const char* number;
    const char* dialled;
};

constexpr NumberRow numbers[] = {
    {"+49 (30) 5550100", "05550100"},
    {"+1 (800) 5550100", "18005550100"}, // no rule: the digits alone
    {"555-0100", "555-0100"},
    {"00+5550100", "00+5550100"},
};

TEST_F(ControlDial, ANumberWithAPlusIsTranslated) {
    ExchangeAddTranslation("+49 (30) 5550100", "05550100");
    for (const NumberRow& row : numbers) {
        SCOPED_TRACE(row.number);
        StartAtAlpha();
        ExchangeClearRecord();
        std::string meanwhile;
        const auto watch = host::When([&] { return phone->Status().starts_with("Dialing"); },
                                      [&] { meanwhile = phone->Status(); });
        ExchangeSetPace(20);
        EXPECT_EQ(phone->Dial(row.number), S_OK);
        EXPECT_EQ(Asked(std::string("lineMakeCall number=") + row.dialled + " country=0"), 1) << RecordText();
        EXPECT_EQ(meanwhile, std::string("Dialing ") + row.number) << "as the host wrote it";
        phone.reset();
    }
}

TEST_F(ControlDial, TheRateIsThatOfTheSettings) {
    for (const auto& [settings, rate] :
         {std::pair(L"9600,n,8,1", "maxrate=9600 "), std::pair(L"300,e,7,1", "maxrate=300 "),
          std::pair(L"115200,n,8,1", "maxrate=115200 ")}) {
        StartAtAlpha()->put_Settings(_bstr_t(settings));
        ExchangeClearRecord();
        EXPECT_EQ(phone->Dial(connects), S_OK);
        EXPECT_EQ(Asked(rate), 1) << RecordText();
        phone.reset();
    }
}

TEST_F(ControlDial, MeanwhileItIsBusyAndClosed) {
    StartAtAlpha();
    bool looked = false;
    const auto watch = WhenItRings([&] {
        looked = true;
        EXPECT_EQ(phone->Status(), std::string("Dialing ") + rings);
        EXPECT_TRUE(phone->Is(&ITarnComm::get_Busy));
        EXPECT_FALSE(phone->IsOpen());
        EXPECT_FALSE(phone->Is(&ITarnComm::get_CDHolding));
        EXPECT_TRUE(phone->Is(&ITarnComm::get_HangUp));
    });
    EXPECT_EQ(phone->Dial(rings), S_OK);
    EXPECT_TRUE(looked);
}

struct BlockingRow {
    const char* name;
    HRESULT (*use)(CTarnCommCtl& control);
};

const BlockingRow blocking[] = {
    {"PortOpen", [](CTarnCommCtl& control) { return control.put_PortOpen(VARIANT_TRUE); }},
    {"OutputLine", [](CTarnCommCtl& control) { return control.put_OutputLine(_bstr_t(L"text")); }},
    {"OutputModem", [](CTarnCommCtl& control) { return control.put_OutputModem(_bstr_t(L"ATZ")); }},
    {"Input",
     [](CTarnCommCtl& control) {
         _variant_t input;
         return control.get_Input(&input);
     }},
    {"LineInput",
     [](CTarnCommCtl& control) {
         _bstr_t input;
         return control.get_LineInput(input.GetAddress());
     }},
    {"InitModem",
     [](CTarnCommCtl& control) {
         VARIANT_BOOL done = VARIANT_FALSE;
         return control.get_InitModem(&done);
     }},
};

TEST_F(ControlDial, ASecondBlockingPropertyIsRefused) {
    StartAtAlpha();
    size_t refused = 0;
    const auto watch = WhenItRings([&] {
        for (const BlockingRow& row : blocking) {
            SCOPED_TRACE(row.name);
            const Failure wanted{invalidCall, std::string("Cannot access the ") + row.name +
                                                  " property until the PortOpen property has returned."};
            const Failure met = FailureOf(row.use(*phone->control.Get()));
            EXPECT_EQ(met, wanted);
            refused += met == wanted;
        }
        phone->Is(&ITarnComm::get_HangUp);
    });
    EXPECT_EQ(phone->Dial(rings), S_OK);
    EXPECT_EQ(refused, std::size(blocking));
    EXPECT_EQ(Asked("lineMakeCall"), 1);
}

TEST_F(ControlDial, DataFlowsBothWays) {
    Connect();
    EXPECT_EQ(phone->Status(), "Connected");
    EXPECT_TRUE(phone->control->IsConnected());
    EXPECT_TRUE(phone->Is(&ITarnComm::get_CDHolding)) << "whatever the cable's pin says";
    host::FarEnd peer;
    ExpectDataFlow(*phone, peer);
    EXPECT_EQ(phone->control->put_PortOpen(VARIANT_TRUE), S_OK) << "it is open already";
    EXPECT_EQ(Asked("lineMakeCall"), 1);
}

struct Goodbye {
    const char* name;
    void (*say)(PhoneHost& phone);
    Lines heard;
};

const Goodbye goodbyes[] = {
    {"PortOpen = False",
     [](PhoneHost& phone) { phone->put_PortOpen(VARIANT_FALSE); },
     {"OnComm", "CarrierChanged"}},
    {"HangUp",
     [](PhoneHost& phone) { EXPECT_TRUE(phone.Is(&ITarnComm::get_HangUp)); },
     {"OnComm", "CarrierChanged"}},
    {"the far end hangs up",
     [](PhoneHost&) { ExchangeFarHangUp(alphaLine, LINEDISCONNECTMODE_NORMAL); },
     {"OnComm", "CarrierChanged"}},
};

TEST_F(ControlDial, EveryEndOfACallIsTold) {
    for (const Goodbye& row : goodbyes) {
        SCOPED_TRACE(row.name);
        Connect();
        phone->ear.heard.clear();
        ExchangeClearRecord();
        row.say(*phone);
        EXPECT_TRUE(phone->Hears("CarrierChanged"));
        EXPECT_TRUE(HasNoLine());
        host::Pump(20);
        EXPECT_EQ(phone->ear.heard, row.heard);
        EXPECT_TRUE(phone->ear.alwaysOnThread);
        EXPECT_EQ(phone->Status(), "Disconnected");
        EXPECT_FALSE(phone->IsOpen());
        EXPECT_FALSE(phone->control->IsConnected());
        EXPECT_FALSE(phone->Is(&ITarnComm::get_CDHolding));
        EXPECT_EQ(Asked("lineDrop"), 1) << RecordText();
        EXPECT_EQ(Asked("lineDeallocateCall"), 1) << RecordText();
        EXPECT_EQ(Asked("lineClose"), 1) << RecordText();
        EXPECT_EQ(phone->Dial(connects), S_OK) << "a second dial";
        EXPECT_EQ(phone->Status(), "Connected");
        EXPECT_TRUE(phone->IsOpen());
        phone.reset();
    }
}

TEST_F(ControlDial, HangUpGivesTheRefusalOfTheDrop) {
    Connect();
    ExchangeFail("lineDrop", Error(LINEERR_OPERATIONFAILED), 1);
    EXPECT_FALSE(phone->Is(&ITarnComm::get_HangUp));
    EXPECT_FALSE(phone->IsOpen()) << "the handle is given up all the same";
    EXPECT_TRUE(phone->Is(&ITarnComm::get_HangUp));
    EXPECT_TRUE(HasNoLine());
}

TEST_F(ControlDial, HangUpIsLogged) {
    Connect();
    phone->LogProperties();
    EXPECT_TRUE(phone->Is(&ITarnComm::get_HangUp));
    EXPECT_EQ(Logged("TarnComm.HangUp returns True"), 1) << logfiles::Messages();
}

TEST_F(ControlDial, HangUpInTheCarrierEventEndsTheCall) {
    StartAtAlpha();
    phone->ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        const bool isFirst = phone->ear.Count("CarrierChanged") == 1;
        if (id == events::CarrierChanged && isFirst) {
            EXPECT_TRUE(phone->Is(&ITarnComm::get_HangUp));
        }
    };
    EXPECT_EQ(phone->Dial(connects), S_OK);
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(phone->Status(), "Disconnected");
    EXPECT_TRUE(HasNoLine());
}

TEST_F(ControlDial, ACallBetweenTwoControls) {
    StartAtAlpha();
    PhoneHost other;
    other.UseLine(beta);
    ASSERT_EQ(other.Answer(true), S_OK);
    EXPECT_EQ(phone->Dial(betaNumber), S_OK);
    EXPECT_EQ(phone->Status(), "Connected");
    EXPECT_TRUE(other.Hears("NewConnection"));
    phone->Send("hello");
    EXPECT_TRUE(other.HasInput(5));
    EXPECT_EQ(other.Input(), "hello");
    other.Send("world");
    EXPECT_TRUE(phone->HasInput(5));
    EXPECT_EQ(phone->Input(), "world");
    other->put_PortOpen(VARIANT_FALSE);
    EXPECT_TRUE(host::PumpUntil([&] { return phone->Status() == "Disconnected"; }));
}

// After the call

TEST_F(ControlDial, ALateIdleSparesAPlainPort) {
    Connect();
    ExchangeSetPace(100);
    StartLogAnew();
    phone->control->put_PortOpen(VARIANT_FALSE);
    phone->UseLine("COM6");
    ASSERT_EQ(phone->control->put_PortOpen(VARIANT_TRUE), S_OK);
    ASSERT_TRUE(phone->IsOpen());
    ASSERT_TRUE(HasNoLine());
    EXPECT_TRUE(host::PumpUntil([] { return Logged("LINE_CALLSTATE  Idle") == 1; }));
    host::Pump(30);
    EXPECT_TRUE(phone->IsOpen());
    EXPECT_EQ(phone->Status(), "Connected");
    EXPECT_TRUE(phone->control->IsConnected());
}

TEST_F(ControlDial, ALateReplyToACancelledDialSparesAPlainPort) {
    ExchangeAddRule("5553", ExchangeNeverReplies, 0);
    StartAtAlpha();
    const auto watch = host::When([] { return Asked("lineMakeCall") > 0; },
                                  [&] { EXPECT_TRUE(phone->Is(&ITarnComm::get_HangUp)); });
    EXPECT_EQ(phone->Dial("5553"), S_OK);
    const DWORD request = ExchangeLastRequest();
    phone->UseLine("COM6");
    ASSERT_EQ(phone->control->put_PortOpen(VARIANT_TRUE), S_OK);
    ExchangeSendReply(request, Error(LINEERR_OPERATIONFAILED));
    EXPECT_TRUE(host::PumpUntil([] { return Logged("LINE_REPLY") == 1; }));
    host::Pump(30);
    EXPECT_TRUE(phone->IsOpen());
    EXPECT_EQ(phone->Status(), "Connected");
}

TEST_F(ControlDial, ACallWithoutDataIsUnavailable) {
    StartAtAlpha();
    ExchangeFail("lineGetIDA", Error(LINEERR_OPERATIONUNAVAIL), INFINITE);
    EXPECT_EQ(phone->Dial(connects), S_OK);
    EXPECT_EQ(phone->Status(), "Connection unavailable");
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(phone->ear.heard, Lines{});
    EXPECT_EQ(Asked("lineDrop"), 1);
    EXPECT_TRUE(HasNoLine());
}

TEST_F(ControlDial, ACallThatGoesIdleByItselfIsOver) {
    Connect();
    ExchangeSendMessage(alphaLine, LINE_CALLSTATE, LINECALLSTATE_IDLE, 0, 0);
    EXPECT_TRUE(host::PumpUntil([&] { return !phone->IsOpen(); }));
    EXPECT_EQ(phone->Status(), "Disconnected");
    EXPECT_FALSE(phone->control->IsConnected());
    EXPECT_TRUE(HasNoLine());
}

TEST_F(ControlDial, ADialInAnEventIsUnavailable) {
    StartAtAlpha();
    ASSERT_EQ(phone->Answer(true), S_OK);
    std::string status;
    phone->ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id != events::Ring || !status.empty())
            return;
        phone->Answer(false); // the line is free
        EXPECT_EQ(phone->Dial(connects), S_OK);
        status = phone->Status();
    };
    const host::Clock clock;
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(host::PumpUntil([&] { return !status.empty(); }));
    EXPECT_EQ(status, "Connection unavailable");
    EXPECT_LT(clock.Gone(), 5000U);
    EXPECT_EQ(Asked("lineMakeCall"), 0);
    host::Pump(30);
    EXPECT_EQ(phone->Dial(connects), S_OK) << "afterwards";
    EXPECT_EQ(phone->Status(), "Connected");
}

} // namespace
