// The places to dial from, the countries, translated numbers and a line's configuration, from the exchange.
#include "control/TarnCommCtl.h"
#include "support/memorylimit.h"
#include "support/nocalls.h"
#include "telephony/exchange.h"

#include <comdef.h>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr LONG operationFailed = static_cast<LONG>(LINEERR_OPERATIONFAILED);

std::string RecordText() {
    std::string text(ExchangeRecord(nullptr, 0), '\0');
    ExchangeRecord(text.data(), static_cast<DWORD>(text.size() + 1));
    return text;
}

std::string Ansi(const _bstr_t& text) {
    return AnsiOf(static_cast<const wchar_t*>(text));
}

// A service that gives each structure in one go, and one that asks for more room each time.
struct Service {
    const char* name;
    DWORD more; // bytes
};

const Service services[] = {{"InOneGo", 0}, {"WithMoreRoom", 1}, {"WithMuchMoreRoom", 100000}};

void TwoLocations() {
    ExchangeAddLocation("Home", "030", 49, 7);
    ExchangeAddLocation("Office", "212", 1, 3);
    ExchangeSetCurrentLocation(3);
}

class Telephony {
  public:
    CTapiApp* operator->() { return &telephony_; }

  private:
    host::NoCalls owner_;
    CTapiApp telephony_{owner_};
};

class LocationTest : public testing::Test {
  protected:
    LocationTest() { ExchangeReset(); }
    ~LocationTest() override { ExchangeReset(); }

    std::string AreaCodeAndCountry(Telephony& telephony) {
        DWORD country = 99;
        std::string area = "before";
        telephony->GetCurrentLocationCountryIDAndAreaCode(country, area);
        return area + "/" + std::to_string(country);
    }
};

class Locations : public LocationTest, public testing::WithParamInterface<Service> {
  protected:
    Locations() { ExchangeDemandMore(GetParam().more); }
};

INSTANTIATE_TEST_SUITE_P(Rows, Locations, testing::ValuesIn(services),
                         [](const auto& row) { return row.param.name; });

TEST_P(Locations, AreListedInTheServicesOrder) {
    TwoLocations();
    Telephony telephony;
    EXPECT_THAT(telephony->Locations(), ElementsAre("Home", "Office"));
}

TEST_P(Locations, CurrentOneIsFoundByItsId) {
    TwoLocations();
    Telephony telephony;
    EXPECT_EQ(telephony->GetCurrentLocationName(), "Office");
    EXPECT_EQ(AreaCodeAndCountry(telephony), "212/1");
    ExchangeSetCurrentLocation(7);
    EXPECT_EQ(telephony->GetCurrentLocationName(), "Home");
    EXPECT_EQ(AreaCodeAndCountry(telephony), "030/49");
}

TEST_P(Locations, ManyAreListed) {
    for (DWORD i = 0; i < 2000; ++i)
        ExchangeAddLocation(("Place " + std::to_string(i)).c_str(), "1", 1, i + 1);
    Telephony telephony;
    const auto names = telephony->Locations();
    ASSERT_EQ(names.size(), 2000u);
    EXPECT_EQ(names.front(), "Place 0");
    EXPECT_EQ(names.back(), "Place 1999");
    EXPECT_EQ(telephony->GetLocationID("Place 1999"), 2000);
}

TEST_P(Locations, NumbersAreTranslatedByTheRules) {
    const DWORD device = ExchangeAddLine("Alpha", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    ExchangeAddTranslation("+1 (212) 5551212", "9,5551212");
    const std::string longNumber(300, '7');
    ExchangeAddTranslation("long", longNumber.c_str());
    Telephony telephony;
    EXPECT_EQ(telephony->TranslatePhoneNumber(device, "+1 (212) 5551212"), "9,5551212");
    EXPECT_EQ(telephony->TranslatePhoneNumber(device, "555-1234"), "5551234");
    EXPECT_EQ(telephony->TranslatePhoneNumber(device, "long"), longNumber);
    EXPECT_EQ(telephony->TranslatePhoneNumber(device, ""), "");
    EXPECT_EQ(telephony->TranslatePhoneNumber(device, nullptr), "");
    EXPECT_EQ(telephony->TranslatePhoneNumber(device + 1, "5"), "") << "no such line";
    EXPECT_THAT(RecordText(), testing::HasSubstr("number=+1 (212) 5551212 card=0 options=0"));
}

std::vector<std::string> RowsOf(HWND box) {
    std::vector<std::string> rows;
    const LRESULT count = SendMessageA(box, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        const auto row = static_cast<WPARAM>(i);
        char text[256] = {};
        SendMessageA(box, CB_GETLBTEXT, row, reinterpret_cast<LPARAM>(text));
        rows.push_back(std::string(text) + "=" + std::to_string(SendMessageA(box, CB_GETITEMDATA, row, 0)));
    }
    return rows;
}

class ComboBox {
  public:
    explicit ComboBox(DWORD style = 0)
        : window_(CreateWindowA("COMBOBOX", "", WS_POPUP | CBS_DROPDOWNLIST | style, 0, 0, 50, 50, nullptr,
                                nullptr, nullptr, nullptr)) {}
    ~ComboBox() { DestroyWindow(window_); }
    ComboBox(const ComboBox&) = delete;
    ComboBox& operator=(const ComboBox&) = delete;
    operator HWND() const { return window_; }

  private:
    HWND window_;
};

void ThreeCountries() {
    ExchangeAddCountry("Zeeland", 331, 31);
    ExchangeAddCountry("Atoll (North)", 107, 1);
    ExchangeAddCountry("50%s off%n", 5, 1670);
}

TEST_P(Locations, CountriesGoIntoAComboBox) {
    ThreeCountries();
    Telephony telephony;
    const ComboBox plain;
    telephony->AddCountriesToCombo(plain);
    EXPECT_THAT(RowsOf(plain),
                ElementsAre("Zeeland (31)=331", "Atoll (North) (1)=107", "50%s off%n (1670)=5"));
    const ComboBox sorted(CBS_SORT);
    telephony->AddCountriesToCombo(sorted);
    EXPECT_THAT(RowsOf(sorted),
                ElementsAre("50%s off%n (1670)=5", "Atoll (North) (1)=107", "Zeeland (31)=331"))
        << "each keeps its own identifier";
    telephony->AddCountriesToCombo(nullptr);
}

TEST_P(Locations, ConfigurationIsLetters) {
    const DWORD device = ExchangeAddLine("Alpha", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    const unsigned char bytes[] = {0x00, 0x75, 0xFF};
    ExchangeSetDeviceConfig(device, bytes, sizeof bytes);
    Telephony telephony;
    EXPECT_EQ(telephony->GetDeviceConfig(device), "AAHFPP");
    telephony->SetDeviceConfig(device, "ABCDE");
    EXPECT_EQ(telephony->GetDeviceConfig(device), "ABCD");
    EXPECT_THAT(RecordText(), testing::HasSubstr("lineSetDevConfig device=0 class=COMM size=2"));
    telephony->SetDeviceConfig(device, "z\x7F\xFF ");
    EXPECT_EQ(telephony->GetDeviceConfig(device).size(), 4u);
    telephony->SetDeviceConfig(device, std::string(5000, 'H').c_str());
    EXPECT_EQ(telephony->GetDeviceConfig(device), std::string(5000, 'H'));
    telephony->SetDeviceConfig(device, "");
    EXPECT_EQ(telephony->GetDeviceConfig(device), "");
}

class LocationRules : public LocationTest {};

TEST_F(LocationRules, NoneIsCurrent) {
    Telephony telephony;
    EXPECT_THAT(telephony->Locations(), IsEmpty());
    EXPECT_EQ(telephony->GetCurrentLocationName(), "");
    EXPECT_EQ(AreaCodeAndCountry(telephony), "/1");
    TwoLocations();
    ExchangeSetCurrentLocation(12345);
    EXPECT_EQ(telephony->GetCurrentLocationName(), "");
    EXPECT_EQ(AreaCodeAndCountry(telephony), "/1");
}

TEST_F(LocationRules, IdIsOfTheFirstWithThatNameWhateverItsCase) {
    TwoLocations();
    ExchangeAddLocation("HOME", "0", 1, 8);
    Telephony telephony;
    EXPECT_EQ(telephony->GetLocationID("Home"), 7);
    EXPECT_EQ(telephony->GetLocationID("hOME"), 7);
    EXPECT_EQ(telephony->GetLocationID("OFFICE"), 3);
    EXPECT_EQ(telephony->GetLocationID("Offic"), -1);
    EXPECT_EQ(telephony->GetLocationID(""), -1);
    EXPECT_EQ(telephony->GetLocationID(nullptr), -1);
}

TEST_F(LocationRules, CurrentOneIsSetByItsName) {
    TwoLocations();
    Telephony telephony;
    ExchangeClearRecord();
    EXPECT_TRUE(telephony->SetCurrentLocation("home"));
    EXPECT_THAT(RecordText(), testing::HasSubstr("lineSetCurrentLocation location=7\n"));
    EXPECT_EQ(telephony->GetCurrentLocationName(), "Home");
    ExchangeClearRecord();
    EXPECT_FALSE(telephony->SetCurrentLocation("nowhere"));
    EXPECT_FALSE(telephony->SetCurrentLocation(nullptr));
    EXPECT_THAT(RecordText(), testing::Not(testing::HasSubstr("lineSetCurrentLocation")));
    EXPECT_EQ(telephony->GetCurrentLocationName(), "Home");
}

// Kept so: a known name is a success, whatever the service says.
TEST_F(LocationRules, ARefusalOfTheServiceIsNoFailure) {
    TwoLocations();
    Telephony telephony;
    ExchangeFail("lineSetCurrentLocation", operationFailed, INFINITE);
    EXPECT_TRUE(telephony->SetCurrentLocation("Home"));
    EXPECT_EQ(telephony->GetCurrentLocationName(), "Office");
}

// Failing by its answer, and a success that fills in nothing.
struct Answer {
    const char* name;
    LONG result;
};

class FailingLocations : public LocationTest, public testing::WithParamInterface<Answer> {};

INSTANTIATE_TEST_SUITE_P(Rows, FailingLocations,
                         testing::Values(Answer{"Fails", operationFailed},
                                         Answer{"NeverHasRoom", static_cast<LONG>(LINEERR_STRUCTURETOOSMALL)},
                                         Answer{"FillsInNothing", 0}),
                         [](const auto& row) { return row.param.name; });

TEST_P(FailingLocations, AllIsEmpty) {
    const DWORD device = ExchangeAddLine("Alpha", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    ExchangeSetDeviceConfig(device, "abc", 3);
    TwoLocations();
    ThreeCountries();
    Telephony telephony;
    for (const char* function : {"lineGetTranslateCapsA", "lineTranslateAddressA", "lineGetCountryA",
                                 "lineGetDevConfigA", "lineSetDevConfigA"})
        ExchangeFail(function, GetParam().result, INFINITE);
    EXPECT_THAT(telephony->Locations(), IsEmpty());
    EXPECT_EQ(telephony->GetCurrentLocationName(), "");
    EXPECT_EQ(AreaCodeAndCountry(telephony), "/1");
    EXPECT_EQ(telephony->GetLocationID("Home"), -1);
    EXPECT_FALSE(telephony->SetCurrentLocation("Home"));
    EXPECT_EQ(telephony->TranslatePhoneNumber(device, "555"), "");
    EXPECT_EQ(telephony->GetDeviceConfig(device), "");
    telephony->SetDeviceConfig(device, "AA");
    const ComboBox box;
    telephony->AddCountriesToCombo(box);
    EXPECT_THAT(RowsOf(box), IsEmpty());
    ExchangeFail("lineGetDevConfigA", 0, 0);
    EXPECT_EQ(telephony->GetDeviceConfig(device), "GBGCGD");
}

TEST_F(LocationRules, DisabledTelephonyAsksForNothing) {
    TwoLocations();
    ThreeCountries();
    ExchangeFail("lineInitializeExA", operationFailed, INFINITE);
    Telephony telephony;
    ASSERT_TRUE(telephony->IsDisabled());
    ExchangeClearRecord();
    EXPECT_THAT(telephony->Locations(), IsEmpty());
    EXPECT_EQ(telephony->GetCurrentLocationName(), "");
    EXPECT_EQ(AreaCodeAndCountry(telephony), "/1");
    EXPECT_EQ(telephony->GetLocationID("Home"), -1);
    EXPECT_FALSE(telephony->SetCurrentLocation("Home"));
    EXPECT_EQ(telephony->TranslatePhoneNumber(0, "555"), "");
    EXPECT_EQ(telephony->GetDeviceConfig(0), "");
    telephony->SetDeviceConfig(0, "AA");
    const ComboBox box;
    telephony->AddCountriesToCombo(box);
    EXPECT_THAT(RowsOf(box), IsEmpty());
    EXPECT_EQ(RecordText(), "");
}

// Through the control.
class ControlsLocations : public LocationTest {
  protected:
    ControlsLocations() { CoInitialize(nullptr); }
    ~ControlsLocations() override {
        control.Reset();
        CoUninitialize();
    }
    void Make() { ASSERT_EQ(NewObject(control), S_OK); }
    void SetPort(const char* name) { lstrcpynA(control->Properties().m_szPort, name, PortNameSize); }

    std::vector<std::string> Names(ITapiLocation* locations) {
        std::vector<std::string> names;
        LONG count = 0;
        EXPECT_EQ(locations->get_Count(&count), S_OK);
        for (LONG index = 1; index <= count; ++index) {
            _bstr_t text;
            EXPECT_EQ(locations->get_Item(index, text.GetAddress()), S_OK);
            names.push_back(Ansi(text));
        }
        return names;
    }
    std::vector<std::string> Names() {
        ComPtr<ITapiLocation> locations;
        EXPECT_EQ(control->get_Locations(&locations), S_OK);
        return locations ? Names(locations.Get()) : std::vector<std::string>();
    }
    std::string Translated(const wchar_t* number) {
        _bstr_t text;
        EXPECT_EQ(control->TranslatePhoneNumber(_bstr_t(number), text.GetAddress()), S_OK);
        return Ansi(text);
    }

    ComPtr<CTarnCommCtl> control;
};

TEST_F(ControlsLocations, AreReadOnce) {
    TwoLocations();
    Make();
    EXPECT_THAT(Names(), ElementsAre("Home", "Office"));
    ExchangeAddLocation("Hotel", "1", 1, 9);
    EXPECT_THAT(Names(), ElementsAre("Home", "Office"));
    ComPtr<CTarnCommCtl> other;
    ASSERT_EQ(NewObject(other), S_OK);
    ComPtr<ITapiLocation> locations;
    EXPECT_EQ(other->get_Locations(&locations), S_OK);
    EXPECT_THAT(Names(locations.Get()), ElementsAre("Home", "Office", "Hotel"));
}

TEST_F(ControlsLocations, AreReadAtTheFirstUse) {
    Make();
    TwoLocations();
    EXPECT_THAT(Names(), ElementsAre("Home", "Office"));
}

TEST_F(ControlsLocations, AreAskedForAgainAfterAFailure) {
    TwoLocations();
    Make();
    ExchangeFail("lineGetTranslateCapsA", operationFailed, 1);
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_THAT(Names(), ElementsAre("Home", "Office"));
}

TEST_F(ControlsLocations, AnIndexBelowOneIsInvalidAndOneBehindTheEndFails) {
    TwoLocations();
    Make();
    ComPtr<ITapiLocation> locations;
    ASSERT_EQ(control->get_Locations(&locations), S_OK);
    BSTR text = nullptr;
    EXPECT_EQ(locations->get_Item(0, &text), E_INVALIDARG);
    EXPECT_EQ(locations->get_Item(3, &text), E_FAIL);
    EXPECT_EQ(text, nullptr);
}

TEST_F(ControlsLocations, OutliveTheControl) {
    TwoLocations();
    Make();
    ComPtr<ITapiLocation> locations;
    ASSERT_EQ(control->get_Locations(&locations), S_OK);
    control.Reset();
    ExchangeReset();
    EXPECT_THAT(Names(locations.Get()), ElementsAre("Home", "Office"));
}

TEST_F(ControlsLocations, LocationIsReadAndSet) {
    TwoLocations();
    Make();
    _bstr_t name;
    EXPECT_EQ(control->get_Location(name.GetAddress()), S_OK);
    EXPECT_EQ(Ansi(name), "Office");
    EXPECT_EQ(control->put_Location(_bstr_t(L"home")), S_OK);
    EXPECT_EQ(control->get_Location(name.GetAddress()), S_OK);
    EXPECT_EQ(Ansi(name), "Home");
    EXPECT_EQ(control->put_Location(_bstr_t(L"nowhere")), GeneralFailure);
    EXPECT_EQ(control->get_Location(name.GetAddress()), S_OK);
    EXPECT_EQ(Ansi(name), "Home");
}

// Which line translates: the exchange tells its number.
struct TranslatingLine {
    const char* name;
    const char* port;
    const char* asked;
};

TEST_F(ControlsLocations, TheLineThatTranslatesANumber) {
    ExchangeAddLine("Desk", "", LINEMEDIAMODE_INTERACTIVEVOICE, nullptr, nullptr);
    ExchangeAddLine("Alpha", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    ExchangeAddLine("Beta", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    Make();
    const TranslatingLine rows[] = {
        {"ItsOwn", "beta", "lineTranslateAddress device=2"},
        {"FirstUsableForAPlainPort", "COM5", "lineTranslateAddress device=1"},
        {"FirstUsableForNoPort", "", "lineTranslateAddress device=1"},
    };
    for (const TranslatingLine& row : rows) {
        SCOPED_TRACE(row.name);
        SetPort(row.port);
        ExchangeClearRecord();
        EXPECT_EQ(Translated(L"555-12"), "55512");
        EXPECT_THAT(RecordText(), testing::HasSubstr(row.asked));
    }
}

TEST_F(ControlsLocations, WithoutALineNothingIsTranslated) {
    ExchangeAddLine("Desk", "", LINEMEDIAMODE_INTERACTIVEVOICE, nullptr, nullptr);
    Make();
    EXPECT_EQ(Translated(L"555"), "");
}

TEST_F(ControlsLocations, ConfigOfItsLine) {
    const DWORD device = ExchangeAddLine("Alpha", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    ExchangeSetDeviceConfig(device, "\x75", 1);
    Make();
    _bstr_t text;
    SetPort("COM5");
    EXPECT_EQ(control->get_Config(text.GetAddress()), S_OK);
    EXPECT_FALSE(text) << "a plain port has none";
    SetPort("alpha");
    EXPECT_EQ(control->get_Config(text.GetAddress()), S_OK);
    EXPECT_EQ(Ansi(text), "HF");
    EXPECT_EQ(control->put_Config(_bstr_t(L"ABAC")), S_OK);
    EXPECT_EQ(control->get_Config(text.GetAddress()), S_OK);
    EXPECT_EQ(Ansi(text), "ABAC");
}

TEST_F(ControlsLocations, TypeOfANameThatIsALine) {
    ExchangeAddLine("Alpha", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    Make();
    PortType type = PortType_Serial;
    EXPECT_EQ(control->GetPortType(_bstr_t(L"ALPHA"), &type), S_OK);
    EXPECT_EQ(type, PortType_Modem);
    EXPECT_EQ(control->GetPortType(_bstr_t(L"Beta"), &type), S_OK);
    EXPECT_EQ(type, PortType_Unknown);
}

// Room for the service's answers, and what each method then gives.
class LocationsWithoutMemory : public LocationTest, public testing::WithParamInterface<Service> {
  protected:
    LocationsWithoutMemory() { ExchangeDemandMore(GetParam().more); }
};

INSTANTIATE_TEST_SUITE_P(Rows, LocationsWithoutMemory,
                         testing::Values(Service{"ForTheFirstBlock", 0}, Service{"ForALongerOne", 100000}),
                         [](const auto& row) { return row.param.name; });

TEST_P(LocationsWithoutMemory, AllIsEmptyUntilThereIsSome) {
    const DWORD device = ExchangeAddLine("Alpha", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    ExchangeSetDeviceConfig(device, "abc", 3);
    TwoLocations();
    ThreeCountries();
    Telephony telephony;
    const ComboBox box;
    const size_t most = GetParam().more / 2;
    const auto without = [&](auto&& work) {
        const host::MemoryLimit limit(most);
        work();
        return limit.Refusals() > 0;
    };
    std::vector<std::string> names = {"before"};
    std::string text = "before";
    DWORD country = 99;
    int id = 0;
    bool isSet = true;
    EXPECT_TRUE(without([&] { names = telephony->Locations(); }));
    EXPECT_THAT(names, IsEmpty());
    EXPECT_TRUE(without([&] { text = telephony->GetCurrentLocationName(); }));
    EXPECT_EQ(text, "");
    text = "before";
    EXPECT_TRUE(without([&] { telephony->GetCurrentLocationCountryIDAndAreaCode(country, text); }));
    EXPECT_EQ(text + "/" + std::to_string(country), "/1");
    EXPECT_TRUE(without([&] { id = telephony->GetLocationID("Home"); }));
    EXPECT_EQ(id, -1);
    EXPECT_TRUE(without([&] { isSet = telephony->SetCurrentLocation("Home"); }));
    EXPECT_FALSE(isSet);
    text = "before";
    EXPECT_TRUE(without([&] { text = telephony->TranslatePhoneNumber(device, "555"); }));
    EXPECT_EQ(text, "");
    text = "before";
    EXPECT_TRUE(without([&] { text = telephony->GetDeviceConfig(device); }));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(without([&] { telephony->AddCountriesToCombo(box); }));
    EXPECT_THAT(RowsOf(box), IsEmpty());
    EXPECT_THAT(telephony->Locations(), ElementsAre("Home", "Office"));
    EXPECT_EQ(telephony->GetCurrentLocationName(), "Office");
    EXPECT_EQ(telephony->TranslatePhoneNumber(device, "555"), "555");
    EXPECT_EQ(telephony->GetDeviceConfig(device), "GBGCGD");
    telephony->AddCountriesToCombo(box);
    EXPECT_EQ(RowsOf(box).size(), 3u);
}

} // namespace
