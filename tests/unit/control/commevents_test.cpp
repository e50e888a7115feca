// The comm object's events as events of the control: codes, order, log lines, errors, the look-up, and what
// hosts do inside of them.
#include "eventhost.h"

#include "com/typeinfo.h"
#include "control/ansi.h"
#include "control/objectaccess.h"
#include "coreobject.h"

namespace {

using host::Lines;

class CommEvents : public host::EventControlTest {
  public:
    Lines HeardOf(int code) {
        ear.heard.clear();
        NotifyObject(Object(), code);
        return ear.heard;
    }
};

struct CodeRow {
    int code;
    const char* event;
    const char* logName;
};

constexpr CodeRow codes[] = {
    {1, "Send", "Send"},
    {2, "Receive", "Receive"},
    {3, "CTSChanged", "CTSChanged"},
    {4, "DSRChanged", "DSRChanged"},
    {5, "CarrierChanged", "CarrierChanged"},
    {6, "Ring", "Ring"},
    {8, "LookUp", "Lookup"}, // the log spells it in its own way
    {9, "NewConnection", "NewConnection"},
};

constexpr CodeRow statuses[] = {
    {0, "FinishFileTransfer", "FinishFileTransfer"},
    {1, "WaitForFile", "WaitForFile"},
    {2, "PrepareFile", "PrepareFile"},
    {3, "StartFile", "StartFile"},
    {4, "TransferBlock", "TransferBlock"},
    {5, "AbortFile", "AbortFile"},
    {6, "AbortFileTransfer", "AbortFileTransfer"},
    {7, "FinishFile", "FinishFile"},
    {-1, "AbortFileTransfer", "AbortFileTransfer"},
};

constexpr CodeRow errors[] = {
    {1001, "", "Break Error"},
    {1002, "", "CTS Time Out Error"},
    {1003, "", "DSR Time Out Error"},
    {1004, "", "Framing Error"},
    {1005, "", "Input Time Out Error"},
    {1006, "", "Data Overrun Error"},
    {1007, "", "Carrier Time Out Error"},
    {1008, "", "Receive Buffer Overflow Error"},
    {1009, "", "Parity Receive Error"},
    {1010, "", "Transmit Buffer Full Error"},
};

constexpr int transferCode = 100;

TEST_F(CommEvents, NumbersAreTheTypeLibrarys) {
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(TypeInfoOf(DIID__ITarnCommEvents, info), S_OK);
    DISPID expected = 1;
    for (const char* name : host::eventNames) {
        _bstr_t wide(WideOf(name).c_str());
        BSTR names = wide.GetBSTR();
        MEMBERID id = 0;
        EXPECT_EQ(info->GetIDsOfNames(&names, 1, &id), S_OK) << name;
        EXPECT_EQ(id, expected++) << name;
    }
    EXPECT_EQ(events::LookUp, 29);
    EXPECT_EQ(expected, 30);
}

TEST_F(CommEvents, EachCodeFiresBehindOnComm) {
    LogEvents();
    Lines log;
    for (const CodeRow& row : codes) {
        EXPECT_EQ(HeardOf(row.code), (Lines{"OnComm", row.event})) << row.code;
        log.push_back(std::string("TarnComm_") + row.logName + "() Event");
    }
    EXPECT_EQ(Log(), log);
    EXPECT_TRUE(ear.alwaysOnThread);
}

TEST_F(CommEvents, TransfersFireByTheirStatus) {
    LogEvents();
    Lines log;
    for (const CodeRow& row : statuses) {
        host::SetTransferStatusOf(Object(), row.code);
        EXPECT_EQ(HeardOf(transferCode), (Lines{"OnComm", row.event})) << row.code;
        log.push_back(std::string("TarnComm_") + row.logName + "() Event");
    }
    EXPECT_EQ(Log(), log);
    host::SetTransferStatusOf(Object(), 8);
    EXPECT_EQ(HeardOf(transferCode), Lines{"OnComm"});
}

TEST_F(CommEvents, ErrorsAreLoggedAndToldByOnCommAlone) {
    LogEvents();
    Lines log;
    for (const CodeRow& row : errors) {
        EXPECT_EQ(HeardOf(row.code), Lines{"OnComm"}) << row.code;
        log.push_back(std::string("TarnComm_") + row.logName + "() Event");
    }
    EXPECT_EQ(Log(), log);
}

TEST_F(CommEvents, OtherCodesAreOnCommAndNothingElse) {
    LogEvents();
    for (int code : {0, 7, 10, 99, 101, 1000, 1011, -1})
        EXPECT_EQ(HeardOf(code), Lines{"OnComm"}) << code;
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(CommEvents, IgnoreOnCommSilencesNothingElse) {
    control->Properties().m_bIgnoreOnComm = trueFlag;
    for (const CodeRow& row : codes)
        EXPECT_EQ(HeardOf(row.code), Lines{row.event}) << row.code;
    EXPECT_EQ(HeardOf(1001), Lines{});
}

// What is in the log when the handler runs tells which of the two comes first.
TEST_F(CommEvents, TheLineComesFirstButForClearToSend) {
    LogEvents();
    size_t linesBefore = 0;
    ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id != events::OnComm)
            linesBefore = Log().size();
    };
    size_t lines = 0;
    for (const CodeRow& row : codes) {
        HeardOf(row.code);
        const size_t expected = row.code == 3 ? lines : lines + 1;
        EXPECT_EQ(linesBefore, expected) << row.code;
        EXPECT_EQ(Log().size(), ++lines);
    }
}

TEST_F(CommEvents, BothRoadsEndHere) {
    EXPECT_EQ(HeardOf(6), (Lines{"OnComm", "Ring"})) << "without a window";
    Show();
    EXPECT_EQ(GetParent(Object()), control->Window());
    EXPECT_EQ(HeardOf(6), (Lines{"OnComm", "Ring"})) << "by a command to the control's window";
    SendMessageA(control->Window(), WM_COMMAND, 1, reinterpret_cast<LPARAM>(Object()));
    SendMessageA(control->Window(), WM_COMMAND, 0, 0);
    EXPECT_EQ(ear.Count("Ring"), 1) << "commands of other children are none";
}

TEST_F(CommEvents, AControlArraysIndexIsTheFirstArgument) {
    LogEvents();
    Name(L"Comm(2)");
    HeardOf(1);
    Name(L"Modem");
    HeardOf(1);
    EXPECT_EQ(Log(), (Lines{"Comm_Send(2) Event", "Modem_Send() Event"}));
}

TEST_F(CommEvents, NothingIsLoggedWithoutItsSwitchesOrAtDesignTime) {
    control->Properties().m_bWireTapEvents = trueFlag;
    HeardOf(1);
    control->Properties().m_bWireTap = trueFlag;
    control->Properties().m_bWireTapEvents = 0;
    HeardOf(1);
    LogEvents();
    container.site.ambients[DISPID_AMBIENT_USERMODE] = _variant_t(false);
    HeardOf(1);
    EXPECT_EQ(Log(), Lines{});
    container.site.ambients[DISPID_AMBIENT_USERMODE] = _variant_t(true);
    HeardOf(1);
    EXPECT_EQ(Log(), Lines{"TarnComm_Send() Event"});
}

TEST_F(CommEvents, NothingIsLoggedWhileTheHostFreezesEvents) {
    LogEvents();
    control->FreezeEvents(TRUE);
    EXPECT_EQ(HeardOf(1), (Lines{"OnComm", "Send"})) << "told all the same";
    EXPECT_EQ(Log(), Lines{});
    control->FreezeEvents(FALSE);
    HeardOf(1);
    EXPECT_EQ(Log(), Lines{"TarnComm_Send() Event"});
}

TEST_F(CommEvents, AnErrorCanBeReadInsideOfItsEventOnly) {
    CommEvent event = {};
    CommError error = {};
    ear.onEvent = [&](DISPID, DISPPARAMS&) {
        EXPECT_EQ(control->get_CommEvent(&event), S_OK);
        EXPECT_EQ(control->get_CommError(&error), S_OK);
    };
    HeardOf(1004);
    EXPECT_EQ(static_cast<int>(event), 1004);
    EXPECT_EQ(static_cast<int>(error), 1004);
    EXPECT_EQ(control->get_CommError(&error), S_OK);
    EXPECT_EQ(static_cast<int>(error), 0);
    EXPECT_EQ(control->get_CommEvent(&event), S_OK);
    EXPECT_EQ(static_cast<int>(event), 1004) << "the last event stays";
    HeardOf(2);
    EXPECT_EQ(static_cast<int>(event), 2);
    EXPECT_EQ(static_cast<int>(error), 0);
}

TEST_F(CommEvents, ALookUpKeepsItsTextAndWritesTwoLines) {
    LogEvents();
    std::string input;
    ear.onEvent = [&](DISPID, DISPPARAMS&) { input = control->Properties().m_sLookUpInput; };
    control->FireLookUp("what came before");
    EXPECT_EQ(TakeHeard(), (Lines{"OnComm", "LookUp"}));
    EXPECT_EQ(input, "what came before");
    EXPECT_EQ(Log(), (Lines{"TarnComm_LookUp() Event", "TarnComm_Lookup() Event"}));
}

TEST_F(CommEvents, ALookUpOnTheLineTellsMatchAndWhatCameBefore) {
    host::FarEnd peer;
    Show();
    SetLookUpInputLen(Object(), 100);
    SetLookUpText(Object(), "password:|login:", '|');
    SetCommPort(Object(), host::nearPort);
    SetSettings(Object(), "115200,n,8,1");
    ASSERT_TRUE(SetPortOpen(Object(), 1, nullptr));
    int match = -2;
    ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == events::LookUp)
            match = LookUpMatchOf(Object());
    };
    peer.Send("welcome\r\nLogin:");
    EXPECT_TRUE(host::PumpUntil([&] { return match != -2; }));
    EXPECT_EQ(match, 1);
    EXPECT_EQ(control->Properties().m_sLookUpInput, "welcome\r\n");
    EXPECT_EQ(ear.Count("LookUp"), 1);
    EXPECT_TRUE(ear.alwaysOnThread);
}

TEST_F(CommEvents, TheLinesOwnEventsComeOnTheControlsThread) {
    host::FarEnd peer;
    EscapeCommFunction(peer.Handle(), CLRRTS);
    SetAutoProcess(Object(), 0);
    SetRThreshold(Object(), 3);
    SetCommPort(Object(), host::nearPort);
    SetSettings(Object(), "115200,n,8,1");
    ASSERT_TRUE(SetPortOpen(Object(), 1, nullptr));
    std::string input;
    ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        char bytes[16];
        if (id == events::Receive)
            input.append(bytes, static_cast<size_t>(GetInput(Object(), bytes, sizeof bytes)));
    };
    peer.Send("abc");
    EXPECT_TRUE(host::PumpUntil([&] { return input == "abc"; }));
    EXPECT_EQ(ear.Count("CTSChanged"), 0);
    EscapeCommFunction(peer.Handle(), SETRTS);
    SendMessageA(Object(), WM_TIMER, 0, 0); // a step looks at the signals
    EXPECT_EQ(ear.Count("CTSChanged"), 1);
    EXPECT_TRUE(ear.alwaysOnThread);
}

} // namespace
