// The places from which this machine dials, the countries, and numbers as the current place dials them.
#include "core/wall.h"
#include "phonenumber.h"
#include "TapiApp.h"
#include "tapiblock.h"

#include <algorithm>

namespace {

constexpr int noLocation = -1;
constexpr DWORD noCard = 0;
constexpr DWORD noOptions = 0;
constexpr DWORD allCountries = 0;
constexpr DWORD countryOfNoLocation = 1;

struct Location {
    DWORD id;
    DWORD countryId;
    std::string name;
    std::string areaCode;
};

struct LocationEntries {
    std::vector<Location> all;
    DWORD current = 0; // its id
};

// The entries of a list in a block of the service; those that lie outside of the block are left out.
template <class Entry, class Head, class Take>
void ForEachEntry(const TapiBlock<Head>& block, DWORD offset, DWORD count, Take&& take) {
    for (DWORD i = 0; i < count; ++i) {
        const std::byte* bytes = block.At(offset, sizeof(Entry));
        if (!bytes)
            return;
        Entry entry;
        std::memcpy(&entry, bytes, sizeof entry); // the service need not align it
        take(entry);
        offset += static_cast<DWORD>(sizeof entry);
    }
}

LocationEntries GetLocationEntries(const TapiService& service, HLINEAPP hLineApp, DWORD version) {
    LocationEntries entries;
    TapiBlock<LINETRANSLATECAPS> caps;
    if (caps.Fill([&](LINETRANSLATECAPS* block) {
            return service.lineGetTranslateCapsA(hLineApp, version, block);
        }) != 0)
        return entries;
    const auto take = [&](const LINELOCATIONENTRY& entry) {
        entries.all.push_back({entry.dwPermanentLocationID, entry.dwCountryID,
                               caps.TextAt(entry.dwLocationNameOffset, entry.dwLocationNameSize),
                               caps.TextAt(entry.dwCityCodeOffset, entry.dwCityCodeSize)});
    };
    ForEachEntry<LINELOCATIONENTRY>(caps, caps->dwLocationListOffset, caps->dwNumLocations, take);
    entries.current = caps->dwCurrentLocationID;
    return entries;
}

const Location* CurrentOf(const LocationEntries& entries) {
    const auto found = std::find_if(entries.all.begin(), entries.all.end(),
                                    [&](const Location& location) { return location.id == entries.current; });
    return found == entries.all.end() ? nullptr : &*found;
}

struct CountryItem {
    std::string text;
    DWORD id;
};

std::vector<CountryItem> CountriesOf(const TapiService& service, DWORD version) {
    std::vector<CountryItem> items;
    TapiBlock<LINECOUNTRYLIST> list;
    if (list.Fill([&](LINECOUNTRYLIST* block) {
            return service.lineGetCountryA(allCountries, version, block);
        }) != 0)
        return items;
    const auto take = [&](const LINECOUNTRYENTRY& entry) {
        const std::string name = list.TextAt(entry.dwCountryNameOffset, entry.dwCountryNameSize);
        items.push_back({CountryRow(name, entry.dwCountryCode), entry.dwCountryID});
    };
    ForEachEntry<LINECOUNTRYENTRY>(list, list->dwCountryListOffset, list->dwNumCountries, take);
    return items;
}

} // namespace

std::vector<std::string> CTapiApp::Locations() const {
    return BehindWall("GetLocationEntries", [this] {
        std::vector<std::string> names;
        if (bDisabled)
            return names;
        for (Location& location : GetLocationEntries(*pService, hLineApp, dwAPIVersion).all)
            names.push_back(std::move(location.name));
        return names;
    });
}

std::string CTapiApp::GetCurrentLocationName() const {
    return BehindWall("GetCurrentLocationName", [this]() -> std::string {
        if (bDisabled)
            return "";
        const LocationEntries entries = GetLocationEntries(*pService, hLineApp, dwAPIVersion);
        const Location* current = CurrentOf(entries);
        return current ? current->name : "";
    });
}

void CTapiApp::GetCurrentLocationCountryIDAndAreaCode(DWORD& countryId, std::string& areaCode) const {
    countryId = countryOfNoLocation;
    areaCode.clear();
    BehindWall("GetCurrentLocationCountryIDAndAreaCode", [&] {
        if (bDisabled)
            return;
        const LocationEntries entries = GetLocationEntries(*pService, hLineApp, dwAPIVersion);
        if (const Location* current = CurrentOf(entries)) {
            areaCode = current->areaCode;
            countryId = current->countryId;
        }
    });
}

int CTapiApp::GetLocationID(const char* szName) const {
    int id = noLocation;
    BehindWall("GetLocationID", [&] {
        if (bDisabled || !szName)
            return;
        for (const Location& location : GetLocationEntries(*pService, hLineApp, dwAPIVersion).all)
            if (lstrcmpiA(location.name.c_str(), szName) == 0) {
                id = static_cast<int>(location.id);
                return;
            }
    });
    return id;
}

// Whether the service takes a location that it has told of is its own affair; nobody asks for its answer.
bool CTapiApp::SetCurrentLocation(const char* szName) {
    return BehindWall("SetCurrentLocation", [&] {
        const int id = GetLocationID(szName);
        if (id == noLocation)
            return false;
        pService->lineSetCurrentLocation(hLineApp, static_cast<DWORD>(id));
        return true;
    });
}

std::string CTapiApp::TranslatePhoneNumber(DWORD device, const char* szNumber) const {
    return BehindWall("TranslatePhoneNumber", [&]() -> std::string {
        if (bDisabled || !szNumber)
            return "";
        const DWORD version = NegotiateVersion(device);
        TapiBlock<LINETRANSLATEOUTPUT> output;
        if (output.Fill([&](LINETRANSLATEOUTPUT* block) {
                return pService->lineTranslateAddressA(hLineApp, device, version, szNumber, noCard, noOptions,
                                                       block);
            }) != 0)
            return "";
        return output.TextAt(output->dwDialableStringOffset, output->dwDialableStringSize);
    });
}

void CTapiApp::AddCountriesToCombo(HWND hCombo) const {
    const auto items = BehindWall("AddCountriesToCombo", [this] {
        return bDisabled ? std::vector<CountryItem>() : CountriesOf(*pService, dwAPIVersion);
    });
    for (const CountryItem& item : items) { // the box's owner runs in each message
        const LRESULT row =
            SendMessageA(hCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.text.c_str()));
        if (row >= 0)
            SendMessageA(hCombo, CB_SETITEMDATA, static_cast<WPARAM>(row), static_cast<LPARAM>(item.id));
    }
}
