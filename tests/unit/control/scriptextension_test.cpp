// The script extension: a control without a window at one end of the cable, a scripted end at the other.
#include "com/unknown.h"
#include "control/scriptextension.h"
#include "control/TarnCommCtl.h"
#include "support/every.h"
#include "support/line.h"

#include <comdef.h>

using namespace host;

namespace {

const _variant_t missing(DISP_E_PARAMNOTFOUND, VT_ERROR);

class ScriptExtensionTest : public LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        CoInitialize(nullptr);
        MakeControl();
    }
    void TearDown() override {
        script.Reset();
        control.Reset();
        CoUninitialize();
    }

    void MakeControl() {
        ASSERT_EQ(NewObject(control), S_OK);
        ASSERT_EQ(control->get_ScriptExtension(&script), S_OK);
    }

    void Open() {
        control->put_AutoProcess(0);
        control->put_CommPort(_variant_t(L"COM5"));
        control->put_Settings(_bstr_t(L"115200,n,8,1"));
        control->put_PortOpen(VARIANT_TRUE);
        VARIANT_BOOL open = VARIANT_FALSE;
        control->get_PortOpen(&open);
        ASSERT_EQ(open, VARIANT_TRUE);
    }

    void MakeControlThatWaits() {
        ASSERT_NO_FATAL_FAILURE(MakeControl());
        Open();
        control->put_InTimeOut(30000);
    }

    std::wstring WaitFor(std::vector<_variant_t> texts) {
        texts.resize(10, missing);
        BSTR came = nullptr;
        EXPECT_EQ(script->WaitFor(texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6],
                                  texts[7], texts[8], texts[9], &came),
                  S_OK);
        wasNull = came == nullptr;
        const _bstr_t owned(came, false);
        return came ? std::wstring(came) : L"";
    }

    std::wstring Receive(const _variant_t& count = missing) {
        BSTR came = nullptr;
        EXPECT_EQ(script->Receive(count, &came), S_OK);
        const _bstr_t owned(came, false);
        return came ? std::wstring(came, SysStringLen(came)) : L"";
    }

    bool InputCountReaches(LONG wanted) {
        return PumpUntil([&] {
            LONG count = 0;
            control->get_InBufferCount(&count);
            return count >= wanted;
        });
    }

    ComPtr<CTarnCommCtl> control;
    ComPtr<IScriptExtension> script;
    FarEnd far_{"COM6"};
    bool wasNull = false;
};

} // namespace

TEST_F(ScriptExtensionTest, TheTimeOutIsAPlainNumber) {
    LONG value = 0;
    EXPECT_EQ(script->get_WaitForTimeOut(&value), S_OK);
    EXPECT_EQ(value, 30000);
    EXPECT_EQ(script->put_WaitForTimeOut(-5), S_OK);
    EXPECT_EQ(script->get_WaitForTimeOut(&value), S_OK);
    EXPECT_EQ(value, -5);
    EXPECT_EQ(script->get_WaitForTimeOut(nullptr), E_POINTER);
}

TEST_F(ScriptExtensionTest, HasAPointForItsEmptyEvents) {
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(script.As(&points), S_OK);
    EXPECT_EQ(points->FindConnectionPoint(DIID__IScriptExtensionEvents, &point), S_OK);
    EXPECT_EQ(points->FindConnectionPoint(DIID__ITarnCommEvents, &point), CONNECT_E_NOCONNECTION);
}

TEST_F(ScriptExtensionTest, AnErrorThatIsNoMissingArgumentIsNoText) {
    const _variant_t error(E_FAIL, VT_ERROR);
    BSTR came = nullptr;
    EXPECT_EQ(script->WaitFor(_variant_t(L"x"), error, missing, missing, missing, missing, missing, missing,
                              missing, missing, &came),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(came, nullptr);
}

TEST_F(ScriptExtensionTest, WaitForGivesTheTextThatCame) {
    Open();
    ASSERT_TRUE(far_.Send("so: second!"));
    EXPECT_EQ(WaitFor({L"first", L"second"}), L"second");
    LONG timeOut = 0;
    EXPECT_EQ(GetLookUpTimeOut(control->CommObject()), 30000);
    EXPECT_EQ(control->get_LookUpTimeOut(&timeOut), S_OK);
    EXPECT_EQ(timeOut, 10000) << "the control's own stays";
}

TEST_F(ScriptExtensionTest, WaitForTakesAnyOfTenTexts) {
    Open();
    std::vector<_variant_t> texts;
    for (int number = 0; number < 10; ++number)
        texts.emplace_back((L"text" + std::to_wstring(number)).c_str());
    ASSERT_TRUE(far_.Send("text9"));
    EXPECT_EQ(WaitFor(texts), L"text9");
}

TEST_F(ScriptExtensionTest, WaitForChangesNumbersAndFollowsReferences) {
    Open();
    _variant_t number(42L);
    _variant_t reference;
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &number;
    ASSERT_TRUE(far_.Send("it is 42"));
    BSTR came = nullptr;
    const _variant_t empty;
    EXPECT_EQ(script->WaitFor(_variant_t(7L), empty, reference, missing, missing, missing, missing, missing,
                              missing, missing, &came),
              S_OK);
    EXPECT_STREQ(_bstr_t(came, false), L"42") << "the empty one is skipped";
}

TEST_F(ScriptExtensionTest, WaitForGivesNothingWhenTheTimeIsOver) {
    Open();
    script->put_WaitForTimeOut(50);
    EXPECT_EQ(WaitFor({L"never"}), L"");
    EXPECT_TRUE(wasNull);
}

TEST_F(ScriptExtensionTest, ABarInATextSeparates) {
    Open();
    ASSERT_TRUE(far_.Send("two"));
    EXPECT_EQ(WaitFor({L"one|two|three"}), L"two");
}

// 1022 bytes and two zeros: what doesn't fit is cut, also in the midst of a text.
TEST_F(ScriptExtensionTest, WaitForCutsWhatDoesNotFit) {
    Open();
    const std::wstring filler(1000, L'x');
    ASSERT_TRUE(far_.Send("abcdefghijklmnopqrstu"));
    EXPECT_EQ(WaitFor({filler.c_str(), L"abcdefghijklmnopqrstuvwxyz", L"lost"}), L"abcdefghijklmnopqrstu");
    script->put_WaitForTimeOut(50);
    ASSERT_TRUE(far_.Send("lost"));
    EXPECT_EQ(WaitFor({filler.c_str(), L"abcdefghijklmnopqrstuvwxyz", L"lost"}), L"");
    const std::wstring whole(5000, L'y');
    EXPECT_EQ(WaitFor({whole.c_str(), whole.c_str()}), L"");
}

TEST_F(ScriptExtensionTest, WaitForRefusesWhatIsNoText) {
    Open();
    _variant_t object;
    object.vt = VT_UNKNOWN;
    object.punkVal = nullptr;
    BSTR came = nullptr;
    EXPECT_EQ(script->WaitFor(object, missing, missing, missing, missing, missing, missing, missing, missing,
                              missing, &came),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(came, nullptr);
}

TEST_F(ScriptExtensionTest, HangUpGivesTrueOnAClosedPort) {
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(script->HangUp(&done), S_OK);
    EXPECT_EQ(done, VARIANT_TRUE);
    EXPECT_EQ(script->HangUp(nullptr), E_POINTER);
}

TEST_F(ScriptExtensionTest, HangUpClosesThePort) {
    Open();
    VARIANT_BOOL done = VARIANT_FALSE, open = VARIANT_TRUE;
    EXPECT_EQ(script->HangUp(&done), S_OK);
    control->get_PortOpen(&open);
    EXPECT_EQ(open, VARIANT_FALSE);
}

// Without a telephone line the name is a plain port, and to dial is to open it.
TEST_F(ScriptExtensionTest, DialKeepsTheNumberAndTellsWhetherThePortIsOpen) {
    VARIANT_BOOL connected = VARIANT_FALSE;
    control->put_CommPort(_variant_t(L"COM5"));
    EXPECT_EQ(script->Dial(_bstr_t(L"555 1234"), &connected), S_OK);
    EXPECT_EQ(connected, VARIANT_TRUE);
    BSTR number = nullptr;
    EXPECT_EQ(control->get_PhoneNumber(&number), S_OK);
    EXPECT_STREQ(_bstr_t(number, false), L"555 1234");
    control->put_PortOpen(VARIANT_FALSE);
    control->put_CommPort(_variant_t(L"COM9"));
    EXPECT_EQ(script->Dial(_bstr_t(L"1"), &connected), S_OK);
    EXPECT_EQ(connected, VARIANT_FALSE);
}

TEST_F(ScriptExtensionTest, SendIsOutput) {
    Open();
    EXPECT_EQ(script->Send(_bstr_t(L"to the far end")), S_OK);
    EXPECT_EQ(far_.Read(14), "to the far end");
}

TEST_F(ScriptExtensionTest, ReceiveGivesWhatIsThereAndPutsBackHowInputWas) {
    Open();
    control->put_InputLen(7);
    control->put_InputMode(InputMode_Binary);
    ASSERT_TRUE(far_.Send("abcdef"));
    ASSERT_TRUE(InputCountReaches(6));
    EXPECT_EQ(Receive(2L), L"ab");
    EXPECT_EQ(Receive(0L), L"cdef") << "none is the same as all";
    EXPECT_EQ(Receive(), L"");
    LONG length = 0;
    CommInputMode mode = InputMode_Text;
    control->get_InputLen(&length);
    control->get_InputMode(&mode);
    EXPECT_EQ(length, 7);
    EXPECT_EQ(mode, InputMode_Binary);
}

TEST_F(ScriptExtensionTest, ReceiveTakesACountInWordsAndPassesOverNonsense) {
    Open();
    ASSERT_TRUE(far_.Send("abcdef"));
    ASSERT_TRUE(InputCountReaches(6));
    EXPECT_EQ(Receive(L"3"), L"abc");
    EXPECT_EQ(Receive(L"three"), L"def");
}

TEST_F(ScriptExtensionTest, ReceiveWaitsForItsCount) {
    Open();
    control->put_InTimeOut(200);
    ASSERT_TRUE(far_.Send("ab"));
    const DWORD start = GetTickCount();
    EXPECT_EQ(Receive(3L), L"ab");
    EXPECT_GE(GetTickCount() - start, 180u);
}

TEST_F(ScriptExtensionTest, ReceiveGivesNothingWhileInputIsProcessed) {
    Open();
    control->put_AutoProcess(1);
    EXPECT_EQ(Receive(), L"");
    BSTR line = nullptr;
    EXPECT_EQ(script->ReceiveLine(&line), InvalidCall);
    EXPECT_EQ(line, nullptr);
}

TEST_F(ScriptExtensionTest, ReceiveLineIsLineInput) {
    Open();
    control->put_InTimeOut(2000);
    ASSERT_TRUE(far_.Send("a line\rmore"));
    BSTR line = nullptr;
    EXPECT_EQ(script->ReceiveLine(&line), S_OK);
    EXPECT_STREQ(_bstr_t(line, false), L"a line");
}

// What a host does while a script waits.

struct ScriptWait {
    const char* name;
    HRESULT (*wait)(IScriptExtension& script, BSTR* came);
};

constexpr ScriptWait scriptWaits[] = {
    {"WaitFor",
     [](IScriptExtension& script, BSTR* came) {
         return script.WaitFor(_variant_t(L"never"), missing, missing, missing, missing, missing, missing,
                               missing, missing, missing, came);
     }},
    {"Receive", [](IScriptExtension& script, BSTR* came) { return script.Receive(_variant_t(5L), came); }},
    {"ReceiveLine", [](IScriptExtension& script, BSTR* came) { return script.ReceiveLine(came); }},
};

TEST_F(ScriptExtensionTest, WaitsEndWithTheObject) {
    for (const ScriptWait& row : scriptWaits) {
        SCOPED_TRACE(row.name);
        ASSERT_NO_FATAL_FAILURE(MakeControlThatWaits());
        const auto close = After(50, [&] { DestroyWindow(control->CommObject()); });
        const Clock clock;
        BSTR came = nullptr;
        EXPECT_EQ(row.wait(*script.Get(), &came), S_OK);
        EXPECT_EQ(SysStringLen(came), 0u);
        SysFreeString(came);
        EXPECT_LT(clock.Gone(), 20000u);
        VARIANT_BOOL busy = VARIANT_TRUE;
        EXPECT_EQ(control->get_Busy(&busy), S_OK);
        EXPECT_EQ(busy, VARIANT_FALSE);
    }
}

TEST_F(ScriptExtensionTest, ControlAndScriptMayBeReleasedMeanwhile) {
    for (const ScriptWait& row : scriptWaits) {
        SCOPED_TRACE(row.name);
        ASSERT_NO_FATAL_FAILURE(MakeControlThatWaits());
        const HWND object = control->CommObject();
        IScriptExtension* const borrowed = script.Get();
        bool outlived = false;
        const auto release = After(50, [&] {
            SetShutDown(object, 1);
            script.Reset();
            control.Reset();
            outlived = IsWindow(object) != 0;
        });
        BSTR came = nullptr;
        row.wait(*borrowed, &came);
        SysFreeString(came);
        EXPECT_TRUE(outlived) << "held by its own wait";
        EXPECT_FALSE(IsWindow(object));
    }
}

TEST_F(ScriptExtensionTest, WithoutACommObjectNothingComes) {
    DestroyWindow(control->CommObject());
    EXPECT_EQ(WaitFor({L"x"}), L"");
    EXPECT_EQ(control->put_LookUpText(_bstr_t(L"x")), S_OK);
    EXPECT_EQ(control->put_AutoProcess(0), S_OK);
    LONG found = 0;
    EXPECT_EQ(control->get_LookUp(&found), S_OK);
    EXPECT_EQ(found, -1);
    VARIANT_BOOL good = VARIANT_TRUE;
    EXPECT_EQ(control->WaitUntilEndOfTransfer(&good), S_OK);
    EXPECT_EQ(good, VARIANT_FALSE);
}

TEST_F(ScriptExtensionTest, WithoutItsControlItDoesNothing) {
    Open();
    control.Reset();
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(script->Dial(_bstr_t(L"1"), &done), S_OK);
    EXPECT_EQ(done, VARIANT_FALSE);
    EXPECT_EQ(script->HangUp(&done), S_OK);
    EXPECT_EQ(script->Send(_bstr_t(L"x")), S_OK);
    EXPECT_EQ(Receive(), L"");
    EXPECT_EQ(WaitFor({L"x"}), L"");
    BSTR line = nullptr;
    EXPECT_EQ(script->ReceiveLine(&line), S_OK);
    EXPECT_EQ(line, nullptr);
}
