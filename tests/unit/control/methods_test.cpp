// Sockets come before the platform's header.
#include "support/line.h"

#include "loggedcontrol.h"

using namespace controltest;

namespace {

class HostMethods : public host::LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        ASSERT_TRUE(person.IsOpen());
        ASSERT_EQ(control.Open(host::nearPort), "");
        SetAutoProcess(control.Object(), TARN_PROCESS_NONE);
    }

    std::string Input(short maximum) {
        BSTR text = nullptr;
        EXPECT_EQ(control->HostInput(maximum, &text), S_OK);
        return Taken(text);
    }
    std::string Password(short maximum) {
        BSTR text = nullptr;
        EXPECT_EQ(control->HostInputPassword(maximum, &text), S_OK);
        return Taken(text);
    }
    // What came to the person's screen: so many bytes, and what else there is.
    std::string Screen(size_t length) {
        std::string bytes = person.Read(length);
        bytes += person.Read();
        return bytes;
    }
    // What it gets of a call.
    std::string ScreenGets(const std::function<void()>& call, size_t length) {
        call();
        return Screen(length);
    }

    Control control;
    host::FarEnd person;
};

std::string At(Control& control, int column, int row, int length) {
    BSTR text = nullptr;
    EXPECT_EQ(control->ContentsAt(static_cast<short>(column), static_cast<short>(row),
                                  static_cast<short>(length), &text),
              S_OK);
    return Taken(text);
}

PortType TypeOf(Control& control, const wchar_t* name) {
    const BSTR given = SysAllocString(name);
    PortType type = PortType_Modem;
    EXPECT_EQ(control->GetPortType(given, &type), S_OK);
    SysFreeString(given);
    return type;
}

} // namespace

using Methods = LoggedControl;

TEST_F(Methods, ContentsAtAPlace) {
    control.Put(&ITarnComm::put_Contents, L"The quick brown fox\r\nsecond row");
    EXPECT_EQ(At(control, 4, 0, 5), "quick");
    EXPECT_EQ(At(control, 0, 1, 6), "second");
    EXPECT_EQ(At(control, 79, 0, 7), " second"); // rows follow each other
    EXPECT_EQ(At(control, 80, 0, 6), "second");
    EXPECT_EQ(At(control, 0, 0, 0), "");
    EXPECT_EQ(At(control, 0, 0, -1), "");
}

TEST_F(Methods, ContentsAtStayInTheScreen) {
    control->put_Rows(2);
    control->put_Columns(10);
    control.Put(&ITarnComm::put_Contents, L"0123456789abcdefghi");
    EXPECT_EQ(At(control, 5, 1, 5), "fghi ");
    EXPECT_EQ(At(control, 5, 1, 100), "fghi ");
    EXPECT_EQ(At(control, 9, 1, 32767), " ");
    EXPECT_EQ(At(control, 10, 1, 1), "");
    EXPECT_EQ(At(control, 0, 2, 5), "");
    EXPECT_EQ(At(control, 0, -1, 5), "");
    EXPECT_EQ(At(control, -1, 0, 5), "");
    EXPECT_EQ(At(control, 32767, 32767, 32767), "");
    EXPECT_EQ(At(control, -32768, -32768, 32767), "");
    EXPECT_EQ(At(control, 0, 0, 32767).size(), 20u);
    EXPECT_EQ(control->ContentsAt(0, 0, 1, nullptr), E_POINTER);
}

TEST_F(Methods, PortTypes) {
    EXPECT_EQ(TypeOf(control, L"COM5"), PortType_Serial);
    EXPECT_EQ(TypeOf(control, L"no such port"), PortType_Unknown);
    EXPECT_EQ(TypeOf(control, L""), PortType_Unknown);
    EXPECT_EQ(TypeOf(control, nullptr), PortType_Unknown);
    EXPECT_EQ(control->GetPortType(nullptr, nullptr), E_POINTER);
}

TEST_F(Methods, NumberWithoutALineIsEmpty) {
    const BSTR number = SysAllocString(L"555 1234");
    for (const char* port : {"", "COM5"}) {
        lstrcpynA(control->Properties().m_szPort, port, PortNameSize);
        BSTR text = nullptr;
        EXPECT_EQ(control->TranslatePhoneNumber(number, &text), S_OK);
        EXPECT_EQ(Taken(text), "");
    }
    EXPECT_EQ(control->TranslatePhoneNumber(number, nullptr), E_POINTER);
    SysFreeString(number);
}

TEST_F(Methods, WithoutATransferItsEndIsASuccess) {
    VARIANT_BOOL succeeded = VARIANT_FALSE;
    EXPECT_EQ(control->WaitUntilEndOfTransfer(&succeeded), S_OK);
    EXPECT_EQ(succeeded, VARIANT_TRUE);
    EXPECT_EQ(control->WaitUntilEndOfTransfer(nullptr), E_POINTER);
}

TEST_F(Methods, AreSilentOnAClosedPort) {
    EXPECT_EQ(control->put_AllowSending(VARIANT_TRUE), S_OK);
    EXPECT_EQ(control->HostCLS(), S_OK);
    EXPECT_EQ(control->HostLocate(1, 1), S_OK);
    EXPECT_EQ(control->HostColor(White, Blue), S_OK);
    short key = 5;
    EXPECT_EQ(control->HostInputKey(&key), S_OK);
    EXPECT_EQ(key, 0);
    BSTR text = nullptr;
    EXPECT_EQ(control->HostInput(10, &text), S_OK);
    EXPECT_EQ(Taken(text), "");
}

TEST_F(Methods, HostPrintTellsThatThePortIsClosed) {
    const BSTR text = SysAllocString(L"text");
    EXPECT_EQ(control->HostPrint(text), GeneralFailure);
    EXPECT_EQ(ErrorText(), "Cannot write to the communications port.");
    SysFreeString(text);
}

TEST_F(Methods, NullPointersAreRefused) {
    EXPECT_EQ(control->HostInputKey(nullptr), E_POINTER);
    EXPECT_EQ(control->HostInput(5, nullptr), E_POINTER);
    EXPECT_EQ(control->HostInputPassword(5, nullptr), E_POINTER);
}

TEST_F(HostMethods, KeyIsTheNextByte) {
    person.Send("\xE9"
                "b");
    short key = 0;
    EXPECT_EQ(control->HostInputKey(&key), S_OK);
    EXPECT_EQ(key, 0xE9);
    control->HostInputKey(&key);
    EXPECT_EQ(key, 'b');
}

TEST_F(HostMethods, NoKeyIsZero) {
    SetShutDown(control.Object(), 1); // ends the wait
    short key = 5;
    EXPECT_EQ(control->HostInputKey(&key), S_OK);
    EXPECT_EQ(key, 0);
}

TEST_F(HostMethods, InputIsEchoedUpToEnter) {
    person.Send("name\rrest\r");
    EXPECT_EQ(Input(20), "name");
    EXPECT_EQ(Screen(4), "name");
    EXPECT_EQ(Input(3), "res"); // the fourth is dropped
}

TEST_F(HostMethods, PasswordShowsStars) {
    person.Send("abc\r");
    EXPECT_EQ(Password(20), "abc");
    EXPECT_EQ(Screen(3), "***");
}

TEST_F(HostMethods, BackspaceRubsOutAndRingsAtTheStart) {
    person.Send("\bab\bc\r");
    EXPECT_EQ(Input(20), "ac");
    EXPECT_EQ(Screen(7), "\aab\b \bc");
}

TEST_F(HostMethods, TextOverTheLimitIsDroppedInSilence) {
    person.Send("abcdef\b\bz\r");
    EXPECT_EQ(Input(3), "az");
    EXPECT_EQ(Screen(10), "abc\b \b\b \bz");
}

TEST_F(HostMethods, LimitOfNothingOnlyRings) {
    person.Send("x\by\r");
    EXPECT_EQ(Input(0), "");
    EXPECT_EQ(Screen(1), "\a");
    person.Send("x\r");
    EXPECT_EQ(Input(-5), "");
}

TEST_F(HostMethods, InputEndsWithTheWait) {
    person.Send("ab");
    const auto inside = host::After(300, [&] { SetShutDown(control.Object(), 1); });
    EXPECT_EQ(Input(20), "ab");
}

TEST_F(HostMethods, InputEndsWithThePort) {
    person.Send("ab");
    const auto inside = host::After(300, [&] { SetPortOpen(control.Object(), 0, nullptr); });
    const DWORD start = GetTickCount();
    EXPECT_EQ(Input(20), "ab");
    EXPECT_LT(GetTickCount() - start, 10000u);
}

TEST_F(HostMethods, InputInsideOfAnotherWaitEnds) {
    std::string got = "none";
    const auto inside = host::After(20, [&] { got = Input(20); });
    person.Send("ab\r");
    ComPause(control.Object(), 400);
    EXPECT_EQ(got, "");
}

// Its comm object goes, too.
TEST_F(HostMethods, ControlMayBeReleasedMeanwhile) {
    CTarnCommCtl* bare = control.Pointer().Get();
    const auto inside = host::After(200, [&] {
        control.Container().Drop();
        control.Pointer().Reset();
        DestroyWindow(bare->CommObject());
    });
    person.Send("ab");
    BSTR text = nullptr;
    EXPECT_EQ(bare->HostInput(20, &text), S_OK);
    EXPECT_EQ(Taken(text), "ab");
}

TEST_F(HostMethods, PrintSendsTheText) {
    EXPECT_EQ(ScreenGets(
                  [&] {
                      const BSTR text = SysAllocString(L"Hello\r\n");
                      EXPECT_EQ(control->HostPrint(text), S_OK);
                      SysFreeString(text);
                  },
                  7),
              "Hello\r\n");
}

TEST_F(HostMethods, PrintSendsNulsToo) {
    const BSTR text = SysAllocStringLen(L"a\0b", 3);
    EXPECT_EQ(control->HostPrint(text), S_OK);
    SysFreeString(text);
    EXPECT_EQ(person.Read(3), std::string("a\0b", 3));
}

TEST_F(HostMethods, CodesForThePersonsScreen) {
    EXPECT_EQ(ScreenGets([&] { control->HostLocate(3, 40); }, 7), "\x1b[3;40H");
    EXPECT_EQ(ScreenGets([&] { control->HostCLS(); }, 4), "\x1b[2J");
    EXPECT_EQ(ScreenGets([&] { control->HostColor(Yellow, Blue); }, 12), "\x1b[0;33;44;1m");
    EXPECT_EQ(ScreenGets([&] { control->HostColor(LightGray, Black); }, 10), "\x1b[0;37;40m");
    EXPECT_EQ(ScreenGets([&] { control->HostColor(Red, LightGreen); }, 10), "\x1b[0;31;42m");
}

TEST_F(HostMethods, ColorsAreThoseOfTheOtherTerminal) {
    const int expected[] = {30, 34, 32, 36, 31, 35, 33, 37};
    for (int color = 0; color < 8; ++color) {
        const std::string code = "\x1b[0;" + std::to_string(expected[color]) + ";" +
                                 std::to_string(expected[7 - color] + 10) + "m";
        EXPECT_EQ(ScreenGets(
                      [&] {
                          control->HostColor(static_cast<TerminalColor>(color),
                                             static_cast<TerminalColor>(7 - color));
                      },
                      code.size()),
                  code);
    }
}

TEST_F(HostMethods, SendingWaitsForItsPermission) {
    EXPECT_EQ(control->put_AllowSending(VARIANT_FALSE), S_OK);
    Output(control.Object(), "held", 4);
    host::Pump(300);
    EXPECT_EQ(person.Read(), "");
    EXPECT_EQ(control->put_AllowSending(VARIANT_TRUE), S_OK);
    EXPECT_EQ(person.Read(4), "held");
}
