// Calls between two lines of the tests' own exchange, and their data.
#include "core/handle.h"
#include "exchangefixture.h"
#include "modem/tapiblock.h"

namespace {

using namespace telephony;

// Two lines of the exchange, the first calling the second.
class ExchangeCall : public Exchange {
  protected:
    void Place() {
        line = caller.Open(0);
        ASSERT_GT(Call(line, "555 0002", call), 0);
        ASSERT_TRUE(caller.Reach(LINECALLSTATE_RINGBACK));
    }
    void Ring() {
        ownLine = called.Own(1);
        Place();
        ASSERT_TRUE(called.Reach(LINECALLSTATE_OFFERING));
        offered = called.last.hDevice;
    }
    void Talk() {
        Ring();
        ASSERT_GT(Service().lineAnswer(offered, nullptr, 0), 0);
        ASSERT_TRUE(called.Reach(LINECALLSTATE_CONNECTED));
        ASSERT_TRUE(caller.Reach(LINECALLSTATE_CONNECTED));
    }

    App caller, called;
    HLINE line = 0, ownLine = 0;
    HCALL call = 0, offered = 0;
};

TEST_F(ExchangeCall, RingsAndOffersToTheOwner) {
    ownLine = called.Own(1);
    Place();
    EXPECT_EQ(called.Take(1), (Messages{{LINE_LINEDEVSTATE, LINEDEVSTATE_RINGING}}));
    EXPECT_EQ(called.last.hDevice, ownLine);
    EXPECT_EQ(called.Take(1), (Messages{{LINE_CALLSTATE, LINECALLSTATE_OFFERING}}));
    EXPECT_NE(called.last.hDevice, call);
    EXPECT_EQ(called.last.dwCallbackInstance, 1001u);
    EXPECT_EQ(called.last.dwParam3, DWORD{LINECALLPRIVILEGE_OWNER});
}

TEST_F(ExchangeCall, AnswerConnectsBoth) {
    Ring();
    const LONG request = Service().lineAnswer(offered, nullptr, 0);
    ASSERT_GT(request, 0);
    EXPECT_EQ(called.Take(2), (Messages{{LINE_REPLY, 0}, {LINE_CALLSTATE, LINECALLSTATE_CONNECTED}}));
    EXPECT_EQ(caller.Take(1), (Messages{{LINE_CALLSTATE, LINECALLSTATE_CONNECTED}}));
    EXPECT_EQ(Service().lineAnswer(offered, nullptr, 0), Error(LINEERR_INVALCALLSTATE));
}

TEST_F(ExchangeCall, DropEndsBothSides) {
    for (const bool byCaller : {true, false}) {
        Talk();
        App& dropping = byCaller ? caller : called;
        App& other = byCaller ? called : caller;
        ASSERT_GT(Service().lineDrop(byCaller ? call : offered, nullptr, 0), 0);
        EXPECT_EQ(dropping.Take(2), (Messages{{LINE_REPLY, 0}, {LINE_CALLSTATE, LINECALLSTATE_IDLE}}));
        EXPECT_EQ(other.Take(1), (Messages{{LINE_CALLSTATE, LINECALLSTATE_DISCONNECTED}}));
        EXPECT_EQ(other.last.dwParam2, DWORD{LINEDISCONNECTMODE_NORMAL});
        EXPECT_EQ(other.Take(1), (Messages{{LINE_CALLSTATE, LINECALLSTATE_IDLE}}));
        EXPECT_EQ(Service().lineDeallocateCall(call), 0);
        EXPECT_EQ(Service().lineDeallocateCall(offered), 0);
        EXPECT_EQ(Service().lineClose(line), 0);
        EXPECT_EQ(Service().lineClose(ownLine), 0);
        EXPECT_EQ(Holdings().calls, 0u);
    }
}

TEST_F(ExchangeCall, DropWhileDisconnectedGivesOneIdle) {
    Talk();
    ExchangeSetPace(30);
    ExchangeFarHangUp(1, LINEDISCONNECTMODE_NORMAL);
    ASSERT_GT(Service().lineDrop(offered, nullptr, 0), 0);
    ASSERT_TRUE(called.Reach(LINECALLSTATE_IDLE));
    LINEMESSAGE message = {};
    EXPECT_FALSE(called.Next(message, 100));
}

TEST_F(ExchangeCall, DropOfAnIdleCallIsAccepted) {
    Talk();
    ExchangeFarHangUp(1, LINEDISCONNECTMODE_NORMAL);
    ASSERT_TRUE(called.Reach(LINECALLSTATE_IDLE));
    EXPECT_GT(Service().lineDrop(offered, nullptr, 0), 0);
    EXPECT_EQ(called.Take(1), (Messages{{LINE_REPLY, 0}}));
}

TEST_F(ExchangeCall, DropEndsADialThatStillRings) {
    Ring();
    ASSERT_GT(Service().lineDrop(call, nullptr, 0), 0);
    ASSERT_TRUE(caller.Reach(LINECALLSTATE_IDLE));
    EXPECT_TRUE(called.Reach(LINECALLSTATE_DISCONNECTED));
    EXPECT_TRUE(called.Reach(LINECALLSTATE_IDLE));
}

TEST_F(ExchangeCall, ClosingALineEndsItsCalls) {
    Talk();
    EXPECT_EQ(Service().lineClose(line), 0);
    EXPECT_EQ(Service().lineDrop(call, nullptr, 0), Error(LINEERR_INVALCALLHANDLE));
    EXPECT_TRUE(called.Reach(LINECALLSTATE_DISCONNECTED));
    EXPECT_TRUE(called.Reach(LINECALLSTATE_IDLE));
    EXPECT_FALSE(caller.HasMessage());
}

TEST_F(ExchangeCall, FarEndHangsUpWithItsMode) {
    Talk();
    ExchangeFarHangUp(1, LINEDISCONNECTMODE_UNREACHABLE);
    ASSERT_TRUE(called.Reach(LINECALLSTATE_DISCONNECTED));
    EXPECT_EQ(called.last.dwParam2, DWORD{LINEDISCONNECTMODE_UNREACHABLE});
    EXPECT_TRUE(called.Reach(LINECALLSTATE_IDLE));
    EXPECT_EQ(caller.Take(1), (Messages{{LINE_CALLSTATE, LINECALLSTATE_IDLE}}));
}

TEST_F(ExchangeCall, SecondCallerFindsTheLineBusy) {
    Talk();
    ExchangeAddLine("Modem Three", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    App third;
    HCALL late = 0;
    ASSERT_GT(Call(third.Open(3), "5550002", late), 0);
    ASSERT_TRUE(third.Reach(LINECALLSTATE_BUSY));
    ASSERT_TRUE(third.Reach(LINECALLSTATE_DISCONNECTED));
    EXPECT_EQ(third.last.dwParam2, DWORD{LINEDISCONNECTMODE_BUSY});
}

TEST_F(ExchangeCall, NobodyAnswersALineWithoutOwner) {
    called.Open(1);
    Place();
    EXPECT_EQ(called.Take(1), (Messages{{LINE_LINEDEVSTATE, LINEDEVSTATE_RINGING}}));
    ASSERT_TRUE(caller.Reach(LINECALLSTATE_DISCONNECTED));
    EXPECT_EQ(caller.last.dwParam2, DWORD{LINEDISCONNECTMODE_NOANSWER});
    EXPECT_FALSE(called.HasMessage());
}

TEST_F(ExchangeCall, OneOfTwoOwnersGetsTheCall) {
    App second;
    second.Own(1);
    Ring();
    ASSERT_TRUE(second.Reach(LINECALLSTATE_OFFERING));
    ASSERT_GT(Service().lineAnswer(offered, nullptr, 0), 0);
    EXPECT_TRUE(called.Reach(LINECALLSTATE_CONNECTED));
    EXPECT_TRUE(second.Reach(LINECALLSTATE_IDLE));
    EXPECT_TRUE(caller.Reach(LINECALLSTATE_CONNECTED));
}

TEST_F(ExchangeCall, LiveCallIsNotDeallocated) {
    Talk();
    EXPECT_EQ(Service().lineDeallocateCall(call), Error(LINEERR_INVALCALLSTATE));
    EXPECT_EQ(Holdings().calls, 2u);
}

// Data

TEST_F(ExchangeCall, ConnectedCallGivesItsPort) {
    Talk();
    ExchangeClearRecord();
    TapiBlock<VARSTRING> data(84);
    ASSERT_EQ(Service().lineGetIDA(0, 0, offered, LINECALLSELECT_CALL, data.Get(), "comm/datamodem"), 0);
    EXPECT_EQ(RecordText(), "lineGetID select=4 class=comm/datamodem\n");
    ASSERT_GE(data->dwStringSize, sizeof(DWORD));
    DWORD bits = 0;
    std::memcpy(&bits, data.At(data->dwStringOffset, sizeof bits), sizeof bits);
    const FileHandle port(LongToHandle(static_cast<LONG>(bits)));
    DCB state = {};
    state.DCBlength = sizeof state;
    EXPECT_TRUE(GetCommState(port.get(), &state));
}

TEST_F(ExchangeCall, SmallBlockTakesNoPort) {
    Talk();
    ExchangeDemandMore(100);
    TapiBlock<VARSTRING> data(84);
    const auto ask = [&](VARSTRING* block) {
        return Service().lineGetIDA(0, 0, offered, LINECALLSELECT_CALL, block, "comm/datamodem");
    };
    ASSERT_EQ(ask(data.Get()), 0);
    EXPECT_EQ(data->dwStringSize, 0u);
    EXPECT_GT(data->dwNeededSize, 100u);
    ASSERT_EQ(data.Fill(ask), 0);
    DWORD bits = 0;
    std::memcpy(&bits, data.At(data->dwStringOffset, sizeof bits), sizeof bits);
    EXPECT_TRUE(FileHandle(LongToHandle(static_cast<LONG>(bits))));
}

TEST_F(ExchangeCall, DataIsRefusedWithAReason) {
    Ring();
    const auto ask = [](HCALL of, DWORD select, const char* deviceClass) {
        TapiBlock<VARSTRING> data(84);
        return Service().lineGetIDA(0, 0, of, select, data.Get(), deviceClass);
    };
    EXPECT_EQ(ask(offered, LINECALLSELECT_CALL, "comm/datamodem"), Error(LINEERR_INVALCALLSTATE));
    EXPECT_EQ(ask(nowhere, LINECALLSELECT_CALL, "comm/datamodem"), Error(LINEERR_INVALCALLHANDLE));
    EXPECT_EQ(ask(offered, LINECALLSELECT_LINE, "comm/datamodem"), Error(LINEERR_INVALCALLSELECT));
    EXPECT_EQ(ask(offered, LINECALLSELECT_CALL, "tapi/phone"), Error(LINEERR_INVALDEVICECLASS));
    ASSERT_GT(Service().lineAnswer(offered, nullptr, 0), 0);
    ASSERT_TRUE(caller.Reach(LINECALLSTATE_CONNECTED));
    EXPECT_EQ(ask(call, LINECALLSELECT_CALL, "comm/datamodem"), Error(LINEERR_OPERATIONUNAVAIL)) << "no port";
}

} // namespace
