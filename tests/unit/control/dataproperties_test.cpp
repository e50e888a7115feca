// Properties that carry the line's data.
#include "controltest.h"

#include "support/container.h"

namespace {

using host::Failure;
using host::FailureOf;

const Failure wouldCross = {static_cast<HRESULT>(0x800A0000), "Cannot write to the communications port."};
const Failure bufferFull = {static_cast<HRESULT>(0x800A0000),
                            "The OutputBuffer is full.  Increase the value of the OutTimeOut property."};

class DataProperties : public host::ControlTest {
  protected:
    void SetUp() override {
        ControlTest::SetUp();
        control->put_AutoProcess(TARN_PROCESS_NONE);
    }

    void OpenWith(const std::string& input) {
        Open();
        ASSERT_TRUE(farEnd.Send(input));
        ASSERT_TRUE(HasInput(static_cast<int>(input.size())));
    }

    _variant_t Input() {
        _variant_t value;
        EXPECT_EQ(control->get_Input(&value), S_OK);
        return value;
    }

    // With its NULs; "(none)" if it is no string.
    static std::string BytesOf(const _variant_t& value) {
        if (V_VT(&value) != VT_BSTR)
            return "(none)";
        const BSTR text = V_BSTR(&value);
        const auto length = static_cast<int>(SysStringLen(text));
        std::string bytes(static_cast<size_t>(length), '\0');
        WideCharToMultiByte(CP_ACP, 0, text, length, bytes.data(), length, nullptr, nullptr);
        return bytes;
    }

    static _variant_t ArrayOf(const std::string& bytes, LONG lower = 0) {
        SAFEARRAYBOUND bound = {static_cast<ULONG>(bytes.size()), lower};
        return Wrapped(SafeArrayCreate(VT_UI1, 1, &bound), bytes);
    }

    static _variant_t Wrapped(SAFEARRAY* array, const std::string& bytes) {
        void* data = nullptr;
        SafeArrayAccessData(array, &data);
        bytes.copy(static_cast<char*>(data), bytes.size());
        SafeArrayUnaccessData(array);
        _variant_t value;
        V_VT(&value) = VT_ARRAY | VT_UI1;
        V_ARRAY(&value) = array;
        return value;
    }

    host::FarEnd farEnd;
};

const host::PlainRow plainRows[] = {
    OWN_ROW(InputLen, 10),
    OWN_ROW(InputMode, 1),
    OWN_ROW(InputMode, 5),
    FLAT_ROW(InputEcho, 0, GetInputEcho),
    FLAT_ROW(Echo, -1, GetEcho),
    FLAT_ROW(CommEcho, -1, GetCommEcho),
    FLAT_ROW(AutoProcess, 2, GetAutoProcess),
};

TEST_F(DataProperties, PlainRows) {
    ExpectPlain(plainRows);
}

TEST_F(DataProperties, NullPointersAreRefused) {
    EXPECT_EQ(control->get_Input(nullptr), E_POINTER);
    EXPECT_EQ(control->get_ComLineInput(nullptr), E_POINTER);
    EXPECT_EQ(control->get_AutoReceive(nullptr), E_POINTER);
    EXPECT_EQ(control->get_AutoZModem(nullptr), E_POINTER);
}

TEST_F(DataProperties, AutoZModemIsNotLogged) {
    LogProperties();
    EXPECT_EQ(Get(&ITarnComm::get_AutoZModem), VARIANT_TRUE);
    EXPECT_EQ(control->put_AutoZModem(VARIANT_FALSE), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_AutoZModem), VARIANT_FALSE);
    EXPECT_EQ(GetAutoZModem(control->CommObject()), 0);
    EXPECT_EQ(LogText().find("AutoZModem"), std::string::npos);
}

struct HalfCase {
    int before;
    bool on;
    int serial;   // after AutoReceive
    int keyboard; // after AutoSend
};

TEST_F(DataProperties, HalvesOfAutomaticProcessing) {
    const HalfCase rows[] = {{0, true, 1, 2},  {1, true, 1, 3},  {2, true, 3, 2},  {3, true, 3, 3},
                             {0, false, 0, 0}, {1, false, 0, 1}, {2, false, 2, 0}, {3, false, 2, 1}};
    const HWND object = control->CommObject();
    for (const HalfCase& row : rows) {
        const VARIANT_BOOL value = row.on ? VARIANT_TRUE : VARIANT_FALSE;
        control->put_AutoProcess(row.before);
        EXPECT_EQ(control->put_AutoSend(value), S_OK);
        EXPECT_EQ(GetAutoProcess(object), row.keyboard) << row.before << row.on;
        EXPECT_EQ(Get(&ITarnComm::get_AutoSend), value);
        EXPECT_EQ(control->Properties().m_nAutoProcess, row.before); // only the comm object's
        SetAutoProcess(object, row.before);
        EXPECT_EQ(control->put_AutoReceive(value), S_OK);
        EXPECT_EQ(GetAutoProcess(object), row.serial) << row.before << row.on;
        EXPECT_EQ(Get(&ITarnComm::get_AutoReceive), value);
        EXPECT_EQ(control->Properties().m_nAutoProcess, value); // the boolean itself; kept so
    }
}

TEST_F(DataProperties, TheGuardAsksTheCachedProcessing) {
    const auto refusal = [](const char* name) {
        return Failure{static_cast<HRESULT>(0x800A0005),
                       std::string("Cannot access the ") + name + " property while AutoReceive is True."};
    };
    const auto input = [&] {
        _variant_t value;
        return FailureOf(control->get_Input(&value));
    };
    const auto line = [&] {
        _bstr_t value;
        return FailureOf(control->get_LineInput(value.GetAddress()));
    };
    const Failure none = {S_OK, ""};
    for (const LONG process : {1, 3}) {
        control->put_AutoProcess(process);
        EXPECT_EQ(input(), refusal("Input"));
        EXPECT_EQ(line(), refusal("LineInput"));
    }
    control->put_AutoProcess(0);
    EXPECT_EQ(input(), none);
    control->put_AutoProcess(2);
    EXPECT_EQ(input(), none);
    control->put_AutoProcess(3);
    control->put_AutoReceive(VARIANT_FALSE);
    EXPECT_EQ(input(), none);
    control->put_AutoReceive(VARIANT_TRUE); // although the object processes its input then; kept so
    EXPECT_EQ(input(), none);
    EXPECT_EQ(line(), none);
}

TEST_F(DataProperties, DefaultsRefuseInput) {
    Microsoft::WRL::ComPtr<CTarnCommCtl> fresh;
    ASSERT_EQ(NewObject(fresh), S_OK);
    _variant_t value;
    EXPECT_EQ(FailureOf(fresh->get_Input(&value)),
              (Failure{static_cast<HRESULT>(0x800A0005),
                       "Cannot access the Input property while AutoReceive is True."}));
    EXPECT_EQ(V_VT(&value), VT_EMPTY);
}

TEST_F(DataProperties, InputTakesWhatIsThere) {
    const std::string bytes("ab\0c\xE4\r\n", 7);
    OpenWith(bytes);
    EXPECT_EQ(BytesOf(Input()), bytes);
    EXPECT_EQ(Get(&ITarnComm::get_InBufferCount), 0);
    EXPECT_EQ(BytesOf(Input()), "");
}

TEST_F(DataProperties, ComInputIsInput) {
    LogProperties();
    OpenWith("abc");
    _variant_t value;
    EXPECT_EQ(control->get_ComInput(&value), S_OK);
    EXPECT_EQ(BytesOf(value), "abc");
    EXPECT_EQ(Logged("TarnComm.Input returns \"abc\""), 1);
}

TEST_F(DataProperties, BinaryInputIsAnArrayOfBytes) {
    LogProperties();
    control->put_InputMode(InputMode_Binary);
    OpenWith(std::string("a\0\xFF", 3));
    const _variant_t value = Input();
    ASSERT_EQ(V_VT(&value), VT_ARRAY | VT_UI1);
    LONG upper = 0;
    SafeArrayGetUBound(V_ARRAY(&value), 1, &upper);
    ASSERT_EQ(upper, 2);
    EXPECT_EQ(std::string(static_cast<char*>(V_ARRAY(&value)->pvData), 3), std::string("a\0\xFF", 3));
    EXPECT_NE(LogText().find("TarnComm.Input returns \"a\" + Chr(0)"), std::string::npos);
    const _variant_t none = Input();
    ASSERT_EQ(V_VT(&none), VT_ARRAY | VT_UI1);
    SafeArrayGetUBound(V_ARRAY(&none), 1, &upper);
    EXPECT_EQ(upper, -1);
}

TEST_F(DataProperties, InputWithoutAByteIsLoggedWhateverTheSwitches) {
    Input();
    EXPECT_EQ(Logged("INPUT (2332): Bytes read = 0, Inbuffercount=0, size=0 "), 1);
}

TEST_F(DataProperties, AnInputLengthWithoutTimeTakesWhatIsThere) {
    OpenWith("abcd");
    control->put_InputLen(10);
    const host::Clock clock;
    EXPECT_EQ(BytesOf(Input()), "abcd");
    EXPECT_LT(clock.Gone(), 500u);
}

TEST_F(DataProperties, InputTakesNoMoreThanItsLength) {
    OpenWith("abcdefghijklmno");
    control->put_InputLen(10);
    EXPECT_EQ(BytesOf(Input()), "abcdefghij");
    EXPECT_EQ(BytesOf(Input()), "klmno");
}

TEST_F(DataProperties, ANegativeInputLengthGivesNothing) {
    OpenWith("abcd");
    control->put_InputLen(-1);
    EXPECT_EQ(BytesOf(Input()), "(none)");
    EXPECT_EQ(Get(&ITarnComm::get_InBufferCount), 4);
}

TEST_F(DataProperties, InputWaitsForItsLength) {
    Open();
    control->put_InputLen(6);
    control->put_InTimeOut(5000);
    const auto first = host::After(50, [&] { farEnd.Send("abc"); });
    const auto second = host::After(150, [&] { farEnd.Send("defgh"); });
    const host::Clock clock;
    EXPECT_EQ(BytesOf(Input()), "abcdef");
    EXPECT_LT(clock.Gone(), 3000u);
}

TEST_F(DataProperties, InputWaitsNoLongerThanItsTime) {
    OpenWith("abc");
    control->put_InputLen(6);
    control->put_InTimeOut(200);
    const host::Clock clock;
    EXPECT_EQ(BytesOf(Input()), "abc");
    EXPECT_GE(clock.Gone(), 190u);
    EXPECT_LT(clock.Gone(), 2000u);
    control->put_InTimeOut(-5);
    EXPECT_EQ(BytesOf(Input()), "");
}

TEST_F(DataProperties, InputEndsThoughThereIsAlwaysAMessageMore) {
    OpenWith("abc");
    control->put_InputLen(6);
    control->put_InTimeOut(200);
    const host::Clock clock;
    const auto restless = host::Restless();
    EXPECT_EQ(BytesOf(Input()), "abc");
    EXPECT_LT(clock.Gone(), 1500u);
}

TEST_F(DataProperties, LineInputReadsALine) {
    LogProperties();
    control->put_InTimeOut(1000);
    OpenWith("one\r\ntwo\r");
    EXPECT_EQ(GetText(&ITarnComm::get_LineInput), "one");
    EXPECT_EQ(GetText(&ITarnComm::get_ComLineInput), "two");
    control->put_InTimeOut(0);
    EXPECT_EQ(GetText(&ITarnComm::get_LineInput), "");
    EXPECT_EQ(Logged("TarnComm.LineInput returns \"one\""), 1);
    EXPECT_EQ(Logged("TarnComm.LineInput returns \"two\""), 1);
}

TEST_F(DataProperties, ALineOf1024CharactersIsWhole) {
    const std::string line(1024, 'x');
    OpenWith(line + "y\r");
    EXPECT_EQ(GetText(&ITarnComm::get_LineInput), line);
    EXPECT_EQ(GetText(&ITarnComm::get_LineInput), "y");
}

TEST_F(DataProperties, OutputSendsStrings) {
    LogProperties();
    Open();
    const std::string bytes("ab\0c\xE4", 5);
    _variant_t value;
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = SysAllocStringLen(L"ab\0c\u00E4", 5);
    EXPECT_EQ(control->put_Output(value), S_OK);
    EXPECT_EQ(farEnd.Read(5), bytes);
    EXPECT_EQ(control->put_Output(_variant_t(12L)), S_OK);
    EXPECT_EQ(farEnd.Read(2), "12");
    EXPECT_EQ(control->put_Output(_variant_t(L"")), S_OK);
    EXPECT_EQ(control->put_Output(_variant_t()), S_OK);
    EXPECT_EQ(Logged("TarnComm.Output = \"12\""), 1);
}

TEST_F(DataProperties, OutputTakesVariablesByReference) {
    Open();
    _variant_t text(L"text");
    _variant_t value;
    V_VT(&value) = VT_VARIANT | VT_BYREF;
    V_VARIANTREF(&value) = &text;
    EXPECT_EQ(control->put_Output(value), S_OK);
    EXPECT_EQ(farEnd.Read(4), "text");
    _variant_t array = ArrayOf("bytes");
    V_VARIANTREF(&value) = &array;
    EXPECT_EQ(control->put_Output(value), S_OK);
    EXPECT_EQ(farEnd.Read(5), "bytes");
}

TEST_F(DataProperties, OutputSendsArrays) {
    LogProperties();
    Open();
    const std::string bytes("a\0\xFF", 3);
    for (const LONG lower : {0, 1, -7, 1000}) {
        EXPECT_EQ(control->put_Output(ArrayOf(bytes, lower)), S_OK) << lower;
        EXPECT_EQ(farEnd.Read(3), bytes) << lower;
    }
    EXPECT_EQ(control->put_Output(ArrayOf("")), S_OK);
    const std::string log = LogText();
    EXPECT_NE(log.find("lbound=-7, ubound=-5, size=3: \"a\" + Chr(0)"), std::string::npos);
    EXPECT_NE(log.find("lbound=0, ubound=-1, size=0: "), std::string::npos);
    EXPECT_NE(log.find("TarnComm.Output = \"a\" + Chr(0)"), std::string::npos);
}

TEST_F(DataProperties, OutputRefusesOtherArrays) {
    Open();
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
    const _variant_t plane = Wrapped(SafeArrayCreate(VT_UI1, 2, bounds), "abcd");
    const Failure refusal = {E_INVALIDARG, "Output only accepts one-dimensional byte arrays or strings."};
    EXPECT_EQ(FailureOf(control->put_Output(plane)), refusal);
    _variant_t unmade;
    V_VT(&unmade) = VT_ARRAY | VT_UI1;
    EXPECT_EQ(FailureOf(control->put_Output(unmade)), refusal);
    _variant_t numbers;
    V_VT(&numbers) = VT_ARRAY | VT_I2;
    SAFEARRAYBOUND bound = {2, 0};
    V_ARRAY(&numbers) = SafeArrayCreate(VT_I2, 1, &bound);
    EXPECT_EQ(control->put_Output(numbers), DISP_E_TYPEMISMATCH);
    host::Pump(100);
    EXPECT_EQ(farEnd.Read(), "");
}

TEST_F(DataProperties, OutputOnAClosedPortIsSilent) {
    LogProperties();
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
    const Failure none = {S_OK, ""};
    EXPECT_EQ(FailureOf(control->put_Output(_variant_t(L"text"))), none);
    EXPECT_EQ(FailureOf(control->put_Output(Wrapped(SafeArrayCreate(VT_UI1, 2, bounds), "abcd"))), none);
    EXPECT_EQ(FailureOf(control->put_OutputLine(_bstr_t(L"text"))), none);
    EXPECT_EQ(LogText().find("Output"), std::string::npos);
    EXPECT_EQ(FailureOf(control->put_OutputModem(_bstr_t(L"AT"))), bufferFull);
}

TEST_F(DataProperties, MoreThanTheQueueHoldsIsAnError) {
    LogProperties();
    Open();
    const std::string much(20000, 'x');
    EXPECT_EQ(FailureOf(control->put_Output(_variant_t(WideOf(much).c_str()))), wouldCross);
    EXPECT_EQ(FailureOf(control->put_Output(ArrayOf(much))), wouldCross);
    EXPECT_EQ(FailureOf(control->put_OutputLine(_bstr_t(WideOf(much).c_str()))), bufferFull);
    EXPECT_EQ(LogText().find("TarnComm.Output"), std::string::npos);
}

TEST_F(DataProperties, OutputLineEndsWithACarriageReturn) {
    LogProperties();
    Open();
    EXPECT_EQ(control->put_OutputLine(_bstr_t(L"text")), S_OK);
    EXPECT_EQ(control->put_OutputLine(nullptr), S_OK);
    EXPECT_EQ(farEnd.Read(6), "text\r\r");
    EXPECT_EQ(Logged("TarnComm.OutputLine = \"text\""), 1);
}

TEST_F(DataProperties, OutputModemKnowsControlCharacters) {
    LogProperties();
    Open();
    EXPECT_EQ(control->put_OutputModem(_bstr_t(L"AT^M")), S_OK);
    EXPECT_EQ(farEnd.Read(3), "AT\r");
    EXPECT_EQ(Logged("TarnComm.OutputModem = \"AT^M\""), 1);
}

TEST_F(DataProperties, PauseIsNotLogged) {
    LogProperties();
    const host::Clock clock;
    EXPECT_EQ(control->put_Pause(60), S_OK);
    EXPECT_GE(clock.Gone(), 50u);
    EXPECT_EQ(LogText().find("Pause"), std::string::npos);
}

// ---- Properties that wait, and what hosts do meanwhile ----

struct Blocking {
    const char* name;
    HRESULT (*call)(CTarnCommCtl& control);
};

HRESULT AskText(CTarnCommCtl& control) {
    _variant_t value;
    return control.get_Input(&value);
}

HRESULT AskLine(CTarnCommCtl& control) {
    _bstr_t value;
    return control.get_LineInput(value.GetAddress());
}

HRESULT TalkToModem(CTarnCommCtl& control) {
    return control.put_OutputModem(_bstr_t(L"~~"));
}

HRESULT SetUpModem(CTarnCommCtl& control) {
    VARIANT_BOOL value;
    return control.get_InitModem(&value);
}

HRESULT SetUpModemForAnswer(CTarnCommCtl& control) {
    VARIANT_BOOL value;
    return control.get_InitModemForAnswer(&value);
}

HRESULT SendLine(CTarnCommCtl& control) {
    return control.put_OutputLine(_bstr_t(L""));
}

const Blocking waits[] = {{"Input", AskText},
                          {"LineInput", AskLine},
                          {"OutputModem", TalkToModem},
                          {"InitModem", SetUpModem},
                          {"InitModemForAnswer", SetUpModemForAnswer}};

class BlockingProperties : public DataProperties {
  protected:
    void OpenForWait() {
        Open();
        control->put_AutoProcess(TARN_PROCESS_NONE);
        control->put_InputLen(10);
        control->put_InTimeOut(10000);
        control->put_ShutDown(VARIANT_FALSE);
    }
    // The wait's own end.
    void StopWait() { SetShutDown(control->CommObject(), 1); }
};

TEST_F(BlockingProperties, ASecondOneIsRefusedByBothNames) {
    OpenForWait();
    for (const Blocking& outer : waits) {
        OpenForWait();
        std::vector<Failure> refusals;
        VARIANT_BOOL isBusy = VARIANT_FALSE;
        const auto meanwhile = host::After(50, [&] {
            for (const Blocking& inner : waits)
                refusals.push_back(FailureOf(inner.call(*control.Get())));
            refusals.push_back(FailureOf(SendLine(*control.Get())));
            control->get_Busy(&isBusy);
            StopWait();
        });
        outer.call(*control.Get());
        ASSERT_EQ(refusals.size(), std::size(waits) + 1) << outer.name;
        for (size_t i = 0; i < refusals.size(); ++i) {
            const char* inner = i < std::size(waits) ? waits[i].name : "OutputLine";
            const Failure refusal = {static_cast<HRESULT>(0x800A0005),
                                     std::string("Cannot access the ") + inner + " property until the " +
                                         outer.name + " property has returned."};
            EXPECT_EQ(refusals[i], refusal);
        }
        EXPECT_EQ(isBusy, VARIANT_TRUE);
        EXPECT_EQ(Get(&ITarnComm::get_Busy), VARIANT_FALSE);
    }
}

// Whoever reads asks for automatic processing first, whoever talks to the modem for a property under way.
TEST_F(BlockingProperties, EachHasItsFirstRefusal) {
    OpenForWait();
    std::vector<Failure> refusals;
    const auto meanwhile = host::After(50, [&] {
        control->put_AutoProcess(TARN_PROCESS_BOTH);
        for (const Blocking& inner : waits)
            refusals.push_back(FailureOf(inner.call(*control.Get())));
        StopWait();
    });
    AskText(*control.Get());
    ASSERT_EQ(refusals.size(), std::size(waits));
    for (size_t i = 0; i < refusals.size(); ++i) {
        const bool reads = waits[i].call == AskText || waits[i].call == AskLine;
        const std::string why =
            reads ? "while AutoReceive is True." : "until the Input property has returned.";
        EXPECT_EQ(refusals[i],
                  (Failure{static_cast<HRESULT>(0x800A0005),
                           std::string("Cannot access the ") + waits[i].name + " property " + why}));
    }
}

TEST_F(BlockingProperties, AReleasedControlLivesUntilTheEndOfItsWait) {
    for (const Blocking& wait : waits) {
        SetUp();
        OpenForWait();
        const HWND object = control->CommObject();
        CTarnCommCtl* const borrowed = control.Get();
        bool aliveAfterRelease = false;
        const auto release = host::After(50, [&] {
            StopWait();
            control.Reset();
            aliveAfterRelease = IsWindow(object) != 0;
        });
        wait.call(*borrowed);
        EXPECT_TRUE(aliveAfterRelease) << wait.name;
        EXPECT_FALSE(IsWindow(object)) << wait.name;
    }
}

TEST_F(BlockingProperties, AHostMayCloseTheControlMeanwhile) {
    for (const Blocking& wait : waits) {
        SetUp();
        host::Container form;
        ASSERT_EQ(form.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
        ASSERT_EQ(form.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
        OpenForWait();
        const HWND object = control->CommObject();
        const auto close = host::After(50, [&] { form.Drop(); });
        const host::Clock clock;
        wait.call(*control.Get());
        EXPECT_LT(clock.Gone(), 5000u) << wait.name;
        EXPECT_FALSE(IsWindow(object)) << wait.name;
        EXPECT_EQ(Get(&ITarnComm::get_Busy), VARIANT_FALSE) << wait.name;
    }
}

TEST_F(BlockingProperties, AHostMayCloseAndReleaseTheControlMeanwhile) {
    for (const Blocking& wait : waits) {
        SetUp();
        host::Container form;
        ASSERT_EQ(form.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
        ASSERT_EQ(form.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
        OpenForWait();
        const HWND object = control->CommObject();
        CTarnCommCtl* const borrowed = control.Get();
        const auto close = host::After(50, [&] {
            form.Drop();
            control.Reset();
        });
        wait.call(*borrowed);
        EXPECT_FALSE(IsWindow(object)) << wait.name;
    }
}

TEST_F(BlockingProperties, InputIsEmptyWhenTheWindowWentMeanwhile) {
    host::Container form;
    ASSERT_EQ(form.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
    ASSERT_EQ(form.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    OpenForWait();
    const auto close = host::After(50, [&] { form.Drop(); });
    const host::Clock clock;
    EXPECT_EQ(BytesOf(Input()), "(none)");
    EXPECT_LT(clock.Gone(), 3000u);
}

TEST_F(BlockingProperties, AQuitMessageIsLeftToTheHost) {
    for (const Blocking& wait : waits) {
        SetUp();
        OpenForWait();
        control->put_InTimeOut(300);
        const bool isLong = wait.call == SetUpModem || wait.call == SetUpModemForAnswer;
        const auto quit = host::After(50, [&] {
            PostQuitMessage(7);
            if (isLong)
                StopWait(); // no timer comes before the message that nobody takes
        });
        wait.call(*control.Get());
        MSG message = {};
        bool found = false;
        while (!found && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            found = message.message == WM_QUIT;
        EXPECT_TRUE(found) << wait.name;
        EXPECT_EQ(message.wParam, 7u) << wait.name;
    }
}

TEST_F(BlockingProperties, OtherPropertiesStayUsable) {
    OpenForWait();
    LONG count = -1;
    HRESULT sent = E_FAIL;
    const auto meanwhile = host::After(50, [&] {
        control->get_InBufferCount(&count);
        sent = control->put_Output(_variant_t(L"hello"));
        farEnd.Send("0123456789");
    });
    EXPECT_EQ(BytesOf(Input()), "0123456789");
    EXPECT_EQ(count, 0);
    EXPECT_EQ(sent, S_OK);
    EXPECT_EQ(farEnd.Read(5), "hello");
}

TEST_F(BlockingProperties, TheWaitForInputLeavesTheProcessorAlone) {
    OpenForWait();
    control->put_InTimeOut(400);
    FILETIME made, ended, kernelBefore, userBefore, kernelAfter, userAfter;
    const auto milliseconds = [](const FILETIME& time) { return time.dwLowDateTime / 10000; };
    GetThreadTimes(GetCurrentThread(), &made, &ended, &kernelBefore, &userBefore);
    Input();
    GetThreadTimes(GetCurrentThread(), &made, &ended, &kernelAfter, &userAfter);
    EXPECT_LT(milliseconds(userAfter) - milliseconds(userBefore) + milliseconds(kernelAfter) -
                  milliseconds(kernelBefore),
              200u);
}

} // namespace
