// Commands to a modem and its answers to them.
#include "modemobject.h"

#include "core/rooms.h"

namespace {

class ModemOutput : public host::ModemTest {};
class ModemAnswer : public host::ModemTest {};
class ModemSetUp : public host::ModemTest {};

TEST_F(ModemOutput, RestsBeforeTheFirstByte) {
    Open();
    const host::Clock clock;
    DWORD first = 0;
    const host::Every listen(5, [&] {
        if (!first && !Heard().empty())
            first = clock.Gone();
    });
    const auto later = host::After(150, [&] {
        if (clock.Gone() < 190) {
            EXPECT_EQ(Heard(), "");
        }
    });
    EXPECT_EQ(OutputModem(object, "ATZ^M"), 1);
    EXPECT_GE(clock.Gone(), 190u);
    EXPECT_LT(clock.Gone(), 1200u);
    ExpectHeard("ATZ\r");
    EXPECT_TRUE(!first || first >= 190);
}

TEST_F(ModemOutput, ExpandsMarks) {
    Open();
    EXPECT_EQ(OutputModem(object, "AT^MB^[C^"), 1);
    EXPECT_EQ(modem.Read(6), "AT\rB\x1B"
                             "C");
}

TEST_F(ModemOutput, PausesASecondForEachMark) {
    Open();
    const host::Clock clock;
    DWORD heardA = 0, heardB = 0;
    const host::Every listen(5, [&] {
        const std::string heard = Heard();
        if (!heardA && heard == "A")
            heardA = clock.Gone();
        if (!heardB && heard == "AB")
            heardB = clock.Gone();
    });
    EXPECT_EQ(OutputModem(object, "A~~B"), 1);
    host::PumpUntil([&] { return heardB != 0; });
    EXPECT_GE(heardA, 190u);
    EXPECT_LT(heardA, 1190u);
    EXPECT_GE(heardB, 2190u);
    EXPECT_LT(heardB, 4000u);
}

TEST_F(ModemOutput, PausesGoOnOnAClosedPort) {
    const host::Clock clock;
    EXPECT_EQ(OutputModem(object, "A~B"), 0);
    EXPECT_GE(clock.Gone(), 1190u);
}

TEST_F(ModemOutput, APortThatClosesEndsTheSending) {
    Open();
    const auto close = host::When([&] { return Heard() == "A"; }, [&] { object.Close(); });
    EXPECT_EQ(OutputModem(object, "A~B"), 0);
    ExpectHeard("A");
}

TEST_F(ModemOutput, AfterAFailureNothingMoreIsSent) {
    Open();
    const auto close = host::When([&] { return Heard() == "A"; }, [&] { object.Close(); });
    // Open again before the second pause is over, so that the last byte could go.
    const host::Clock clock;
    const auto open = host::When([&] { return clock.Gone() > 1600; }, [&] { Open(); });
    EXPECT_EQ(OutputModem(object, "A~B~~C"), 0);
    EXPECT_TRUE(GetPortOpen(object));
    ExpectHeard("A");
}

TEST_F(ModemOutput, NoByteIsEveryByte) {
    EXPECT_EQ(OutputModem(object, ""), 1);
    EXPECT_EQ(OutputModem(object, "^"), 1);
    EXPECT_EQ(OutputModem(object, "~"), 1);
}

TEST_F(ModemOutput, EchoesToTheTerminal) {
    SetEmulation(object, TARN_EMULATION_TTY);
    SetEcho(object, 1);
    Open();
    EXPECT_EQ(OutputModem(object, "AT+X"), 1);
    EXPECT_EQ(GetCursorColumn(object), 4);
    EXPECT_EQ(std::string(GetTextAt(object, 0, 0), 4), "AT+X");
}

TEST_F(ModemOutput, NothingAndNobody) {
    EXPECT_EQ(OutputModem(object, nullptr), 0);
    EXPECT_EQ(OutputModem(nullptr, "AT"), 0);
    EXPECT_EQ(WaitForOk(nullptr), 0);
    EXPECT_EQ(CheckModem(nullptr), 0);
    EXPECT_EQ(InitModem(nullptr), 0);
    EXPECT_EQ(InitModemForAnswer(nullptr), 0);
    EXPECT_EQ(Dial(nullptr, "1"), 0);
    EXPECT_EQ(HangUp(nullptr), 0);
    EXPECT_EQ(Disconnect(nullptr), 0);
}

TEST_F(ModemOutput, ObjectMayGoInThePauses) {
    for (const UINT when : {50u, 700u}) {
        const HWND other = CreateCommObject(nullptr);
        const auto destroy = host::After(when, [&] { DestroyWindow(other); });
        const host::Clock clock;
        EXPECT_EQ(OutputModem(other, "A~~~~B"), 0);
        EXPECT_LT(clock.Gone(), 2200u);
        EXPECT_FALSE(IsWindow(other));
    }
}

struct AnswerCase {
    const char* said;
    int result;
};

TEST_F(ModemAnswer, IsOkOrError) {
    Open();
    const AnswerCase cases[] = {{"\r\nOK\r\n", 1},      {"AT\r\r\nok\r\n", 1},           {"\r\nERROR\r\n", 0},
                                {"\x7F\x80O\x01OK", 1}, {"RING\r\nNO CARRIER\r\nOK", 1}, {"error OK", 0}};
    for (const AnswerCase& row : cases) {
        ClearInputBuffer(object);
        modem.Send(row.said);
        const host::Clock clock;
        EXPECT_EQ(WaitForOk(object), row.result) << row.said;
        EXPECT_LT(clock.Gone(), 4000u) << row.said;
    }
}

TEST_F(ModemAnswer, IsAwaitedForEightSeconds) {
    Open();
    SetLookUpTimeOut(object, 1234);
    const auto look = host::After(4000, [&] { EXPECT_EQ(GetLookUpTimeOut(object), 8000); });
    const host::Clock clock;
    EXPECT_EQ(WaitForOk(object), 0);
    EXPECT_GE(clock.Gone(), 7990u);
    EXPECT_LT(clock.Gone(), 10000u);
    EXPECT_EQ(GetLookUpTimeOut(object), 1234);
}

TEST_F(ModemAnswer, TheWaitStartsTheAutomaticLookUpAnewTwice) {
    Open();
    SetLookUpText(object, "never", '|');
    SetLookUpInputLen(object, 10);
    COMCTL* record = RecordOf(object);
    LookUpChar(record, 'x');
    ASSERT_EQ(record->cbLookUpInput, 1);
    int collectedInside = -1;
    const auto look = host::After(100, [&] {
        collectedInside = record->cbLookUpInput;
        LookUpChar(record, 'y');
    });
    const auto answer = host::After(200, [&] { modem.Send("OK"); });
    EXPECT_EQ(WaitForOk(object), 1);
    EXPECT_EQ(collectedInside, 0) << "the first";
    EXPECT_EQ(record->cbLookUpInput, 0) << "the second";
}

TEST_F(ModemAnswer, NestedWaitGivesUpAtOnce) {
    Open();
    int nested = -1;
    DWORD took = 0;
    const auto inside = host::After(100, [&] {
        const host::Clock clock;
        nested = WaitForOk(object);
        took = clock.Gone();
        modem.Send("OK");
    });
    EXPECT_EQ(WaitForOk(object), 1);
    EXPECT_EQ(nested, 0);
    EXPECT_LT(took, 1000u);
}

HWND destroyedAtTheEcho;

// A host may do anything while a byte is shown.
void DestroyAtK(HWND, const void* bytes, int count) {
    if (count == 1 && *static_cast<const char*>(bytes) == 'K')
        DestroyWindow(destroyedAtTheEcho);
}

TEST_F(ModemAnswer, ObjectThatGoesWithTheLastByteHasNoAnswer) {
    const auto before = upperRooms.terminalWrite;
    for (int(TARNAPI * function)(HWND) : {WaitForOk, CheckModem, InitModem, InitModemForAnswer}) {
        cable.Carrier('a', "off");
        const HWND other = CreateCommObject(nullptr);
        SetCommPort(other, host::nearPort);
        SetInputEcho(other, 1);
        ASSERT_TRUE(SetPortOpen(other, 1, nullptr));
        destroyedAtTheEcho = other;
        upperRooms.terminalWrite = DestroyAtK;
        const auto answer = host::After(400, [&] { modem.Send("OK"); });
        EXPECT_EQ(function(other), 0);
        EXPECT_FALSE(IsWindow(other));
        upperRooms.terminalWrite = before;
    }
}

TEST_F(ModemAnswer, ObjectMayGoInTheWait) {
    const HWND other = CreateCommObject(nullptr);
    const auto destroy = host::After(100, [&] { DestroyWindow(other); });
    const host::Clock clock;
    EXPECT_EQ(WaitForOk(other), 0);
    EXPECT_LT(clock.Gone(), 2000u);
    EXPECT_FALSE(IsWindow(other));
}

TEST_F(ModemSetUp, CheckSaysAttention) {
    Open();
    const auto answer = Answer("AT\r", "AT\r\r\nOK\r\n");
    EXPECT_EQ(CheckModem(object), 1);
    ExpectHeard("AT\r");
}

TEST_F(ModemSetUp, InitSendsTheSetUpField) {
    OpenWithoutCarrier();
    const auto answer = Answer("&C1\r", "\r\nOK\r\n");
    EXPECT_EQ(InitModem(object), 1);
    ExpectHeard("ATX4E1V1S7=60&C1\r");
}

TEST_F(ModemSetUp, InitFailsOnError) {
    OpenWithoutCarrier();
    const auto answer = Answer("&C1\r", "\r\nERROR\r\n");
    EXPECT_EQ(InitModem(object), 0);
}

TEST_F(ModemSetUp, InitHangsUpFirst) {
    Open();
    ASSERT_TRUE(GetCarrier(object));
    const host::Every drop(5, [&] {
        if (!cable.Signal("a.dtr"))
            cable.Carrier('a', "off");
    });
    const auto answer = Answer("&C1\r", "\r\nOK\r\n");
    EXPECT_EQ(InitModem(object), 1);
    EXPECT_FALSE(GetCarrier(object));
    ExpectHeard("ATX4E1V1S7=60&C1\r"); // DTR was enough
}

TEST_F(ModemSetUp, AnswerFollowsTheSetUp) {
    OpenWithoutCarrier();
    const auto setUp = Answer("&C1\r", "\r\nOK\r\n");
    const auto answer = Answer("ATS0=2\r", "\r\nOK\r\n");
    EXPECT_EQ(InitModemForAnswer(object), 1);
    ExpectHeard("ATX4E1V1S7=60&C1\rATS0=2\r");
}

TEST_F(ModemSetUp, AnswerIsNotSentToAModemThatRefused) {
    OpenWithoutCarrier();
    const auto setUp = Answer("&C1\r", "\r\nERROR\r\n");
    EXPECT_EQ(InitModemForAnswer(object), 0);
    ExpectHeard("ATX4E1V1S7=60&C1\r");
}

TEST_F(ModemSetUp, AnswerFailsByItsOwnAnswer) {
    OpenWithoutCarrier();
    const auto setUp = Answer("&C1\r", "\r\nOK\r\n");
    const auto answer = Answer("ATS0=2\r", "\r\nERROR\r\n");
    EXPECT_EQ(InitModemForAnswer(object), 0);
}

TEST_F(ModemSetUp, ObjectMayGoBeforeTheAnswer) {
    for (int(TARNAPI * function)(HWND) : {CheckModem, InitModem, InitModemForAnswer})
        for (const UINT when : {100u, 500u}) {
            const HWND other = CreateCommObject(nullptr);
            SetModemOptions(other, host::hayesOptions);
            const auto destroy = host::After(when, [&] { DestroyWindow(other); });
            const host::Clock clock;
            EXPECT_EQ(function(other), 0);
            EXPECT_LT(clock.Gone(), 4000u);
            EXPECT_FALSE(IsWindow(other));
        }
}

} // namespace
