// AnswerCalls: a line that waits for calls, and what a call does to the control and its host.
#include "telephonycontrol.h"

namespace {

using namespace telephony;

class ControlAnswer : public TelephonyTest {
  protected:
    void StartAnswering() {
        ASSERT_EQ(StartAtAlpha().Answer(true), S_OK);
        ASSERT_TRUE(phone->Is(&ITarnComm::get_AnswerCalls));
    }
    void AnswerACall() {
        StartAnswering();
        ASSERT_NE(ExchangeRing(alphaLine), 0U);
        ASSERT_TRUE(phone->Hears("CarrierChanged"));
    }
    // The line is open again after a call.
    static bool IsReopened(int times = 1) {
        return host::PumpUntil([=] { return Asked("lineSetNumRings address=0 rings=5") > times; });
    }
};

struct AssignmentRow {
    const char* what;
    const char* port;
    bool before;
    bool wanted;
    LONG fault; // of lineOpen
    const char* logged;
    bool after;
};

constexpr LONG good = 1; // no fault
constexpr LONG allocated = static_cast<LONG>(LINEERR_ALLOCATED);

constexpr AssignmentRow assignments[] = {
    {"on", alpha, false, true, good, "AnswerCalls (succeeded)  = True", true},
    {"off", alpha, true, false, good, "AnswerCalls (succeeded)  = False", false},
    {"on again", alpha, true, true, good, "AnswerCalls (no change)  = True", true},
    {"off again", alpha, false, false, good, "AnswerCalls (no change)  = False", false},
    {"no such line", "No such line", false, true, good, "AnswerCalls (modem not found)  = True", false},
    {"a voice line", "Desk Set", false, true, good, "AnswerCalls (modem not found)  = True", false},
    {"a plain port", "COM5", false, true, good, "AnswerCalls (modem not found)  = True", false},
    {"the line is taken", alpha, false, true, allocated, "AnswerCalls (failed)  = True", false},
    {"an idle service", alpha, false, true, 0, "AnswerCalls (failed)  = True", false},
};

TEST_F(ControlAnswer, TheLogHasWhatBecameOfTheAssignment) {
    for (const AssignmentRow& row : assignments) {
        SCOPED_TRACE(row.what);
        StartLogAnew();
        Start().UseLine(row.port);
        if (row.before)
            phone->Answer(true);
        if (row.fault != good)
            ExchangeFail("lineOpenA", row.fault, 1);
        phone->LogProperties();
        EXPECT_EQ(phone->Answer(row.wanted), S_OK) << "a failure is no error";
        EXPECT_EQ(Logged(std::string("<time> TarnComm.") + row.logged + "\r\n"), 1) << logfiles::Messages();
        EXPECT_EQ(phone->Is(&ITarnComm::get_AnswerCalls), row.after);
        EXPECT_EQ(Holdings().lines, row.after ? 1U : 0U);
        phone.reset();
    }
}

TEST_F(ControlAnswer, NoNameIsNoLine) {
    Start().Answer(true);
    EXPECT_FALSE(phone->Is(&ITarnComm::get_AnswerCalls));
    EXPECT_EQ(Asked("lineOpen"), 0);
}

TEST_F(ControlAnswer, AFailureMayBeTriedAgain) {
    StartAtAlpha();
    ExchangeFail("lineOpenA", allocated, 1);
    phone->Answer(true);
    phone->Answer(true);
    EXPECT_TRUE(phone->Is(&ITarnComm::get_AnswerCalls));
}

TEST_F(ControlAnswer, OpensTheLineAsOwnerWithFiveRings) {
    StartAnswering();
    EXPECT_EQ(Asked("lineOpen device=0 privileges=owner media=10"), 1) << RecordText();
    EXPECT_EQ(Asked("lineSetNumRings address=0 rings=5"), 1);
    EXPECT_FALSE(phone->IsOpen());
    phone->Answer(false);
    EXPECT_EQ(Asked("lineClose"), 1);
    EXPECT_EQ(ExchangeRing(alphaLine), 0U) << "nobody is there";
    host::Pump(20);
    EXPECT_EQ(phone->ear.heard, Lines{});
}

TEST_F(ControlAnswer, ACallIsToldInOrderOnTheControlsThread) {
    AnswerACall();
    EXPECT_EQ(phone->ear.heard,
              (Lines{"OnComm", "Ring", "OnComm", "NewConnection", "OnComm", "CarrierChanged"}));
    EXPECT_TRUE(phone->ear.alwaysOnThread);
    EXPECT_EQ(Asked("lineAnswer"), 1);
    EXPECT_EQ(Asked("lineGetID select=4 class=comm/datamodem") > 0, true);
}

// The codes by which OnComm tells which event it is.
TEST_F(ControlAnswer, CommEventHasTheCodes) {
    StartAnswering();
    std::vector<int> codes;
    phone->ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == events::OnComm)
            codes.push_back(phone->Get(&ITarnComm::get_CommEvent));
    };
    ExchangeRing(alphaLine);
    EXPECT_TRUE(phone->Hears("CarrierChanged"));
    EXPECT_EQ(codes, (std::vector{6, 9, 5}));
}

TEST_F(ControlAnswer, EveryRingIsTold) {
    StartAnswering();
    for (int i = 0; i < 3; ++i)
        ExchangeSendMessage(alphaLine, LINE_LINEDEVSTATE, LINEDEVSTATE_RINGING, 1, 1);
    ExchangeSendMessage(alphaLine, LINE_LINEDEVSTATE, LINEDEVSTATE_CONNECTED, 0, 0);
    EXPECT_TRUE(phone->Hears("Ring", 3));
    host::Pump(20);
    EXPECT_EQ(phone->ear.Count("Ring"), 3);
    EXPECT_TRUE(phone->ear.alwaysOnThread);
    EXPECT_EQ(phone->ear.Count("NewConnection"), 0);
}

TEST_F(ControlAnswer, TheHandleIsThereInTheFirstEvent) {
    StartAnswering();
    bool wasOpen = false;
    phone->ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == events::NewConnection)
            wasOpen = phone->IsOpen() && phone->Is(&ITarnComm::get_CDHolding);
    };
    ExchangeRing(alphaLine);
    EXPECT_TRUE(phone->Hears("CarrierChanged"));
    EXPECT_TRUE(wasOpen);
    EXPECT_NE(phone->Get(&ITarnComm::get_CommHandle), -1);
}

TEST_F(ControlAnswer, DataFlowsBothWays) {
    AnswerACall();
    EXPECT_TRUE(phone->IsOpen());
    EXPECT_EQ(OpenDevices(), 1) << "the handle of the call";
    EXPECT_TRUE(phone->control->IsConnected());
    host::FarEnd peer;
    ExpectDataFlow(*phone, peer);
}

TEST_F(ControlAnswer, ClosingThePortDropsTheCall) {
    AnswerACall();
    phone->ear.heard.clear();
    ExchangeClearRecord();
    EXPECT_EQ(phone->control->put_PortOpen(VARIANT_FALSE), S_OK);
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(phone->Status(), "Disconnected");
    EXPECT_EQ(Asked("lineDrop"), 1);
    EXPECT_EQ(phone->ear.heard, (Lines{"OnComm", "CarrierChanged"}));
    EXPECT_TRUE(IsReopened(0)) << "the next call is waited for";
    EXPECT_TRUE(phone->Is(&ITarnComm::get_AnswerCalls));
}

TEST_F(ControlAnswer, AFarHangUpReopensTheLineByItself) {
    AnswerACall();
    for (int call = 1; call <= 3; ++call) {
        SCOPED_TRACE(call);
        phone->ear.heard.clear();
        ExchangeClearRecord();
        ExchangeFarHangUp(alphaLine, LINEDISCONNECTMODE_NORMAL);
        EXPECT_TRUE(IsReopened(0));
        EXPECT_EQ(phone->ear.heard, (Lines{"OnComm", "CarrierChanged"}));
        EXPECT_EQ(Asked("lineOpen device=0 privileges=owner media=10"), 1) << RecordText();
        EXPECT_EQ(Asked("lineDeallocateCall"), 1) << RecordText();
        EXPECT_EQ(Asked("lineClose"), 1) << RecordText();
        EXPECT_EQ(phone->Status(), "Disconnected");
        EXPECT_FALSE(phone->IsOpen());
        EXPECT_FALSE(phone->control->IsConnected());
        EXPECT_TRUE(phone->Is(&ITarnComm::get_AnswerCalls));
        phone->ear.heard.clear();
        ASSERT_NE(ExchangeRing(alphaLine), 0U) << "another call";
        ASSERT_TRUE(phone->Hears("CarrierChanged"));
        EXPECT_TRUE(phone->IsOpen());
    }
    host::FarEnd peer;
    ExpectDataFlow(*phone, peer);
}

TEST_F(ControlAnswer, OffDuringACallEndsIt) {
    AnswerACall();
    phone->Answer(false);
    EXPECT_EQ(Holdings().lines, 0U);
    EXPECT_FALSE(phone->Is(&ITarnComm::get_AnswerCalls));
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(phone->Status(), "Disconnected");
}

TEST_F(ControlAnswer, ADialMeanwhileIsUnavailable) {
    StartAnswering();
    EXPECT_EQ(phone->Dial("5550100"), S_OK);
    EXPECT_EQ(phone->Status(), "Connection unavailable");
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_EQ(Asked("lineMakeCall"), 0);
    EXPECT_TRUE(phone->Is(&ITarnComm::get_AnswerCalls));
    phone->Answer(false);
    EXPECT_EQ(phone->Dial("5550100"), S_OK);
    EXPECT_EQ(phone->Status(), "Connected");
}

TEST_F(ControlAnswer, AnsweringIsRefusedDuringACall) {
    StartAtAlpha();
    ASSERT_EQ(phone->Dial("5550100"), S_OK);
    phone->Answer(true);
    EXPECT_FALSE(phone->Is(&ITarnComm::get_AnswerCalls));
    EXPECT_TRUE(phone->IsOpen());
}

// Survival

struct Moment {
    const char* name;
    DISPID event;
    int time; // the first is 1
};

constexpr Moment moments[] = {
    {"Ring", events::Ring, 1},
    {"NewConnection", events::NewConnection, 1},
    {"Carrier", events::CarrierChanged, 1},
    {"CarrierLost", events::CarrierChanged, 2},
};

void PrintTo(const Moment& moment, std::ostream* out) {
    *out << moment.name;
}

class ControlAnswerSurvival : public ControlAnswer,
                              public testing::WithParamInterface<std::tuple<Deed, Moment, bool>> {};

TEST_P(ControlAnswerSurvival, OfWhatTheHostDoesInAnEventOfACall) {
    const Deed deed = std::get<Deed>(GetParam());
    const Moment moment = std::get<Moment>(GetParam());
    StartAtAlpha();
    if (std::get<bool>(GetParam()))
        phone->Show();
    phone->Answer(true);
    int times = 0;
    phone->ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == moment.event && ++times == moment.time)
            deed.act(*phone);
    };
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(host::PumpUntil([&] { return times > 0; }));
    ExchangeFarHangUp(alphaLine, LINEDISCONNECTMODE_NORMAL); // whatever has become of the call
    EXPECT_TRUE(host::PumpUntil([&] { return times >= moment.time; }));
    host::Pump(30);
}

INSTANTIATE_TEST_SUITE_P(Deeds, ControlAnswerSurvival,
                         testing::Combine(testing::ValuesIn(deeds), testing::ValuesIn(moments),
                                          testing::Bool()));

// The port is free and the caller is told, though nobody took the call.
TEST_F(ControlAnswer, ACallForNoObjectIsHungUp) {
    StartAnswering();
    DestroyWindow(phone->Object());
    ExchangeClearRecord();
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(host::PumpUntil([] { return Asked("lineDrop") == 1; }));
    EXPECT_EQ(OpenDevices(), 0);
    EXPECT_EQ(phone->ear.Count("NewConnection"), 0);
}

TEST_F(ControlAnswer, TheControlGoesWhileTheLineRings) {
    StartAnswering();
    ExchangeSetPace(100); // the answer is still under way
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(host::PumpUntil([] { return Asked("lineAnswer") == 1; }));
    phone.reset();
    EXPECT_EQ(Holdings().calls, 0U);
}

TEST_F(ControlAnswer, TheControlGoesDuringACall) {
    AnswerACall();
    phone.reset();
    EXPECT_EQ(Holdings().calls, 0U);
}

TEST_F(ControlAnswer, AfterAFailedReopeningItCanBeTriedAgain) {
    AnswerACall();
    ExchangeFail("lineOpenA", allocated, 1);
    ExchangeFarHangUp(alphaLine, LINEDISCONNECTMODE_NORMAL);
    EXPECT_TRUE(host::PumpUntil([&] { return !phone->Is(&ITarnComm::get_AnswerCalls); }));
    EXPECT_EQ(Holdings().lines, 0U);
    phone->Answer(false);
    phone->Answer(true);
    EXPECT_TRUE(phone->Is(&ITarnComm::get_AnswerCalls));
    phone->ear.heard.clear();
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(phone->Hears("CarrierChanged"));
}

TEST_F(ControlAnswer, HangUpOfAWaitingLineTurnsItOff) {
    StartAnswering();
    EXPECT_TRUE(phone->Is(&ITarnComm::get_HangUp));
    EXPECT_FALSE(phone->Is(&ITarnComm::get_AnswerCalls));
    EXPECT_EQ(Holdings().lines, 0U);
    phone->Answer(true);
    EXPECT_TRUE(phone->Is(&ITarnComm::get_AnswerCalls));
    EXPECT_EQ(Holdings().lines, 1U);
}

TEST_F(ControlAnswer, APlainPortMakesRoomForACall) {
    StartAnswering();
    phone->UseLine("COM6");
    ASSERT_EQ(phone->control->put_PortOpen(VARIANT_TRUE), S_OK);
    ASSERT_EQ(OpenDevices(), 1);
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(phone->Hears("NewConnection"));
    EXPECT_EQ(OpenDevices(), 1) << "that of the call";
}

TEST_F(ControlAnswer, ACallWithoutDataIsNotTold) {
    StartAnswering();
    ExchangeFail("lineGetIDA", Error(LINEERR_OPERATIONUNAVAIL), 1);
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(IsReopened()) << "for the next";
    EXPECT_EQ(Asked("lineDrop"), 1);
    EXPECT_EQ(phone->ear.Count("NewConnection") + phone->ear.Count("CarrierChanged"), 0);
    ASSERT_NE(ExchangeRing(alphaLine), 0U);
    EXPECT_TRUE(phone->Hears("NewConnection"));
}

} // namespace
