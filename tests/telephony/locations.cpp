// Where calls are placed from, and how a number is dialled from there.
#include "messages.h"
#include "plant.h"
#include "record.h"
#include "structures.h"
#include "versions.h"

#include <algorithm>

namespace {

template <class Entry>
DWORD OffsetOf(DWORD list, std::size_t row) {
    return list + static_cast<DWORD>(row * sizeof(Entry));
}

// Room for that many entries, to be changed one by one.
template <class Entry, class Head>
DWORD PutList(Structure<Head>& answer, std::size_t count) {
    const std::vector<Entry> none(count);
    return answer.PutBytes(none.data(), static_cast<DWORD>(count * sizeof(Entry)));
}

// A service may be asked for its locations before there is an application.
bool MayAsk(HLINEAPP application) {
    return !application || Applications().Has(application);
}

DWORD CodeOf(DWORD countryId) {
    const Country* country = FindCountry(countryId);
    return country ? country->code : countryId;
}

const Location* FindLocation(DWORD permanentId) {
    const auto& locations = ThePlant().locations;
    const auto found = std::find_if(locations.begin(), locations.end(), [=](const Location& location) {
        return location.permanentId == permanentId;
    });
    return found == locations.end() ? nullptr : &*found;
}

void PutLocation(Structure<LINETRANSLATECAPS>& answer, DWORD offset, const Location& location) {
    LINELOCATIONENTRY entry = {};
    entry.dwPermanentLocationID = location.permanentId;
    entry.dwCountryID = location.countryId;
    entry.dwCountryCode = CodeOf(location.countryId);
    answer.PutText(location.name, entry.dwLocationNameSize, entry.dwLocationNameOffset);
    answer.PutText(location.areaCode, entry.dwCityCodeSize, entry.dwCityCodeOffset);
    answer.Change(offset, &entry, sizeof entry);
}

LONG GiveLocations(LINETRANSLATECAPS* to) {
    LINETRANSLATECAPS fixed = {};
    fixed.dwCurrentLocationID = ThePlant().currentLocation;
    Structure<LINETRANSLATECAPS> answer(fixed);
    const auto& locations = ThePlant().locations;
    const DWORD list = PutList<LINELOCATIONENTRY>(answer, locations.size());
    for (std::size_t row = 0; row < locations.size(); ++row)
        PutLocation(answer, OffsetOf<LINELOCATIONENTRY>(list, row), locations[row]);
    LINETRANSLATECAPS& full = answer.Full();
    full.dwNumLocations = static_cast<DWORD>(locations.size());
    full.dwLocationListSize = OffsetOf<LINELOCATIONENTRY>(0, locations.size());
    full.dwLocationListOffset = list;
    return answer.Deliver(to);
}

void PutCountry(Structure<LINECOUNTRYLIST>& answer, DWORD offset, const Country& country, DWORD nextId) {
    LINECOUNTRYENTRY entry = {};
    entry.dwCountryID = country.id;
    entry.dwCountryCode = country.code;
    entry.dwNextCountryID = nextId;
    answer.PutText(country.name, entry.dwCountryNameSize, entry.dwCountryNameOffset);
    answer.Change(offset, &entry, sizeof entry);
}

LONG GiveCountries(const std::vector<Country>& countries, LINECOUNTRYLIST* to) {
    Structure<LINECOUNTRYLIST> answer(LINECOUNTRYLIST{});
    const DWORD list = PutList<LINECOUNTRYENTRY>(answer, countries.size());
    for (std::size_t row = 0; row < countries.size(); ++row)
        PutCountry(answer, OffsetOf<LINECOUNTRYENTRY>(list, row), countries[row],
                   row + 1 < countries.size() ? countries[row + 1].id : 0);
    LINECOUNTRYLIST& full = answer.Full();
    full.dwNumCountries = static_cast<DWORD>(countries.size());
    full.dwCountryListSize = OffsetOf<LINECOUNTRYENTRY>(0, countries.size());
    full.dwCountryListOffset = list;
    return answer.Deliver(to);
}

std::string DialableOf(const std::string& number) {
    for (const Translation& row : ThePlant().translations)
        if (row.from == number)
            return row.to;
    return DigitsOf(number);
}

LONG GiveTranslation(const std::string& number, LINETRANSLATEOUTPUT* to) {
    const Location* here = FindLocation(ThePlant().currentLocation);
    LINETRANSLATEOUTPUT fixed = {};
    fixed.dwCurrentCountry = fixed.dwDestCountry = here ? here->countryId : 0;
    fixed.dwTranslateResults =
        number.starts_with('+') ? LINETRANSLATERESULT_CANONICAL : LINETRANSLATERESULT_NOTRANSLATION;
    Structure<LINETRANSLATEOUTPUT> answer(fixed);
    LINETRANSLATEOUTPUT& full = answer.Full();
    answer.PutText(DialableOf(number), full.dwDialableStringSize, full.dwDialableStringOffset);
    answer.PutText(number, full.dwDisplayableStringSize, full.dwDisplayableStringOffset);
    return answer.Deliver(to);
}

} // namespace

LONG WINAPI lineGetTranslateCapsA(HLINEAPP hLineApp, DWORD dwAPIVersion,
                                  LPLINETRANSLATECAPS lpTranslateCaps) {
    return Serve("lineGetTranslateCapsA", "", [&] {
        if (!MayAsk(hLineApp))
            return Failure(LINEERR_INVALAPPHANDLE);
        return IsVersion(dwAPIVersion) ? GiveLocations(lpTranslateCaps)
                                       : Failure(LINEERR_INCOMPATIBLEAPIVERSION);
    });
}

LONG WINAPI lineSetCurrentLocation(HLINEAPP hLineApp, DWORD dwLocation) {
    return Serve("lineSetCurrentLocation", Argument("location", dwLocation), [&] {
        if (!MayAsk(hLineApp))
            return Failure(LINEERR_INVALAPPHANDLE);
        if (!FindLocation(dwLocation))
            return Failure(LINEERR_INVALLOCATION);
        ThePlant().currentLocation = dwLocation;
        return LONG{0};
    });
}

LONG WINAPI lineGetCountryA(DWORD dwCountryID, DWORD dwAPIVersion, LPLINECOUNTRYLIST lpLineCountryList) {
    return Serve("lineGetCountryA", Argument("country", dwCountryID), [&] {
        if (!IsVersion(dwAPIVersion))
            return Failure(LINEERR_INCOMPATIBLEAPIVERSION);
        if (!dwCountryID)
            return GiveCountries(ThePlant().countries, lpLineCountryList);
        const Country* country = FindCountry(dwCountryID);
        return country ? GiveCountries({*country}, lpLineCountryList) : Failure(LINEERR_INVALCOUNTRYCODE);
    });
}

LONG WINAPI lineTranslateAddressA(HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPIVersion,
                                  LPCSTR lpszAddressIn, DWORD dwCard, DWORD dwTranslateOptions,
                                  LPLINETRANSLATEOUTPUT lpTranslateOutput) {
    const std::string number = TextOf(lpszAddressIn);
    const std::string arguments = Argument("device", dwDeviceID) + Argument("number", number) +
                                  Argument("card", dwCard) + Argument("options", dwTranslateOptions);
    return Serve("lineTranslateAddressA", arguments, [&] {
        if (!MayAsk(hLineApp))
            return Failure(LINEERR_INVALAPPHANDLE);
        if (!FindDevice(dwDeviceID))
            return Failure(LINEERR_BADDEVICEID);
        if (!IsVersion(dwAPIVersion))
            return Failure(LINEERR_INCOMPATIBLEAPIVERSION);
        return lpszAddressIn ? GiveTranslation(number, lpTranslateOutput) : Failure(LINEERR_INVALPOINTER);
    });
}
