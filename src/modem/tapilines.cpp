// The lines of the telephony service, and which of them are data modems.
#include "core/wall.h"
#include "TapiApp.h"
#include "tapiblock.h"
#include "tapilog.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace {

constexpr DWORD lowestVersion = 0x10004;
constexpr DWORD highestVersion = 0x20000;
constexpr DWORD capsSize = 268; // to begin with

// Bytes of a name that a control keeps of its port's. Longer names are compared as far as that.
constexpr int comparedOfName = 99;

using LineCaps = TapiBlock<LINEDEVCAPS>;

std::optional<LineCaps> CapsOf(const TapiService& service, HLINEAPP hLineApp, DWORD device, DWORD version) {
    LineCaps caps(capsSize);
    const LONG result = caps.Fill(
        [&](LINEDEVCAPS* block) { return service.lineGetDevCapsA(hLineApp, device, version, 0, block); });
    if (result == 0)
        return caps;
    LogTapi("lineGetDevCaps returned %ld\n", result);
    return std::nullopt;
}

bool TakesData(const std::optional<LineCaps>& caps) {
    return caps && ((*caps)->dwMediaModes & LINEMEDIAMODE_DATAMODEM);
}

bool IsSameName(const std::string& name, const char* szName) {
    const auto cut = [](size_t length) { return static_cast<int>(std::min<size_t>(length, comparedOfName)); };
    return CompareStringA(LOCALE_USER_DEFAULT, NORM_IGNORECASE, name.c_str(), cut(name.size()), szName,
                          cut(std::strlen(szName))) == CSTR_EQUAL;
}

std::string NameIn(const LineCaps& caps) {
    return caps.TextAt(caps->dwLineNameOffset, caps->dwLineNameSize);
}

} // namespace

DWORD CTapiApp::NegotiateVersion(DWORD device) const {
    DWORD version = 0;
    LINEEXTENSIONID extension = {};
    if (bDisabled || pService->lineNegotiateAPIVersion(hLineApp, device, lowestVersion, highestVersion,
                                                       &version, &extension) != 0)
        return dwAPIVersion;
    return version ? version : dwAPIVersion;
}

bool CTapiApp::IsDataModem(DWORD device) const {
    return BehindWall("IsDataModem", [&] {
        return !bDisabled && TakesData(CapsOf(*pService, hLineApp, device, NegotiateVersion(device)));
    });
}

bool CTapiApp::FindNextDataModem(DWORD& device) const {
    return BehindWall("FindNextDataModem", [&] {
        if (bDisabled)
            return false;
        for (DWORD next = device; next < dwNumDevs; ++next)
            if (IsDataModem(next)) {
                device = next;
                return true;
            }
        return false;
    });
}

std::string CTapiApp::GetModemName(DWORD device) const {
    return BehindWall("GetModemName", [&]() -> std::string {
        if (bDisabled)
            return "";
        const auto caps = CapsOf(*pService, hLineApp, device, NegotiateVersion(device));
        return TakesData(caps) ? NameIn(*caps) : "";
    });
}

bool CTapiApp::GetModemName(DWORD device, std::string& name, std::string& provider,
                            DWORD& permanentId) const {
    name.clear();
    provider.clear();
    permanentId = 0;
    return BehindWall("GetModemName", [&] {
        if (bDisabled)
            return false;
        const auto caps = CapsOf(*pService, hLineApp, device, NegotiateVersion(device));
        if (!TakesData(caps))
            return false;
        name = NameIn(*caps);
        provider = caps->TextAt((*caps)->dwProviderInfoOffset, (*caps)->dwProviderInfoSize);
        permanentId = (*caps)->dwPermanentLineID;
        return true;
    });
}

DWORD CTapiApp::GetMaximumSpeed(DWORD device) const {
    return BehindWall("GetMaximumSpeed", [&]() -> DWORD {
        if (bDisabled)
            return 0;
        const auto caps = CapsOf(*pService, hLineApp, device, NegotiateVersion(device));
        return TakesData(caps) ? (*caps)->dwMaxRate : 0;
    });
}

// No line is found by no name: lines that take no data have none.
int CTapiApp::FindModem(const char* szName) const {
    const DWORD found = BehindWall("FindModem", [&]() -> DWORD {
        if (bDisabled || !szName || !*szName)
            return 0;
        for (DWORD device = 0; device < dwNumDevs; ++device)
            if (IsSameName(GetModemName(device), szName))
                return device + 1;
        return 0;
    });
    return found ? static_cast<int>(found - 1) : noLine;
}

void CTapiApp::ConfigDialog(DWORD device, HWND hOwner) const {
    if (bDisabled)
        return;
    const LONG result = pService->lineConfigDialogA.function(device, hOwner, "COMM");
    if (result != 0)
        LogTapi("lineConfigDialog returned %ld\n", result);
}
