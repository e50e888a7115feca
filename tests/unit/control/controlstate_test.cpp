// The control itself stored and loaded.
#include "support/container.h"
#include "support/sinks.h"
#include "support/statebytes.h"
#include "support/storedcontrol.h"

#include "control/TarnCommCtl.h"
#include "loggedcontrol.h"
#include "TarnComm.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <functional>
#include <utility>

namespace {

using host::Bytes;
using host::BytesOf;
using host::FromHex;
using host::StreamOf;
using host::ToHex;

struct StoredRow {
    const char* name;
    const char* hex;
};

constexpr const char* font =
    "0900 0352e30b918fce119de300aa004bb851 01 ff00 00 9001 a0860100 08 5465726d696e616c";
constexpr const char* noText = "0800 00000000";

// A control with its defaults at 96 pixels an inch.
constexpr StoredRow defaults[] = {
    {"version", "00090000"},
    {"_cx", "13210000"},
    {"_cy", "ac140000"},
    {"Enabled", "0b00 ffff"},
    {"Settings", "0800 16000000 39003600300030002c006e002c0038002c0031000000"},
    {"BackColor", "0300 01000000"},
    {"Columns", "0300 50000000"},
    {"AutoProcess", "0300 03000000"},
    {"AutoScrollColumn", "0b00 0000"},
    {"AutoScrollKeyboard", "0b00 ffff"},
    {"AutoScrollRow", "0b00 ffff"},
    {"AutoSize", "0300 00000000"},
    {"BackSpace", "0300 00000000"},
    {"CaptureFilename", "0800 02000000 0000"},
    {"CaptureMode", "0300 00000000"},
    {"CDTimeOut", "0300 00000000"},
    {"ColorFilter", "0300 00000000"},
    {"Columns again", "0300 50000000"},
    {"CommEcho", "0b00 0000"},
    {"CommPort", "0800 02000000 0000"},
    {"WireTap", "0b00 0000"},
    {"WireTapInput", "0b00 0000"},
    {"WireTapOutput", "0b00 0000"},
    {"WireTapProperties", "0b00 0000"},
    {"WireTapWarnings", "0b00 0000"},
    {"WireTapEvents", "0b00 0000"},
    {"CTSTimeOut", "0300 00000000"},
    {"DialMode", "0300 00000000"},
    {"DialTimeOut", "0300 60ea0000"},
    {"DSRTimeOut", "0300 00000000"},
    {"Echo", "0b00 0000"},
    {"Emulation", "0300 04000000"},
    {"EndOfLineMode", "0300 00000000"},
    {"ForeColor", "0300 0f000000"},
    {"Handshaking", "0300 04000000"},
    {"IgnoreOnComm", "0b00 0000"},
    {"InBufferSize", "0300 00400000"},
    {"InputEcho", "0b00 ffff"},
    {"InputLen", "0300 00000000"},
    {"InTimeOut", "0300 00000000"},
    {"OutTimeOut", "0300 00000000"},
    {"LookUpSeparator", "0800 04000000 7c000000"},
    {"LookUpText", "0800 02000000 0000"},
    {"LookUpTimeOut", "0300 10270000"},
    {"NullDiscard", "0b00 0000"},
    {"OutBufferSize", "0300 00400000"},
    {"ParityReplace", "0800 02000000 0000"},
    {"Rows", "0300 19000000"},
    {"RThreshold", "0300 00000000"},
    {"RTSEnable", "0b00 ffff"},
    {"ScrollRows", "0300 00000000"},
    {"SThreshold", "0300 00000000"},
    {"XferProtocol", "0300 05000000"},
    {"XferStatusDialog", "0300 02000000"},
    {"Font", font},
    {"StatusbarVisible", "0b00 ffff"},
    {"ToolbarVisible", "0b00 ffff"},
    {"StatusDialog", "0300 02000000"},
    {"UseTAPI", "0b00 0000"}, // the opposite
    {"BorderStyle", "0300 01000000"},
    {"PhoneNumber", noText},
    {"ProjectFilename", noText},
    {"WireTapTransfer", "0b00 0000"},
    {"AutoZModem", "0b00 ffff"},
    {"ResumeMethod", "0300 00000000"},
};

// The defaults, with another value for one row.
Bytes StateWith(std::string_view name = {}, const char* hex = "") {
    Bytes bytes;
    for (const StoredRow& row : defaults)
        bytes += FromHex(row.name == name ? hex : row.hex);
    return bytes;
}

// The font as it is now: the platform puts the name of one that it has in place of one that it has not.
Bytes FontOf(const ComPtr<CTarnCommCtl>& control) {
    ComPtr<IFontDisp> held;
    ComPtr<IPersistStream> persist;
    const ComPtr<IStream> stream = StreamOf({});
    EXPECT_EQ(control->get_Font(&held), S_OK);
    EXPECT_EQ(held.As(&persist), S_OK);
    EXPECT_EQ(OleSaveToStream(persist.Get(), stream.Get()), S_OK);
    return FromHex("0900") + BytesOf(stream.Get());
}

// Some platforms make an empty string of a null one on its way through Invoke.
Bytes NullString() {
    VARIANT null = {};
    null.vt = VT_BSTR;
    _variant_t copy;
    VariantCopy(&copy, &null);
    return FromHex(V_BSTR(&copy) ? "0800 02000000 0000" : noText);
}

std::wstring Description() {
    ComPtr<IErrorInfo> error;
    _bstr_t text;
    if (GetErrorInfo(0, &error) != S_OK)
        return {};
    error->GetDescription(text.GetAddress());
    return text.length() ? std::wstring(text) : std::wstring();
}

template <class Value, class Getter>
Value Ask(const ComPtr<CTarnCommCtl>& control, Getter getter) {
    Value value = {};
    EXPECT_EQ((control.Get()->*getter)(&value), S_OK);
    return value;
}

class StoredTarnComm : public testing::Test {
  public:
    StoredTarnComm() {
        CoInitialize(nullptr);
        EXPECT_EQ(NewObject(control), S_OK);
        SetErrorInfo(0, nullptr);
    }
    ~StoredTarnComm() override {
        control.Reset();
        CoUninitialize();
    }

    IPersistStreamInit& Stream() { return *control.Get(); }
    IPersistPropertyBag& InBag() { return *control.Get(); }
    HRESULT Load(const Bytes& bytes) { return Stream().Load(StreamOf(bytes).Get()); }
    Bytes Saved() {
        const ComPtr<IStream> stream = StreamOf({});
        EXPECT_EQ(Stream().Save(stream.Get(), FALSE), S_OK);
        return BytesOf(stream.Get());
    }
    std::wstring Text(HRESULT (STDMETHODCALLTYPE CTarnCommCtl::*getter)(BSTR*)) {
        _bstr_t text;
        EXPECT_EQ((control.Get()->*getter)(text.GetAddress()), S_OK);
        return text.length() ? std::wstring(text, text.length()) : std::wstring();
    }

    ComPtr<CTarnCommCtl> control;
};

TEST_F(StoredTarnComm, DefaultsAreStoredByteForByte) {
    const Bytes saved = Saved();
    size_t at = 0;
    for (const StoredRow& row : defaults) {
        const Bytes expected = row.hex == font     ? FontOf(control)
                               : row.hex == noText ? NullString()
                                                   : FromHex(row.hex);
        ASSERT_EQ(ToHex(saved.substr(std::min(at, saved.size()), expected.size())), ToHex(expected))
            << row.name;
        at += expected.size();
    }
    EXPECT_EQ(saved.size(), at);
}

TEST_F(StoredTarnComm, SavedLoadsInAnother) {
    control->put_UseTAPI(VARIANT_FALSE);
    control->put_Columns(132);
    control->put_Rows(43);
    control->put_Settings(_bstr_t(L"19200,E,7,1"));
    control->put_LookUpText(_bstr_t(L"login:|Password:"));
    control->put_CommPort(_variant_t(3L));
    control->put_PhoneNumber(_bstr_t(L"555"));
    control->put_ForeColor(static_cast<TerminalColor>(12));
    control->put_DialStatusDialog(static_cast<StatusDialog>(0));
    control->put_AutoZModem(VARIANT_FALSE);
    control->put_AutoProcess(1);
    control->RestoreExtent({1234, 567});
    const Bytes saved = Saved();

    ASSERT_EQ(NewObject(control), S_OK);
    ASSERT_EQ(Load(saved), S_OK);
    EXPECT_EQ(Description(), L"");
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_Columns), 132);
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_Rows), 43);
    EXPECT_EQ(Text(&CTarnCommCtl::get_Settings), L"19200,e,7,1");
    EXPECT_EQ(Text(&CTarnCommCtl::get_LookUpText), L"login:|Password:");
    EXPECT_EQ(Text(&CTarnCommCtl::get_PhoneNumber), L"555");
    EXPECT_EQ(Ask<TerminalColor>(control, &CTarnCommCtl::get_ForeColor), 12);
    EXPECT_EQ(Ask<StatusDialog>(control, &CTarnCommCtl::get_DialStatusDialog), 0);
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_AutoZModem), VARIANT_FALSE);
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_AutoProcess), 1);
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_UseTAPI), VARIANT_FALSE);
    EXPECT_EQ(control->Extent().cx, 1234);
    EXPECT_STREQ(control->Properties().m_szPort, "COM3");
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_PortOpen), VARIANT_FALSE);
}

// What has no row is as at the start, and a control that was open does not open by loading.
TEST_F(StoredTarnComm, WhatHasNoRowIsAsAtTheStart) {
    control->put_AutoSend(VARIANT_FALSE); // of the comm object alone, but AutoProcess is read from there
    control->put_AutoScroll(4);
    control->put_InputMode(InputMode_Binary);
    control->put_LookUpInputLen(7);
    control->put_ModemTitle(_bstr_t(L"Other"));
    control->put_XferPath(_bstr_t(L"C:\\in"));
    control->put_DTREnable(VARIANT_FALSE);
    control->put_CommPort(_variant_t(L"COM5"));
    control->put_PortOpen(VARIANT_TRUE);
    ASSERT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_PortOpen), VARIANT_TRUE);
    const Bytes saved = Saved();
    ASSERT_EQ(NewObject(control), S_OK);
    ASSERT_EQ(Load(saved), S_OK);
    EXPECT_EQ(Description(), L"");
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_PortOpen), VARIANT_FALSE);
    EXPECT_STREQ(GetCommPort(control->CommObject()), "COM5");
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_AutoSend), VARIANT_FALSE);
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_AutoReceive), VARIANT_TRUE);
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_AutoProcess), 1);
    EXPECT_EQ(control->Properties().m_nAutoScroll, 2);
    EXPECT_EQ(Ask<CommInputMode>(control, &CTarnCommCtl::get_InputMode), InputMode_Text);
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_LookUpInputLen), 0);
    EXPECT_EQ(Text(&CTarnCommCtl::get_ModemTitle), L"Hayes Compatible");
    EXPECT_EQ(Text(&CTarnCommCtl::get_XferPath), L"");
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_DTREnable), VARIANT_TRUE);
}

TEST_F(StoredTarnComm, NoFontIsStoredAndLoaded) {
    control->putref_Font(nullptr);
    control->put_PhoneNumber(_bstr_t(L"555"));
    const Bytes saved = Saved();
    ASSERT_EQ(NewObject(control), S_OK);
    ASSERT_EQ(Load(saved), S_OK);
    EXPECT_EQ(Description(), L"");
    ComPtr<IFontDisp> held;
    EXPECT_EQ(control->get_Font(&held), S_OK);
    EXPECT_FALSE(held);
    EXPECT_EQ(Text(&CTarnCommCtl::get_PhoneNumber), L"555") << "the rows behind it";
    EXPECT_EQ(Saved().size(), saved.size());
}

TEST_F(StoredTarnComm, UseTapiIsStoredAsItsOpposite) {
    ASSERT_EQ(Load(StateWith("UseTAPI", "0b00 0000")), S_OK);
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_UseTAPI), VARIANT_TRUE);
    ASSERT_EQ(Load(StateWith("UseTAPI", "0b00 ffff")), S_OK);
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_UseTAPI), VARIANT_FALSE);
    Saved();
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_UseTAPI), VARIANT_FALSE);
}

TEST_F(StoredTarnComm, BagHoldsUseTapiAsItIs) {
    host::Bag bag;
    ASSERT_EQ(InBag().Save(&bag, TRUE, TRUE), S_OK);
    EXPECT_EQ(bag.values[L"UseTAPI"], _variant_t(true));
    bag.values[L"UseTAPI"] = false;
    ASSERT_EQ(InBag().Load(&bag, nullptr), S_OK);
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_UseTAPI), VARIANT_FALSE);
}

TEST_F(StoredTarnComm, BagFromAnotherIsTheSameState) {
    control->put_ScrollRows(100);
    control->put_BackColor(static_cast<TerminalColor>(4));
    host::Bag bag;
    ASSERT_EQ(InBag().Save(&bag, FALSE, TRUE), S_OK);
    ASSERT_EQ(NewObject(control), S_OK);
    ASSERT_EQ(InBag().Load(&bag, nullptr), S_OK);
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_ScrollRows), 100);
    EXPECT_EQ(Ask<TerminalColor>(control, &CTarnCommCtl::get_BackColor), 4);
}

TEST_F(StoredTarnComm, WireTapComesBackOn) {
    ASSERT_EQ(Load(StateWith("WireTap", "0b00 0000")), S_OK);
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_WireTap), VARIANT_TRUE);
}

TEST_F(StoredTarnComm, EmptySeparatorIsByteZero) {
    ASSERT_EQ(Load(StateWith("LookUpSeparator", "0800 02000000 0000")), S_OK);
    EXPECT_EQ(control->Properties().m_chLookUpSeparator, '\0');
}

TEST_F(StoredTarnComm, LineIsReadyThoughItWasStoredOff) {
    ASSERT_EQ(Load(StateWith("RTSEnable", "0b00 0000")), S_OK);
    EXPECT_TRUE(GetRTS(control->CommObject()));
    EXPECT_EQ(control->Properties().m_bRTSEnable, 0);
}

TEST_F(StoredTarnComm, NewerVersionIsReportedAndSucceeds) {
    EXPECT_EQ(Load(FromHex("01090000") + StateWith().substr(4)), S_OK);
    EXPECT_EQ(Description(), L"Failed for some unknown reason.");
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_Columns), 80);
}

// The inversion does not ask whether there was anything to invert.
TEST_F(StoredTarnComm, NothingReadStillInvertsUseTapi) {
    EXPECT_EQ(Load({}), S_OK);
    EXPECT_EQ(Description(), L"Failed for some unknown reason.");
    EXPECT_EQ(Ask<VARIANT_BOOL>(control, &CTarnCommCtl::get_UseTAPI), VARIANT_FALSE);
}

TEST_F(StoredTarnComm, DamagedStreamKeepsWhatWasRead) {
    const Bytes bytes = StateWith("Columns", "0300 84000000");
    const size_t pastColumns = 80;
    EXPECT_EQ(Load(bytes.substr(0, pastColumns)), S_OK);
    EXPECT_EQ(Description(), L"Failed for some unknown reason.");
    EXPECT_EQ(GetColumns(control->CommObject()), 132);
}

struct Answer {
    HRESULT code;
    const wchar_t* message;
};

// A stream that fails in its own way.
class FailingStream : public host::Counted<FailingStream, IStream> {
  public:
    using Faces = FaceTable<FaceRow<IStream>, FaceRow<ISequentialStream, IStream>>;

    explicit FailingStream(HRESULT code) : code_(code) {}
    HRESULT STDMETHODCALLTYPE Read(void*, ULONG, ULONG*) override { return code_; }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return code_; }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return code_; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return code_; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return code_;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return code_; }
    HRESULT STDMETHODCALLTYPE Revert() override { return code_; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return code_; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return code_; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return code_; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return code_; }

  private:
    HRESULT code_;
};

TEST_F(StoredTarnComm, FailuresOfTheStreamHaveTheirTexts) {
    constexpr Answer answers[] = {
        {E_FAIL, L"Failed for some unknown reason."},
        {E_UNEXPECTED, L"There was an unexpected error loading the properties of Tarn Comm."},
        {E_OUTOFMEMORY, L"Not enough memory to load Tarn Link Objects."},
        {STG_E_ACCESSDENIED, L""},
    };
    for (const Answer& answer : answers) {
        SetErrorInfo(0, nullptr);
        FailingStream stream(answer.code);
        EXPECT_EQ(Stream().Load(&stream), S_OK);
        EXPECT_EQ(Description(), answer.message) << std::hex << answer.code;
        EXPECT_EQ(Stream().Save(&stream, TRUE), answer.code);
        EXPECT_EQ(stream.References(), 0u);
    }
}

class WatchingSink : public host::Counted<WatchingSink, IPropertyNotifySink> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyNotifySink>>;

    explicit WatchingSink(std::function<void()> onChanged) : onChanged_(std::move(onChanged)) {}
    HRESULT STDMETHODCALLTYPE OnChanged(DISPID) override {
        onChanged_();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override { return S_OK; }

  private:
    std::function<void()> onChanged_;
};

ComPtr<IConnectionPoint> ChangesOf(const ComPtr<CTarnCommCtl>& control) {
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    if (SUCCEEDED(control.As(&points)))
        points->FindConnectionPoint(IID_IPropertyNotifySink, &point);
    return point;
}

TEST_F(StoredTarnComm, LoadIsMarkedWhileItRuns) {
    bool wasLoading = false;
    WatchingSink sink([&] { wasLoading |= control->IsLoading(); });
    DWORD cookie = 0;
    ASSERT_EQ(ChangesOf(control)->Advise(&sink, &cookie), S_OK);
    ASSERT_EQ(Load(StateWith()), S_OK);
    EXPECT_TRUE(std::exchange(wasLoading, false));
    EXPECT_FALSE(control->IsLoading());
    host::Bag bag;
    bag.values[L"Columns"] = 80L;
    ASSERT_EQ(InBag().Load(&bag, nullptr), S_OK);
    EXPECT_TRUE(wasLoading);
    EXPECT_FALSE(control->IsLoading());
    ASSERT_EQ(ChangesOf(control)->Unadvise(cookie), S_OK);
}

TEST_F(StoredTarnComm, HostMayReleaseWhileItLoads) {
    const auto locks = ModuleLockCount();
    WatchingSink sink([&] { control.Reset(); });
    DWORD cookie = 0;
    ASSERT_EQ(ChangesOf(control)->Advise(&sink, &cookie), S_OK);
    EXPECT_EQ(Stream().Load(StreamOf(StateWith()).Get()), S_OK);
    EXPECT_FALSE(control);
    EXPECT_LT(ModuleLockCount(), locks);
    EXPECT_EQ(sink.References(), 0u);
}

TEST_F(StoredTarnComm, DamagedStreamsLeaveAControlThatWorks) {
    const Bytes good = StateWith();
    host::Damage damage(64);
    constexpr int streams = 1000;
    for (int i = 0; i < streams; ++i) {
        SetErrorInfo(0, nullptr);
        ASSERT_EQ(Load(damage.Of(good)), S_OK) << i;
        const std::wstring text = Description();
        ASSERT_TRUE(text.empty() || text == L"Failed for some unknown reason.") << i;
    }
    ASSERT_EQ(Load(good), S_OK);
    EXPECT_EQ(Description(), L"");
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_Columns), 80);
    EXPECT_EQ(Ask<LONG>(control, &CTarnCommCtl::get_Rows), 25);
}

TEST_F(StoredTarnComm, PagesStandInTheOrderOfTheMap) {
    ComPtr<ISpecifyPropertyPages> pages;
    ASSERT_EQ(control.As(&pages), S_OK);
    CAUUID given = {};
    ASSERT_EQ(pages->GetPages(&given), S_OK);
    const CLSID expected[] = {CLSID_PropTerminal, CLSID_PropCommunications, CLSID_PropWireTap,
                              CLSID_CFontPropPage, CLSID_PropAbout};
    ASSERT_EQ(given.cElems, std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(given.pElems[i], expected[i]) << i;
    CoTaskMemFree(given.pElems);
}

TEST_F(StoredTarnComm, SizeLeavesUseTapiAlone) {
    const int before = control->Properties().m_bUseTAPI;
    ULARGE_INTEGER size = {};
    ASSERT_EQ(Stream().GetSizeMax(&size), S_OK);
    EXPECT_EQ(control->Properties().m_bUseTAPI, before);
    EXPECT_GE(size.QuadPart, StateWith().size());
}

TEST(StoredTarnCommLog, LoadsAndSavesAreNotLogged) {
    controltest::Control logged;
    logged->put_WireTap(VARIANT_TRUE);
    logged->put_WireTapProperties(VARIANT_TRUE);
    const auto get = [&] {
        LONG columns = 0;
        logged->get_Columns(&columns);
    };
    IPersistStreamInit& stream = *logged.Pointer().Get();
    IPersistPropertyBag& inBag = *logged.Pointer().Get();
    host::Bag bag;
    bag.values[L"Columns"] = 80L;
    EXPECT_EQ(controltest::LogOf([&] {
                  ULARGE_INTEGER size = {};
                  const ComPtr<IStream> memory = StreamOf({});
                  EXPECT_EQ(stream.GetSizeMax(&size), S_OK);
                  EXPECT_EQ(stream.Save(memory.Get(), TRUE), S_OK);
                  EXPECT_EQ(stream.Load(StreamOf(BytesOf(memory.Get())).Get()), S_OK);
                  EXPECT_EQ(inBag.Load(&bag, nullptr), S_OK);
                  EXPECT_EQ(inBag.Save(&bag, TRUE, TRUE), S_OK);
                  FailingStream failing(E_FAIL);
                  EXPECT_EQ(stream.Load(&failing), S_OK);
              }),
              "");
    EXPECT_EQ(controltest::LogOf(get),
              controltest::Line("Comm.Columns returns 80")); // and then it is on again
}

} // namespace
