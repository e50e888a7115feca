// The forms in which a control is stored, with properties of the test's own.
#include "support/statebytes.h"
#include "support/storedcontrol.h"
#include "unit/diagnostics/logfiles.h"

#include "TarnLink.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <cstring>

namespace {

using host::Bytes;
using host::BytesOf;
using host::FromHex;
using host::StreamOf;
using host::ToHex;

struct Row {
    const wchar_t* name;
    DISPID id;
};

// Behind the two raw rows.
constexpr Row rows[] = {
    {L"Enabled", -514},
    {L"Settings", 1},
    {L"BackColor", 2},
    {L"Columns", 21},
    {L"AutoProcess", 5},
    {L"AutoScrollColumn", 8},
    {L"AutoScrollKeyboard", 9},
    {L"AutoScrollRow", 10},
    {L"AutoSize", 12},
    {L"BackSpace", 13},
    {L"CaptureFilename", 16},
    {L"CaptureMode", 17},
    {L"CDTimeOut", 19},
    {L"ColorFilter", 20},
    {L"Columns", 21},
    {L"CommEcho", 24},
    {L"CommPort", 28},
    {L"WireTap", 29},
    {L"WireTapInput", 31},
    {L"WireTapOutput", 32},
    {L"WireTapProperties", 33},
    {L"WireTapWarnings", 34},
    {L"WireTapEvents", 30},
    {L"CTSTimeOut", 37},
    {L"DialMode", 41},
    {L"DialTimeOut", 42},
    {L"DSRTimeOut", 47},
    {L"Echo", 49},
    {L"Emulation", 50},
    {L"EndOfLineMode", 51},
    {L"ForeColor", 54},
    {L"Handshaking", 55},
    {L"IgnoreOnComm", 57},
    {L"InBufferSize", 59},
    {L"InputEcho", 62},
    {L"InputLen", 63},
    {L"InTimeOut", 65},
    {L"OutTimeOut", 111},
    {L"LookUpSeparator", 69},
    {L"LookUpText", 70},
    {L"LookUpTimeOut", 71},
    {L"NullDiscard", 80},
    {L"OutBufferSize", 82},
    {L"ParityReplace", 86},
    {L"Rows", 89},
    {L"RThreshold", 90},
    {L"RTSEnable", 91},
    {L"ScrollRows", 93},
    {L"SThreshold", 98},
    {L"XferProtocol", 103},
    {L"XferStatusDialog", 106},
    {L"Font", -512},
    {L"StatusbarVisible", 113},
    {L"ToolbarVisible", 112},
    {L"StatusDialog", 117},
    {L"UseTAPI", 118},
    {L"BorderStyle", 119},
    {L"PhoneNumber", 114},
    {L"ProjectFilename", 115},
    {L"WireTapTransfer", 132},
    {L"AutoZModem", 135},
    {L"ResumeMethod", 145},
};
constexpr size_t rawRows = 2;
static_assert(std::size(rows) + rawRows == 64);

constexpr const char* version = "00090000";
constexpr const char* extent = "44332211 88776655";
constexpr SIZEL extentStored = {0x11223344, 0x55667788};
constexpr DISPID firstProperty = -514;
constexpr DISPID fontProperty = -512;
constexpr const char* terminalFont =
    "0900 0352e30b918fce119de300aa004bb851 01 ff00 00 9001 a0860100 08 5465726d696e616c";
constexpr size_t sizeOfClass = 16;

// One value, stored, for each property; the font's differs.
Bytes ManyOf(const char* value, const char* font) {
    Bytes bytes = FromHex(version) + FromHex(extent);
    for (const Row& row : rows)
        bytes += FromHex(row.id == fontProperty ? font : value);
    return bytes;
}

// The first property is this, the others are 7.
Bytes FirstIs(const std::string& value) {
    const Bytes others = ManyOf("0300 07000000", "0000");
    const size_t header = FromHex(version).size() + FromHex(extent).size();
    return others.substr(0, header) + FromHex(value) +
           others.substr(header + FromHex("0300 07000000").size());
}

std::vector<DISPID> AllProperties() {
    std::vector<DISPID> ids;
    for (const Row& row : rows)
        ids.push_back(row.id);
    return ids;
}

ComPtr<IFontDisp> TerminalFont() {
    wchar_t face[] = L"Terminal";
    FONTDESC description = {sizeof description, face, {}, FW_NORMAL, OEM_CHARSET, FALSE, FALSE, FALSE};
    description.cySize.int64 = 100000;
    ComPtr<IFontDisp> font;
    OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(font.GetAddressOf()));
    return font;
}

class ControlState : public testing::Test {
  public:
    ControlState() {
        CoInitialize(nullptr);
        EXPECT_EQ(NewObject(control), S_OK);
        control->RestoreExtent(extentStored);
        for (const Row& row : rows)
            Value(row.id) = 7L;
        Value(fontProperty).Clear();
    }
    ~ControlState() override {
        control.Reset();
        CoUninitialize();
    }

    _variant_t& Value(DISPID id) { return control->values.values[id]; }
    IPersistStreamInit& Stream() { return *control.Get(); }
    IPersistStorage& Storage() { return *control.Get(); }
    IPersistPropertyBag& InBag() { return *control.Get(); }
    OleControl& Base() { return *control.Get(); }
    HRESULT Load(const Bytes& bytes) {
        control->values.calls.clear();
        return Stream().Load(StreamOf(bytes).Get());
    }
    Bytes Saved() {
        const ComPtr<IStream> stream = StreamOf({});
        EXPECT_EQ(Stream().Save(stream.Get(), FALSE), S_OK);
        return BytesOf(stream.Get());
    }
    const std::vector<DISPID>& Calls() { return control->values.calls; }

    ComPtr<host::StoredControl> control;
};

TEST_F(ControlState, StreamHoldsAllRowsInOrder) {
    EXPECT_EQ(ToHex(Saved()), ToHex(ManyOf("0300 07000000", "0000")));
    EXPECT_EQ(Calls(), AllProperties());
}

TEST_F(ControlState, LoadPutsAllRowsInOrder) {
    ASSERT_EQ(Load(ManyOf("0300 09000000", terminalFont)), S_OK);
    EXPECT_EQ(Calls(), AllProperties());
    EXPECT_EQ(Base().Extent().cx, extentStored.cx);
    for (const Row& row : rows)
        EXPECT_TRUE(row.id == fontProperty || Value(row.id) == _variant_t(9L)) << row.id;
}

TEST_F(ControlState, ExtentIsStoredWithoutType) {
    Base().RestoreExtent({-1, 0});
    EXPECT_EQ(ToHex(Saved()).substr(8, 16), "ffffffff00000000");
    ASSERT_EQ(Load(ManyOf("0300 00000000", "0000")), S_OK);
    EXPECT_EQ(Base().Extent().cx, extentStored.cx);
    EXPECT_EQ(Base().Extent().cy, extentStored.cy);
}

struct StoredValue {
    const char* name;
    VARTYPE type;
    const char* bytes; // of the value, as it is stored
    const char* stored;
};

class ControlStateType : public ControlState, public testing::WithParamInterface<StoredValue> {};

TEST_P(ControlStateType, StandsInTheStreamAsItIs) {
    const StoredValue& row = GetParam();
    VARIANT value = {};
    value.vt = row.type;
    const Bytes bytes = FromHex(row.bytes);
    std::memcpy(&value.llVal, bytes.data(), bytes.size());
    Value(firstProperty) = value;
    const Bytes stored = FirstIs(row.stored);
    EXPECT_EQ(ToHex(Saved()), ToHex(stored));
    Value(firstProperty).Clear();
    ASSERT_EQ(Load(stored), S_OK);
    EXPECT_EQ(V_VT(&Value(firstProperty)), row.type);
    EXPECT_EQ(std::memcmp(&Value(firstProperty).llVal, bytes.data(), bytes.size()), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Types, ControlStateType,
    testing::Values(StoredValue{"I1", VT_I1, "81", "1000 81"}, StoredValue{"UI1", VT_UI1, "ff", "1100 ff"},
                    StoredValue{"I2", VT_I2, "0180", "0200 0180"},
                    StoredValue{"UI2", VT_UI2, "ffff", "1200 ffff"},
                    StoredValue{"Bool", VT_BOOL, "ffff", "0b00 ffff"},
                    StoredValue{"I4", VT_I4, "01020380", "0300 01020380"},
                    StoredValue{"UI4", VT_UI4, "ffffffff", "1300 ffffffff"},
                    StoredValue{"Int", VT_INT, "01020304", "1600 01020304"},
                    StoredValue{"UInt", VT_UINT, "01020304", "1700 01020304"},
                    StoredValue{"R4", VT_R4, "0000803f", "0400 0000803f"},
                    StoredValue{"Error", VT_ERROR, "05400080", "0a00 05400080"},
                    StoredValue{"I8", VT_I8, "0102030405060708", "1400 0102030405060708"},
                    StoredValue{"UI8", VT_UI8, "0102030405060708", "1500 0102030405060708"},
                    StoredValue{"R8", VT_R8, "000000000000f03f", "0500 000000000000f03f"},
                    StoredValue{"Currency", VT_CY, "0102030405060708", "0600 0102030405060708"},
                    StoredValue{"Date", VT_DATE, "000000000000f03f", "0700 000000000000f03f"},
                    StoredValue{"Empty", VT_EMPTY, "", "0000"}, StoredValue{"Null", VT_NULL, "", "0100"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ControlState, TypesThatNoPropertyHasAreRefused) {
    for (const char* type : {"0c00", "0e00", "0d00", "0900", "0220", "0340", "2400", "ffff"}) {
        EXPECT_EQ(Load(FirstIs(type)), E_FAIL) << type;
        EXPECT_TRUE(Calls().empty()) << type;
    }
    V_VT(&Value(firstProperty)) = VT_DECIMAL;
    EXPECT_EQ(Stream().Save(StreamOf({}).Get(), TRUE), E_FAIL);
}

TEST_F(ControlState, StringsEndWithTheirZero) {
    Value(firstProperty) = L"A\u20ac";
    EXPECT_EQ(ToHex(Saved()), ToHex(FirstIs("0800 06000000 4100ac200000")));
    Value(firstProperty) = L"";
    EXPECT_EQ(ToHex(Saved()), ToHex(FirstIs("0800 02000000 0000")));
    Value(firstProperty).Clear();
    V_VT(&Value(firstProperty)) = VT_BSTR;
    V_BSTR(&Value(firstProperty)) = nullptr;
    EXPECT_EQ(ToHex(Saved()), ToHex(FirstIs("0800 00000000")));
}

TEST_F(ControlState, StringsAreReadWithTheirZeros) {
    ASSERT_EQ(Load(FirstIs("0800 08000000 4100000042000000")), S_OK);
    ASSERT_EQ(SysStringLen(V_BSTR(&Value(firstProperty))), 3u);
    EXPECT_EQ(std::memcmp(V_BSTR(&Value(firstProperty)), L"A\0B", 6), 0);
    ASSERT_EQ(Load(FirstIs("0800 02000000 0000")), S_OK);
    EXPECT_EQ(SysStringLen(V_BSTR(&Value(firstProperty))), 0u);
    ASSERT_EQ(Load(FirstIs("0800 00000000")), S_OK);
    EXPECT_EQ(SysStringLen(V_BSTR(&Value(firstProperty))), 0u);
}

TEST_F(ControlState, OddStringLosesItsHalfCharacter) {
    ASSERT_EQ(Load(FirstIs("0800 05000000 4100420043")), S_OK);
    EXPECT_STREQ(V_BSTR(&Value(firstProperty)), L"A");
    ASSERT_EQ(Load(FirstIs("0800 03000000 410042")), S_OK);
    EXPECT_STREQ(V_BSTR(&Value(firstProperty)), L"");
    EXPECT_EQ(Calls(), AllProperties());
}

TEST_F(ControlState, ImpossibleStringLengthsEndTheLoad) {
    for (const char* count : {"01000000", "01001000", "ffffffff", "00000080"}) {
        EXPECT_EQ(Load(FirstIs(std::string("0800") + count) + Bytes(0x100010, 'x')), E_FAIL) << count;
        EXPECT_TRUE(Calls().empty()) << count;
    }
}

TEST_F(ControlState, LongestStringIsRead) {
    const std::string zeros(2 * 0x100000, '0');
    ASSERT_EQ(Load(FirstIs("0800 00001000" + zeros)), S_OK);
    EXPECT_EQ(SysStringLen(V_BSTR(&Value(firstProperty))), 0x100000u / 2 - 1);
    EXPECT_EQ(Calls(), AllProperties());
}

TEST_F(ControlState, NewerVersionIsRefused) {
    const Bytes rest = ManyOf("0300 07000000", "0000").substr(4);
    EXPECT_EQ(Load(FromHex("01090000") + rest), E_FAIL);
    EXPECT_EQ(Load(FromHex("00090001") + rest), E_FAIL);
    EXPECT_TRUE(Calls().empty());
    EXPECT_EQ(Load(FromHex("00000000") + rest), S_OK);
    EXPECT_EQ(Calls(), AllProperties());
}

// How many properties stand whole in the first bytes of a stream of 32-bit values without a font.
size_t WholeIn(size_t length) {
    const size_t header = 12;
    const size_t value = 6;
    const size_t empty = 2;
    size_t end = header;
    size_t count = 0;
    for (const Row& row : rows) {
        end += row.id == fontProperty ? empty : value;
        count += end <= length ? 1 : 0;
    }
    return count;
}

TEST_F(ControlState, StreamCutAnywhereKeepsWhatWasRead) {
    const Bytes whole = ManyOf("0300 09000000", "0000");
    for (size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(Load(whole.substr(0, length)), E_FAIL) << length;
        EXPECT_EQ(Calls().size(), WholeIn(length)) << length;
    }
    EXPECT_EQ(Load(whole), S_OK);
}

TEST_F(ControlState, StringOrFontCutAnywhereEndsTheLoad) {
    const Bytes string = FromHex(version) + FromHex(extent) + FromHex("0800 06000000 410042000000");
    for (size_t length = 12; length < string.size(); ++length) {
        EXPECT_EQ(Load(string.substr(0, length)), E_FAIL) << length;
        EXPECT_TRUE(Calls().empty()) << length;
    }
    const Bytes whole = ManyOf("0000", terminalFont);
    const size_t fontStarts = FromHex(version).size() + FromHex(extent).size() + 2 * 51;
    const size_t fontEnds = fontStarts + FromHex(terminalFont).size();
    for (size_t length = fontStarts; length < fontEnds; ++length) {
        EXPECT_EQ(Load(whole.substr(0, length)), E_FAIL) << length;
        EXPECT_LE(Calls().size(), 52u) << length; // the platform may be content with half a font
    }
}

TEST_F(ControlState, FontIsStoredAsThePlatformDoes) {
    Value(fontProperty) = TerminalFont().Get();
    const Bytes stored = ManyOf("0300 07000000", terminalFont);
    EXPECT_EQ(ToHex(Saved()), ToHex(stored));
    Value(fontProperty).Clear();
    ASSERT_EQ(Load(stored), S_OK);
    EXPECT_TRUE(control->values.wasByReference[fontProperty]);
    ASSERT_EQ(V_VT(&Value(fontProperty)), VT_DISPATCH);
    EXPECT_EQ(ToHex(Saved()), ToHex(stored)); // the font that was loaded
}

TEST_F(ControlState, ObjectOfAnotherKindIsNotLoaded) {
    // a class that the system has, and that is no font
    const Bytes picture = ManyOf("0300 07000000", "0900 0452e30b918fce119de300aa004bb851");
    EXPECT_EQ(Load(picture), E_FAIL);
    EXPECT_EQ(Calls().size(), 51u);
}

TEST_F(ControlState, RefusedPropertyEndsTheWalk) {
    control->values.refused = 2; // the third
    EXPECT_EQ(Load(ManyOf("0300 09000000", "0000")), E_FAIL);
    EXPECT_EQ(Calls(), (std::vector<DISPID>{-514, 1, 2}));
    EXPECT_EQ(Value(1), _variant_t(9L));
    EXPECT_EQ(Value(21), _variant_t(7L));
    EXPECT_EQ(Stream().Save(StreamOf({}).Get(), TRUE), E_FAIL);
}

TEST_F(ControlState, UnreachableDispatchEndsTheWalk) {
    control->values.isReachable = false;
    Base().RestoreExtent({});
    EXPECT_EQ(Load(ManyOf("0300 09000000", "0000")), E_FAIL);
    EXPECT_EQ(Base().Extent().cy, extentStored.cy);
    EXPECT_EQ(Stream().Save(StreamOf({}).Get(), TRUE), E_FAIL);
}

TEST_F(ControlState, SizeIsThatOfTheStream) {
    Value(firstProperty) = L"text";
    ULARGE_INTEGER size = {};
    ASSERT_EQ(Stream().GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, Saved().size());
    const size_t withoutFont = Saved().size();
    const ComPtr<IFontDisp> font = TerminalFont();
    Value(fontProperty) = font.Get();
    ComPtr<IPersistStream> persist;
    ULARGE_INTEGER sizeOfFont = {};
    ASSERT_EQ(font.As(&persist), S_OK);
    ASSERT_EQ(persist->GetSizeMax(&sizeOfFont), S_OK);
    ASSERT_EQ(Stream().GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, withoutFont + sizeOfClass + sizeOfFont.QuadPart);
    EXPECT_EQ(Stream().GetSizeMax(nullptr), E_POINTER);
}

TEST_F(ControlState, DirtyMarkFollowsLoadsAndSaves) {
    EXPECT_EQ(Stream().IsDirty(), S_FALSE);
    EXPECT_EQ(Stream().InitNew(), S_OK);
    EXPECT_EQ(Stream().IsDirty(), S_OK);
    EXPECT_TRUE(Calls().empty());
    Saved();
    EXPECT_EQ(Stream().IsDirty(), S_OK);
    EXPECT_EQ(Stream().Save(StreamOf({}).Get(), TRUE), S_OK);
    EXPECT_EQ(Stream().IsDirty(), S_FALSE);
    Base().SetDirty(true);
    control->values.refused = 2;
    EXPECT_EQ(Stream().Save(StreamOf({}).Get(), TRUE), E_FAIL);
    EXPECT_EQ(Stream().IsDirty(), S_OK);
    control->values.refused = DISPID_UNKNOWN;
    EXPECT_EQ(Load(ManyOf("0300 09000000", "0000")), S_OK);
    EXPECT_EQ(Stream().IsDirty(), S_FALSE);
    EXPECT_EQ(Storage().InitNew(nullptr), S_OK);
    EXPECT_EQ(Storage().IsDirty(), S_OK);
}

ComPtr<IStorage> NewStorage() {
    ComPtr<ILockBytes> bytes;
    CreateILockBytesOnHGlobal(nullptr, TRUE, &bytes);
    ComPtr<IStorage> storage;
    StgCreateDocfileOnILockBytes(bytes.Get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                 &storage);
    return storage;
}

TEST_F(ControlState, StorageHoldsTheStream) {
    const ComPtr<IStorage> storage = NewStorage();
    Base().SetDirty(true);
    ASSERT_EQ(Storage().Save(storage.Get(), FALSE), S_OK);
    EXPECT_EQ(Storage().IsDirty(), S_OK);
    ASSERT_EQ(Storage().Save(storage.Get(), TRUE), S_OK); // in place of the first
    EXPECT_EQ(Storage().IsDirty(), S_FALSE);
    EXPECT_EQ(Storage().SaveCompleted(nullptr), S_OK);
    EXPECT_EQ(Storage().HandsOffStorage(), S_OK);
    {
        ComPtr<IStream> stream;
        ASSERT_EQ(storage->OpenStream(L"Contents", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream),
                  S_OK);
        EXPECT_EQ(ToHex(BytesOf(stream.Get())), ToHex(Saved()));
    }
    Value(21).Clear();
    ASSERT_EQ(Storage().Load(storage.Get()), S_OK);
    EXPECT_EQ(Value(21), _variant_t(7L));
}

TEST_F(ControlState, StorageWithoutTheStreamIsRefused) {
    EXPECT_EQ(Storage().Load(NewStorage().Get()), STG_E_FILENOTFOUND);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(ControlState, BagHoldsAllRowsByName) {
    host::Bag bag;
    Base().SetDirty(true);
    ASSERT_EQ(InBag().Save(&bag, TRUE, FALSE), S_OK);
    EXPECT_FALSE(Base().IsDirty());
    std::vector<std::wstring> names = {L"_cx", L"_cy"};
    for (const Row& row : rows)
        names.push_back(row.name);
    EXPECT_EQ(bag.written, names);
    EXPECT_EQ(V_VT(&bag.values[L"_cx"]), VT_UI4);
    EXPECT_EQ(V_UI4(&bag.values[L"_cy"]), 0x55667788u);
    EXPECT_EQ(bag.values[L"Columns"], _variant_t(7L));
    EXPECT_EQ(bag.values[L"StatusDialog"], _variant_t(7L));
}

TEST_F(ControlState, BagPutsWhatItHas) {
    host::Bag bag;
    bag.values[L"_cy"] = 12L;
    bag.values[L"Rows"] = L"30";
    bag.values[L"Columns"] = 132L;
    ASSERT_EQ(InBag().Load(&bag, nullptr), S_OK);
    EXPECT_EQ(Calls(), (std::vector<DISPID>{21, 21, 89}));
    EXPECT_EQ(Base().Extent().cx, extentStored.cx);
    EXPECT_EQ(Base().Extent().cy, 12);
    EXPECT_EQ(Value(89), _variant_t(L"30"));
    EXPECT_EQ(Value(1), _variant_t(7L));
}

TEST_F(ControlState, BagWithoutValuesChangesNothing) {
    host::Bag bag;
    ASSERT_EQ(InBag().Load(&bag, nullptr), S_OK);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(ControlState, BagFailuresEndTheWalk) {
    host::Bag bag;
    bag.refused = L"Settings";
    EXPECT_EQ(InBag().Save(&bag, TRUE, TRUE), STG_E_MEDIUMFULL);
    EXPECT_EQ(bag.written, (std::vector<std::wstring>{L"_cx", L"_cy", L"Enabled", L"Settings"}));
    bag.values[L"_cx"] = L"wide";
    EXPECT_EQ(InBag().Load(&bag, nullptr), E_FAIL);
    bag.values.erase(L"_cx");
    control->values.calls.clear();
    bag.values[L"Columns"] = 80L;
    control->values.refused = firstProperty;
    EXPECT_EQ(InBag().Load(&bag, nullptr), E_FAIL);
    EXPECT_EQ(Calls(), std::vector<DISPID>{firstProperty});
}

TEST_F(ControlState, NullPointersAreRefused) {
    EXPECT_EQ(Stream().GetClassID(nullptr), E_POINTER);
    EXPECT_EQ(Stream().Load(static_cast<IStream*>(nullptr)), E_POINTER);
    EXPECT_EQ(Stream().Save(nullptr, TRUE), E_POINTER);
    EXPECT_EQ(Storage().Load(static_cast<IStorage*>(nullptr)), E_POINTER);
    EXPECT_EQ(Storage().Save(static_cast<IStorage*>(nullptr), TRUE), E_POINTER);
    EXPECT_EQ(InBag().Load(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(InBag().Save(nullptr, TRUE, TRUE), E_POINTER);
    CLSID id = {};
    EXPECT_EQ(Stream().GetClassID(&id), S_OK);
    EXPECT_EQ(id, CLSID_TarnComm);
}

// Texts for a debugger are noticed to be wanted within a second.
class ControlStateTrace : public ControlState {
  public:
    ControlStateTrace()
        : collector_(
              CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, "DBWIN_BUFFER")) {
        Sleep(1100);
    }

    FileMappingHandle collector_;
    logfiles::DebuggerOutput output;
};

TEST_F(ControlStateTrace, FailuresAreTraced) {
    Load(FirstIs("0800 01000000"));
    control->values.refused = firstProperty;
    Load(ManyOf("0300 09000000", "0000"));
    control->values.isReachable = false;
    Load(ManyOf("0300 09000000", "0000"));
    EXPECT_EQ(output.Text(), "Input stream may be corrupted. "
                             "Invoked failed on DISPID fffffdfe\n"
                             "Failed to get a dispatch pointer for property #3\n");
}

TEST_F(ControlState, DamagedStreamsEndAsGoodOrBad) {
    const Bytes good = ManyOf("0800 06000000 410042000000", terminalFont);
    host::Damage damage(20061);
    int failed = 0;
    constexpr int streams = 20000;
    for (int i = 0; i < streams; ++i) {
        const HRESULT result = Load(damage.Of(good));
        ASSERT_TRUE(result == S_OK || result == E_FAIL) << i << ": " << std::hex << result;
        ASSERT_LE(Calls().size(), std::size(rows) + 1);
        failed += result == E_FAIL ? 1 : 0;
    }
    EXPECT_GT(failed, 0);
    EXPECT_LT(failed, streams);
}

} // namespace
