// Sockets come before the platform's header.
#include "support/line.h"

#include "loggedcontrol.h"

using namespace controltest;

namespace {

class Lookup : public host::LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        ASSERT_TRUE(farEnd.IsOpen());
        ASSERT_EQ(control.Open(host::nearPort), "");
        SetAutoProcess(control.Object(), TARN_PROCESS_NONE);
    }

    LONG LookUp() {
        LONG index = -2;
        EXPECT_EQ(control->get_LookUp(&index), S_OK);
        return index;
    }
    std::string Input() { return control.Text(&ITarnComm::get_LookUpInput); }

    Control control;
    host::FarEnd farEnd;
};

} // namespace

using LookUpRows = LoggedControl;

TEST_F(LookUpRows, PlainRows) {
    CheckRow(control, TARN_ROW_ALONE(LookUpInputLen, 20));
    CheckRow(control, TARN_ROW(LookUpTimeOut, 1234, GetLookUpTimeOut));
}

TEST_F(LookUpRows, Defaults) {
    LONG value = -1;
    control->get_LookUpTimeOut(&value);
    EXPECT_EQ(value, 10000);
    control->get_LookUpInputLen(&value);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(control.Text(&ITarnComm::get_LookUpSeparator), "|");
    EXPECT_EQ(control.Text(&ITarnComm::get_LookUpText), "");
    EXPECT_EQ(control.Text(&ITarnComm::get_LookUpInput), "");
}

TEST_F(LookUpRows, SeparatorIsTheFirstCharacter) {
    const std::string log =
        LogOf([&] { EXPECT_EQ(control.Put(&ITarnComm::put_LookUpSeparator, L";,"), S_OK); });
    EXPECT_EQ(log, Line("Comm.LookUpSeparator = \";,\""));
    EXPECT_EQ(control.Text(&ITarnComm::get_LookUpSeparator), ";");
    EXPECT_EQ(GetLookUpSeparator(control.Object()), ';');
}

TEST_F(LookUpRows, EmptySeparatorIsByteZero) {
    control.Put(&ITarnComm::put_LookUpSeparator, L"");
    EXPECT_EQ(control->Properties().m_chLookUpSeparator, '\0');
    EXPECT_EQ(control.Text(&ITarnComm::get_LookUpSeparator), std::string(1, '\0')) << "one character as ever";
}

TEST_F(LookUpRows, TextIsKeptAndLogged) {
    EXPECT_EQ(LogOf([&] { control.Put(&ITarnComm::put_LookUpText, L"login:|password:"); }),
              Line("Comm.LookUpText = \"login:|password:\""));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_LookUpText), "login:|password:"); }),
              Line("Comm.LookUpText returns \"login:|password:\""));
}

TEST_F(LookUpRows, NullPointersAreRefused) {
    EXPECT_EQ(control->get_LookUp(nullptr), E_POINTER);
    EXPECT_EQ(control->get_LookUpInput(nullptr), E_POINTER);
    EXPECT_EQ(control->get_LookUpInputLen(nullptr), E_POINTER);
    EXPECT_EQ(control->get_LookUpSeparator(nullptr), E_POINTER);
    EXPECT_EQ(control->get_LookUpText(nullptr), E_POINTER);
    EXPECT_EQ(control->get_LookUpTimeOut(nullptr), E_POINTER);
}

TEST_F(LookUpRows, OutsideOfItsEventTheAutomaticKindHasNoMatch) {
    LONG index = 5;
    const std::string log = LogOf([&] { control->get_LookUp(&index); });
    EXPECT_EQ(index, -1);
    EXPECT_EQ(log, Line("Comm.LookUp returns -1"));
}

TEST_F(Lookup, GivesTheIndexOfWhatCame) {
    control.Put(&ITarnComm::put_LookUpText, L"login:|password:");
    farEnd.Send("Your PASSWORD: ");
    EXPECT_EQ(LookUp(), 1);
    EXPECT_EQ(Input(), ""); // not asked for
}

TEST_F(Lookup, AnotherSeparatorParts) {
    control.Put(&ITarnComm::put_LookUpSeparator, L";");
    control.Put(&ITarnComm::put_LookUpText, L"a|b;c|d");
    farEnd.Send("a b c|d");
    EXPECT_EQ(LookUp(), 1);
}

TEST_F(Lookup, InputIsWhatCameBeforeTheMatch) {
    control->put_LookUpInputLen(100);
    control.Put(&ITarnComm::put_LookUpText, L"login:|password:");
    farEnd.Send("Welcome\r\nLogin: ");
    EXPECT_EQ(LookUp(), 0);
    EXPECT_EQ(Input(), "Welcome\r\n");
}

TEST_F(Lookup, InputMayHoldNuls) {
    control->put_LookUpInputLen(100);
    control.Put(&ITarnComm::put_LookUpText, L"end");
    farEnd.Send(std::string("a\0b\0end", 7));
    EXPECT_EQ(LookUp(), 0);
    EXPECT_EQ(Input(), std::string("a\0b\0", 4));
}

TEST_F(Lookup, MatchThatJustFillsTheInputIsLeftOut) {
    control->put_LookUpInputLen(6);
    control.Put(&ITarnComm::put_LookUpText, L"end");
    farEnd.Send("abcend");
    EXPECT_EQ(LookUp(), 0);
    EXPECT_EQ(Input(), "abc");
}

TEST_F(Lookup, MatchWhoseLastByteFindsNoRoomIsLeftOut) {
    control->put_LookUpInputLen(5);
    control.Put(&ITarnComm::put_LookUpText, L"end");
    farEnd.Send("abcend");
    EXPECT_EQ(LookUp(), 0);
    EXPECT_EQ(Input(), "abc");
}

TEST_F(Lookup, FullInputEndsTheWait) {
    control->put_LookUpInputLen(4);
    control.Put(&ITarnComm::put_LookUpText, L"end");
    farEnd.Send("abcdefgh");
    EXPECT_EQ(LookUp(), -1);
    EXPECT_EQ(Input(), "abcd");
}

TEST_F(Lookup, TimeEndsTheWaitWithWhatCame) {
    control->put_LookUpInputLen(50);
    control->put_LookUpTimeOut(200);
    control.Put(&ITarnComm::put_LookUpText, L"end");
    farEnd.Send("abc");
    EXPECT_EQ(LookUp(), -1);
    EXPECT_EQ(Input(), "abc");
}

TEST_F(Lookup, LengthThatNoMemoryHoldsGivesNoMatch) {
    control.Put(&ITarnComm::put_LookUpText, L"end");
    farEnd.Send("abcend");
    for (const LONG length : {-1L, static_cast<LONG>(MAXLONG)}) {
        control->Properties().m_cbLookUpInputLen = length;
        EXPECT_EQ(LookUp(), -1);
    }
}

TEST_F(Lookup, NoTextsIsNoWait) {
    EXPECT_EQ(LookUp(), -1);
}

TEST_F(Lookup, SecondOneMeanwhileIsRefused) {
    control->put_LookUpTimeOut(300);
    control.Put(&ITarnComm::put_LookUpText, L"end");
    HRESULT result = S_OK;
    LONG second = 7;
    std::string error;
    const auto inside = host::After(20, [&] {
        result = control->get_LookUp(&second);
        error = ErrorText();
    });
    EXPECT_EQ(LookUp(), -1);
    EXPECT_EQ(result, InvalidCall);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(error, "Cannot access the LookUp property until the LookUp property has returned.");
    farEnd.Send("end");
    EXPECT_EQ(LookUp(), 0); // the guard is free again
}

TEST_F(Lookup, ControlMayBeReleasedMeanwhile) {
    control->put_LookUpInputLen(50);
    control->put_LookUpTimeOut(300);
    control.Put(&ITarnComm::put_LookUpText, L"end");
    farEnd.Send("abc");
    CTarnCommCtl* bare = control.Pointer().Get();
    const auto inside = host::After(20, [&] {
        control.Container().Drop();
        control.Pointer().Reset();
    });
    LONG index = 3;
    EXPECT_EQ(bare->get_LookUp(&index), S_OK);
    EXPECT_EQ(index, -1);
}

TEST_F(Lookup, InsideOfItsEventTheAutomaticKindTellsTheMatch) {
    std::vector<LONG> indexes;
    std::vector<std::string> inputs;
    constexpr DISPID lookUpEvent = 29;
    host::EventSink sink(DIID__ITarnCommEvents, [&](DISPID id, DISPPARAMS&) {
        if (id != lookUpEvent)
            return;
        indexes.push_back(LookUp());
        inputs.push_back(Input());
    });
    ComPtr<IConnectionPoint> point;
    DWORD cookie = 0;
    control->FindConnectionPoint(DIID__ITarnCommEvents, point.GetAddressOf());
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    SetAutoProcess(control.Object(), TARN_PROCESS_SERIAL);
    control->put_LookUpInputLen(100);
    control.Put(&ITarnComm::put_LookUpText, L"one|two");
    farEnd.Send("text two");
    EXPECT_TRUE(host::PumpUntil([&] { return !indexes.empty(); }));
    EXPECT_EQ(indexes, std::vector<LONG>{1});
    EXPECT_EQ(inputs, std::vector<std::string>{"text "});
    EXPECT_EQ(LookUp(), -1);
    point->Unadvise(cookie);
}
