#include "doubles.h"

#include "diagnostics/swallow.h"
#include "modem/TapiApp.h"

#include <stdexcept>

namespace doubles {

Service service;
std::vector<std::string> reports;

void Reset() {
    service = {};
    reports.clear();
}

namespace {

void Enter(const char* szMember) {
    if (service.fails == szMember)
        throw std::runtime_error(szMember);
}

} // namespace

} // namespace doubles

using doubles::service;

void SwallowException(const char* szPlace) noexcept {
    doubles::reports.push_back(szPlace);
}

CTapiApp::CTapiApp(CTapiOwner& owner, const TapiLimits& theLimits) : pControl(owner), limits(theLimits) {}

CTapiApp::~CTapiApp() = default;

int CTapiApp::FindModem(const char* szName) const {
    doubles::Enter("FindModem");
    for (size_t device = 0; device < service.lines.size(); ++device)
        if (lstrcmpiA(service.lines[device].c_str(), szName) == 0)
            return static_cast<int>(device);
    return noLine;
}

bool CTapiApp::IsDataModem(DWORD device) const {
    return device < service.lines.size() && !service.lines[device].empty();
}

bool CTapiApp::FindNextDataModem(DWORD& device) const {
    while (device < service.lines.size() && !IsDataModem(device))
        ++device;
    return device < service.lines.size();
}

std::string CTapiApp::GetModemName(DWORD device) const {
    return IsDataModem(device) ? service.lines[device] : "";
}

void CTapiApp::ConfigDialog(DWORD device, HWND hOwner) const {
    char title[32] = {};
    GetWindowTextA(hOwner, title, sizeof title);
    service.configured.push_back(service.lines.at(device) + " over " + title);
}

void CTapiApp::AddCountriesToCombo(HWND hCombo) const {
    doubles::Enter("AddCountriesToCombo");
    for (const doubles::Country& country : service.countries) {
        const LRESULT row = SendMessageA(hCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(country.szRow));
        SendMessageA(hCombo, CB_SETITEMDATA, static_cast<WPARAM>(row), static_cast<LPARAM>(country.id));
    }
}

void CTapiApp::GetCurrentLocationCountryIDAndAreaCode(DWORD& countryId, std::string& areaCode) const {
    doubles::Enter("GetCurrentLocation");
    countryId = service.countryId;
    areaCode = service.areaCode;
}
