// Properties and methods of the control that ask the telephony service and place no call.
#include "startuprows.h"
#include "telephonycontrol.h"

namespace {

using namespace telephony;
using host::Failure;
using host::FailureOf;

constexpr HRESULT generalFailure = static_cast<HRESULT>(0x800A0000);

class ControlRows : public TelephonyTest {
  protected:
    static void AddPlaces() {
        ExchangeAddLocation("Home", "30", 49, 11);
        ExchangeAddLocation("Office", "425", 1, 12);
        ExchangeSetCurrentLocation(12);
    }
    std::string Translated(const wchar_t* number) {
        _bstr_t result;
        EXPECT_EQ(phone->control->TranslatePhoneNumber(_bstr_t(number), result.GetAddress()), S_OK);
        return result.length() ? AnsiOf(static_cast<const wchar_t*>(result)) : "";
    }
};

template <class Collection>
Lines TextsOf(const ComPtr<Collection>& collection) {
    Lines texts;
    LONG count = 0;
    EXPECT_EQ(collection->get_Count(&count), S_OK);
    for (LONG index = 1; index <= count; ++index) {
        _bstr_t text;
        EXPECT_EQ(collection->get_Item(index, text.GetAddress()), S_OK);
        texts.push_back(AnsiOf(static_cast<const wchar_t*>(text)));
    }
    return texts;
}

// ModemIndex counts the data lines alone.
struct IndexRow {
    LONG index;
    Failure result;
    const char* title;
};

const IndexRow indexes[] = {
    {0, {S_OK, ""}, alpha},
    {1, {S_OK, ""}, beta},
    {2, {generalFailure, "Modem not found."}, "Hayes Compatible"},
    {100, {generalFailure, "Modem not found."}, "Hayes Compatible"},
    {-1, {generalFailure, "Modem not found."}, "Hayes Compatible"},
};

TEST_F(ControlRows, ModemIndexNamesTheLine) {
    for (const IndexRow& row : indexes) {
        SCOPED_TRACE(row.index);
        StartLogAnew();
        Start().LogProperties();
        EXPECT_EQ(FailureOf(phone->control->put_ModemIndex(row.index)), row.result);
        EXPECT_EQ(phone->Get(&ITarnComm::get_ModemIndex), row.index) << "stays, also where it failed";
        EXPECT_EQ(phone->Text(&ITarnComm::get_ModemTitle), row.title);
        const std::string line = "TarnComm.ModemIndex = " + std::to_string(row.index) + "\r\n";
        EXPECT_EQ(Logged(line), row.result.code == S_OK ? 1 : 0) << logfiles::Messages();
        phone.reset();
    }
}

struct BoxKind {
    const char* windowClass;
    UINT count;
    UINT text;
    HRESULT (STDMETHODCALLTYPE ITarnComm::*fill)(LONG);
};

const BoxKind boxKinds[] = {
    {"COMBOBOX", CB_GETCOUNT, CB_GETLBTEXT, &ITarnComm::put_FillModemCombo},
    {"LISTBOX", LB_GETCOUNT, LB_GETTEXT, &ITarnComm::put_FillModemList},
};

Lines FilledBy(PhoneHost& phone, const BoxKind& kind) {
    const HWND box =
        CreateWindowA(kind.windowClass, "", WS_POPUP, 0, 0, 50, 50, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ((phone.control.Get()->*kind.fill)(HandleToLong(box)), S_OK);
    Lines lines;
    const LRESULT count = SendMessageA(box, kind.count, 0, 0);
    for (LRESULT row = 0; row < count; ++row) {
        char text[256] = {};
        SendMessageA(box, kind.text, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text));
        lines.push_back(text);
    }
    DestroyWindow(box);
    return lines;
}

TEST_F(ControlRows, BoxesAreFilledWithTheLines) {
    Start();
    for (const BoxKind& kind : boxKinds) {
        SCOPED_TRACE(kind.windowClass);
        phone->control->put_UseTAPI(VARIANT_TRUE);
        EXPECT_EQ(FilledBy(*phone, kind), (Lines{alpha, beta}));
        phone->control->put_UseTAPI(VARIANT_FALSE);
        const Lines modems = FilledBy(*phone, kind);
        EXPECT_EQ(std::ranges::count(modems, "Hayes Compatible"), 1);
        EXPECT_EQ(std::ranges::count(modems, alpha), 0);
    }
}

TEST_F(ControlRows, NoPortNameIsTheFirstLinesName) {
    Start().UseLine("");
    _variant_t port;
    EXPECT_EQ(phone->control->get_CommPort(&port), S_OK);
    EXPECT_EQ(AnsiOf(static_cast<const wchar_t*>(_bstr_t(port))), alpha);
}

TEST_F(ControlRows, NoPortNameStaysWhereThereIsNoLine) {
    ExchangeReset();
    Start().UseLine("");
    _variant_t port;
    EXPECT_EQ(phone->control->get_CommPort(&port), S_OK);
    EXPECT_EQ(V_VT(&port), VT_BSTR);
    EXPECT_EQ(_bstr_t(port).length(), 0U);
}

// Locations

TEST_F(ControlRows, LocationsAreReadOnce) {
    AddPlaces();
    Start();
    ComPtr<ITapiLocation> locations;
    EXPECT_EQ(phone->control->get_Locations(&locations), S_OK);
    EXPECT_EQ(TextsOf(locations), (Lines{"Home", "Office"}));
    ExchangeAddLocation("Boat", "", 1, 13);
    ExchangeClearRecord();
    ComPtr<ITapiLocation> again;
    EXPECT_EQ(phone->control->get_Locations(&again), S_OK);
    EXPECT_EQ(again.Get(), locations.Get());
    EXPECT_EQ(TextsOf(again), (Lines{"Home", "Office"}));
    EXPECT_EQ(RecordText(), "");
}

TEST_F(ControlRows, LocationsThatCouldNotBeReadAreAskedForAgain) {
    AddPlaces();
    Start();
    ComPtr<ITapiLocation> locations;
    ExchangeFail("lineGetTranslateCapsA", Error(LINEERR_OPERATIONFAILED), 1);
    EXPECT_EQ(phone->control->get_Locations(&locations), S_OK);
    EXPECT_EQ(TextsOf(locations), Lines{});
    locations.Reset();
    EXPECT_EQ(phone->control->get_Locations(&locations), S_OK);
    EXPECT_EQ(TextsOf(locations), (Lines{"Home", "Office"}));
}

TEST_F(ControlRows, LocationIsTheCurrentOne) {
    AddPlaces();
    Start().LogProperties();
    EXPECT_EQ(phone->Text(&ITarnComm::get_Location), "Office");
    EXPECT_EQ(Logged("TarnComm.Location returns \"Office\""), 1) << logfiles::Messages();
    EXPECT_EQ(phone->control->put_Location(_bstr_t(L"hOME")), S_OK);
    EXPECT_EQ(Logged("TarnComm.Location = \"hOME\""), 1);
    EXPECT_EQ(Asked("lineSetCurrentLocation location=11"), 1) << RecordText();
    EXPECT_EQ(phone->Text(&ITarnComm::get_Location), "Home");
}

TEST_F(ControlRows, ALocationThatIsNoneIsRefused) {
    AddPlaces();
    Start().LogProperties();
    const Failure refused = {generalFailure, "Not a valid location."};
    for (const wchar_t* name : {L"Moon", L"", L"Hom"})
        EXPECT_EQ(FailureOf(phone->control->put_Location(_bstr_t(name))), refused);
    EXPECT_EQ(FailureOf(phone->control->put_Location(nullptr)), refused);
    EXPECT_EQ(Logged("Location = "), 0);
    EXPECT_EQ(phone->Text(&ITarnComm::get_Location), "Office");
}

TEST_F(ControlRows, ALocationWithoutACurrentOneIsEmpty) {
    Start();
    EXPECT_EQ(phone->Text(&ITarnComm::get_Location), "");
}

TEST_F(ControlRows, LocationTellsWhyTelephonyIsOutOfUse) {
    for (const StartUpRow& row : startUpRows) {
        SCOPED_TRACE(row.error);
        ExchangeFail("lineInitializeExA", Error(row.error), 1);
        Start().LogProperties();
        const Failure unable = {generalFailure, row.text};
        BSTR text = nullptr;
        EXPECT_EQ(FailureOf(phone->control->get_Location(&text)), unable);
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(FailureOf(phone->control->put_Location(_bstr_t(L"Home"))), unable);
        EXPECT_EQ(Logged("Location"), 0);
        phone.reset();
    }
}

// All names are plain ports then.
TEST_F(ControlRows, WithoutTelephonyTheRestGoesOn) {
    ExchangeFail("lineInitializeExA", Error(LINEERR_NOMEM), 1);
    Start();
    ComPtr<ITapiLocation> locations;
    EXPECT_EQ(phone->control->get_Locations(&locations), S_OK);
    EXPECT_EQ(TextsOf(locations), Lines{});
    for (const BoxKind& kind : boxKinds)
        EXPECT_EQ(FilledBy(*phone, kind), Lines{});
    EXPECT_EQ(Translated(L"+1 425 5550100"), "");
    phone->UseLine(alpha);
    EXPECT_EQ(phone->Dial("5550100"), S_OK);
    EXPECT_FALSE(phone->IsOpen());
    EXPECT_FALSE(phone->Is(&ITarnComm::get_HangUp));
    phone->Answer(true);
    EXPECT_FALSE(phone->Is(&ITarnComm::get_AnswerCalls));
    phone->UseLine("COM5");
    EXPECT_EQ(phone->control->put_PortOpen(VARIANT_TRUE), S_OK);
    EXPECT_TRUE(phone->IsOpen());
    EXPECT_EQ(phone->Status(), "Connected");
}

// Config

TEST_F(ControlRows, ConfigIsTextOfTheLinesSettings) {
    constexpr BYTE settings[] = {0x00, 0x75, 0xff, 0x10};
    ExchangeSetDeviceConfig(alphaLine, settings, sizeof settings);
    StartAtAlpha().LogProperties();
    EXPECT_EQ(phone->Text(&ITarnComm::get_Config), "AAHFPPBA");
    EXPECT_EQ(Logged("TarnComm.Config returns \"AAHFPPBA\""), 1) << logfiles::Messages();
    EXPECT_EQ(phone->control->put_Config(_bstr_t(L"PPAAC")), S_OK); // the last letter has no partner
    EXPECT_EQ(Logged("TarnComm.Config = \"PPAAC\""), 1);
    EXPECT_EQ(Asked("lineSetDevConfig device=0 class=COMM size=2"), 1) << RecordText();
    EXPECT_EQ(phone->Text(&ITarnComm::get_Config), "PPAA");
}

TEST_F(ControlRows, AnEmptyConfigIsGivenToTheService) {
    constexpr BYTE settings[] = {0x75};
    for (const wchar_t* text : {L"", L"B"}) {
        ExchangeSetDeviceConfig(alphaLine, settings, sizeof settings);
        StartAtAlpha();
        ExchangeClearRecord();
        EXPECT_EQ(phone->control->put_Config(_bstr_t(text)), S_OK);
        EXPECT_EQ(Asked("lineSetDevConfig device=0 class=COMM size=0"), 1) << RecordText();
        EXPECT_EQ(phone->Text(&ITarnComm::get_Config), "");
        phone.reset();
    }
}

TEST_F(ControlRows, ConfigOfOtherPortsIsNull) {
    for (const char* port : {"COM5", "Desk Set", "No such line"}) {
        Start().UseLine(port);
        BSTR text = SysAllocString(L"old");
        const BSTR old = text;
        EXPECT_EQ(phone->control->get_Config(&text), S_OK);
        EXPECT_EQ(text, nullptr) << port;
        SysFreeString(old);
        EXPECT_EQ(phone->control->put_Config(_bstr_t(L"PPAA")), S_OK);
        EXPECT_EQ(Asked("lineSetDevConfig"), 0);
        phone.reset();
    }
}

// Ports

TEST_F(ControlRows, TheModemsStandBehindThePorts) {
    Start();
    ComPtr<ICommPort> ports;
    EXPECT_EQ(phone->control->get_CommPorts(&ports), S_OK);
    const Lines names = TextsOf(ports);
    ASSERT_GE(names.size(), 3U);
    EXPECT_EQ((Lines{names.end() - 2, names.end()}), (Lines{alpha, beta}));
    EXPECT_TRUE(std::all_of(names.begin(), names.end() - 2,
                            [](const std::string& name) { return name.starts_with("COM"); }));
    EXPECT_EQ(std::ranges::count(names, "COM5"), 1);
    phone.reset();
    EXPECT_EQ(TextsOf(ports), names) << "kept longer than the control";
}

struct TypeRow {
    const wchar_t* name;
    PortType type;
};

constexpr TypeRow types[] = {
    {L"COM5", PortType_Serial},      {L"Alpha Modem", PortType_Modem},    {L"BETA MODEM", PortType_Modem},
    {L"Desk Set", PortType_Unknown}, {L"No such line", PortType_Unknown}, {L"", PortType_Unknown},
};

TEST_F(ControlRows, GetPortTypeKnowsLines) {
    Start();
    for (const TypeRow& row : types) {
        PortType type = PortType_Serial;
        EXPECT_EQ(phone->control->GetPortType(_bstr_t(row.name), &type), S_OK);
        EXPECT_EQ(type, row.type) << AnsiOf(row.name);
    }
}

// TranslatePhoneNumber

struct TranslationRow {
    const char* port;
    const char* asked;
};

constexpr TranslationRow translations[] = {
    {alpha, "lineTranslateAddress device=0 number=+49 (30) 5550100"},
    {beta, "lineTranslateAddress device=2 number=+49 (30) 5550100"},
    {"", "lineTranslateAddress device=0 number=+49 (30) 5550100"},
    {"COM5", "lineTranslateAddress device=0 number=+49 (30) 5550100"},
};

TEST_F(ControlRows, NumbersAreTranslatedByTheLineOrAnyLine) {
    ExchangeAddTranslation("+49 (30) 5550100", "0,5550100");
    for (const TranslationRow& row : translations) {
        SCOPED_TRACE(row.port);
        Start();
        if (*row.port)
            phone->UseLine(row.port);
        ExchangeClearRecord();
        EXPECT_EQ(Translated(L"+49 (30) 5550100"), "0,5550100");
        EXPECT_GE(Asked(row.asked), 1) << RecordText();
        phone.reset();
    }
}

TEST_F(ControlRows, WithoutALineThereIsNoTranslation) {
    ExchangeReset();
    Start();
    EXPECT_EQ(Translated(L"+49 (30) 5550100"), "");
    EXPECT_EQ(Asked("lineTranslateAddress"), 0);
}

} // namespace
