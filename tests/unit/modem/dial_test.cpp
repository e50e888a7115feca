// Dialling: the modem's words, the limit, the cancel, hosts that interfere.
#include "modemobject.h"

#include "core/rooms.h"

#include <new>

namespace {

class ModemDial : public host::ModemTest {
  protected:
    void SetUp() override {
        ModemTest::SetUp();
        cable.Carrier('a', "off");
    }

    std::unique_ptr<host::Every> WhileDialling(std::function<void()> action) {
        return host::When([this] { return RecordOf(object)->bDialing != 0; }, std::move(action));
    }

    // A second before the prefix, in which nothing is awaited yet.
    void RestLonger() { SetModemOptions(object, "Slow\tATZ\t~ATDT\t~ATDP\tATA\tATH^M"); }
};

struct WordCase {
    const char* said;
    int result;
    const char* left; // in the input afterwards
};

TEST_F(ModemDial, WordsAreResults) {
    Open();
    const WordCase cases[] = {
        {"\r\nCONNECT\r\n", TARN_DIAL_CONNECTED, "\r\n"},
        {"\r\nCONNECT 14400/ARQ\r\n", TARN_DIAL_CONNECTED, " 14400/ARQ\r\n"},
        {"\r\nNO CARRIER\r\n", TARN_DIAL_NO_CARRIER, "\r\n"},
        {"\r\nNO DIALTONE\r\n", TARN_DIAL_NO_DIAL_TONE, "\r\n"},
        {"\r\nBUSY\r\n", TARN_DIAL_BUSY, "\r\n"},
        {"RINGING\r\nbusy", TARN_DIAL_BUSY, ""},
        {"\xFF~}NO CARR NO CARRIER", TARN_DIAL_NO_CARRIER, ""},
    };
    for (const WordCase& row : cases) {
        Forget();
        const auto answer = Answer("5551234\r", row.said);
        EXPECT_EQ(Dial(object, "5551234"), row.result) << row.said;
        ExpectHeard("ATDT5551234\r");
        host::Pump(20);
        char rest[64] = {};
        const int count = GetInput(object, rest, sizeof rest);
        EXPECT_EQ(std::string(rest, static_cast<size_t>(count)), row.left) << row.said;
    }
}

TEST_F(ModemDial, TimeOutStopsTheModem) {
    Open();
    SetDialTimeOut(object, 700);
    const host::Clock clock;
    EXPECT_EQ(Dial(object, "5551234"), TARN_DIAL_TIMED_OUT);
    EXPECT_GE(clock.Gone(), 890u) << "the rest before the command, and the limit";
    EXPECT_LT(clock.Gone(), 2500u);
    host::Pump(50);
    ExpectHeard("ATDT5551234\r\r");
}

TEST_F(ModemDial, ClosedPortWaitsForTheLimitAndSendsNothing) {
    SetDialTimeOut(object, 500);
    const host::Clock clock;
    EXPECT_EQ(Dial(object, "5551234"), TARN_DIAL_TIMED_OUT);
    EXPECT_GE(clock.Gone(), 690u);
    EXPECT_LT(clock.Gone(), 2500u);
    EXPECT_EQ(Heard(), "");
}

TEST_F(ModemDial, PulseHasItsOwnPrefix) {
    Open();
    SetDialMode(object, TARN_DIAL_PULSE);
    const auto answer = Answer("12\r", "BUSY");
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_BUSY);
    ExpectHeard("ATDP12\r");
}

TEST_F(ModemDial, WithoutOptionsTheNumberGoesAlone) {
    Open();
    SetModemOptions(object, "");
    const auto answer = Answer("12\r", "BUSY");
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_BUSY);
    ExpectHeard("12\r");
}

TEST_F(ModemDial, NumberGoesAsItStands) {
    Open();
    const auto answer = Answer("\r", "BUSY");
    const host::Clock clock;
    EXPECT_EQ(Dial(object, "1-800~^M,W FOO"), TARN_DIAL_BUSY);
    EXPECT_LT(clock.Gone(), 1100u) << "no pause in it";
    ExpectHeard("ATDT1-800~^M,W FOO\r");
}

TEST_F(ModemDial, NoNumberIsAnEmptyOne) {
    Open();
    const auto answer = Answer("\r", "NO CARRIER");
    EXPECT_EQ(Dial(object, nullptr), TARN_DIAL_NO_CARRIER);
    ExpectHeard("ATDT\r");
}

TEST_F(ModemDial, WhatWaitedInTheInputIsNoAnswer) {
    Open();
    modem.Send("CONNECT 300\r\n");
    host::PumpUntil([&] { return GetInBufferCount(object) == 13; });
    const auto answer = Answer("12\r", "BUSY");
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_BUSY);
}

TEST_F(ModemDial, StateIsTrueOnlyWhileItWaits) {
    Open();
    SetLookUpTimeOut(object, 777);
    SetDialTimeOut(object, 5000);
    COMCTL* record = RecordOf(object);
    int before = -1, inside = -1, limit = -1;
    RestLonger();
    const auto early = host::After(100, [&] { before = record->bDialing; });
    const auto look = WhileDialling([&] {
        inside = record->bDialing;
        limit = GetLookUpTimeOut(object);
        modem.Send("BUSY");
    });
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_BUSY);
    EXPECT_EQ(before, 0) << "the command goes out";
    EXPECT_EQ(inside, 1);
    EXPECT_EQ(limit, 5000);
    EXPECT_EQ(record->bDialing, 0);
    EXPECT_EQ(record->bDialCancel, 0);
    EXPECT_EQ(GetLookUpTimeOut(object), 777);
}

TEST_F(ModemDial, HangUpCancels) {
    Open();
    int hungUp = -1, flag = -1;
    const auto cancel = WhileDialling([&] {
        hungUp = HangUp(object);
        flag = RecordOf(object)->bDialCancel;
    });
    const host::Clock clock;
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_CANCELLED);
    EXPECT_LT(clock.Gone(), 2000u);
    EXPECT_EQ(hungUp, 1);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(RecordOf(object)->bDialCancel, 0);
    host::Pump(50);
    ExpectHeard("ATDT12\r\r\r"); // one by HangUp, one by Dial
}

TEST_F(ModemDial, CancelWinsOverTheWordThatCameMeanwhile) {
    Open();
    // The word's last character is there already when the flag is raised behind the look-up's back.
    SetInputEcho(object, 1);
    const auto answer = Answer("12\r", "CONNECT");
    const auto before = upperRooms.terminalWrite;
    static HWND dialling;
    dialling = object;
    upperRooms.terminalWrite = [](HWND, const void* bytes, int count) {
        if (count == 1 && *static_cast<const char*>(bytes) == 'T')
            HangUp(dialling);
    };
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_CANCELLED);
    upperRooms.terminalWrite = before;
}

TEST_F(ModemDial, HangUpBeforeTheWaitIsNoCancel) {
    Open();
    int hungUp = -1;
    RestLonger();
    const auto early = host::After(100, [&] { hungUp = HangUp(object); });
    const auto answer = Answer("12\r", "BUSY");
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_BUSY);
    EXPECT_EQ(hungUp, 1) << "no carrier";
    ExpectHeard("ATDT12\r");
}

TEST_F(ModemDial, NestedWaitsFindNothing) {
    Open();
    SetDialTimeOut(object, 20000);
    int ok = -1, check = -1;
    const auto inside = WhileDialling([&] {
        const host::Clock clock;
        ok = WaitForOk(object);
        check = CheckModem(object);
        EXPECT_LT(clock.Gone(), 1200u);
        modem.Send("BUSY");
    });
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_BUSY);
    EXPECT_EQ(ok, 0);
    EXPECT_EQ(check, 0);
    ExpectHeard("ATDT12\rAT\r");
}

TEST_F(ModemDial, NestedDialTimesOutAndTakesTheStateWithIt) {
    Open();
    COMCTL* record = RecordOf(object);
    int nested = -1, dialling = -1;
    const auto inside = WhileDialling([&] {
        ExpectHeard("ATDT12\r"); // a dial throws away what isn't sent yet
        const host::Clock clock;
        nested = Dial(object, "34");
        EXPECT_LT(clock.Gone(), 1200u);
        dialling = record->bDialing;
        modem.Send("BUSY");
    });
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_BUSY);
    EXPECT_EQ(nested, TARN_DIAL_TIMED_OUT);
    EXPECT_EQ(dialling, 0) << "kept so: HangUp is no cancel from here on";
    ExpectHeard("ATDT12\rATDT34\r\r");
}

TEST_F(ModemDial, ObjectMayGoAtAnyTime) {
    for (const UINT when : {100u, 500u}) {
        const HWND other = CreateCommObject(nullptr);
        const auto destroy = host::After(when, [&] { DestroyWindow(other); });
        const host::Clock clock;
        EXPECT_EQ(Dial(other, "12"), TARN_DIAL_TIMED_OUT);
        EXPECT_LT(clock.Gone(), 2000u);
        EXPECT_FALSE(IsWindow(other));
    }
}

TEST_F(ModemDial, ShutDownEndsTheWait) {
    Open();
    const auto end = WhileDialling([&] { SetShutDown(object, 1); });
    const host::Clock clock;
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_TIMED_OUT);
    EXPECT_LT(clock.Gone(), 2000u);
}

TEST_F(ModemDial, PortThatClosesWaitsForTheLimit) {
    Open();
    SetDialTimeOut(object, 1000);
    const auto close = WhileDialling([&] { object.Close(); });
    const host::Clock clock;
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_TIMED_OUT);
    EXPECT_GE(clock.Gone(), 1190u);
    EXPECT_EQ(RecordOf(object)->bDialing, 0);
}

void CALLBACK IdleOutOfMemory() {
    throw std::bad_alloc();
}

TEST_F(ModemDial, FailureInsideIsNoCall) {
    Open();
    RestLonger();
    const auto out = WhileDialling([&] { SetIdleLoop(object, IdleOutOfMemory); });
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_TIMED_OUT);
    EXPECT_EQ(RecordOf(object)->bDialing, 0);
    EXPECT_EQ(WaitForOk(object), 0);
    EXPECT_EQ(DiscardUntilLookUp(object, "x\0"), -1);
    SetIdleLoop(object, nullptr);
}

} // namespace
