// The settings of a line's device, which only the device understands.
#include "plant.h"
#include "record.h"
#include "structures.h"

namespace {

constexpr char configClass[] = "COMM";

LONG Check(DWORD device, const char* deviceClass) {
    if (!FindDevice(device))
        return Failure(LINEERR_BADDEVICEID);
    return _stricmp(TextOf(deviceClass).c_str(), configClass) == 0 ? 0 : Failure(LINEERR_INVALDEVICECLASS);
}

std::string ArgumentsOf(DWORD device, const char* deviceClass) {
    return Argument("device", device) + Argument("class", TextOf(deviceClass));
}

LONG GiveConfig(const std::vector<std::byte>& config, VARSTRING* to) {
    VARSTRING fixed = {};
    fixed.dwStringFormat = STRINGFORMAT_BINARY;
    Structure<VARSTRING> answer(fixed);
    VARSTRING& full = answer.Full();
    full.dwStringSize = static_cast<DWORD>(config.size());
    full.dwStringOffset = answer.PutBytes(config.data(), full.dwStringSize);
    return answer.Deliver(to);
}

} // namespace

LONG WINAPI lineGetDevConfigA(DWORD dwDeviceID, LPVARSTRING lpDeviceConfig, LPCSTR lpszDeviceClass) {
    return Serve("lineGetDevConfigA", ArgumentsOf(dwDeviceID, lpszDeviceClass), [&] {
        if (const LONG result = Check(dwDeviceID, lpszDeviceClass))
            return result;
        return GiveConfig(FindDevice(dwDeviceID)->config, lpDeviceConfig);
    });
}

LONG WINAPI lineSetDevConfigA(DWORD dwDeviceID, LPVOID const lpDeviceConfig, DWORD dwSize,
                              LPCSTR lpszDeviceClass) {
    const std::string arguments = ArgumentsOf(dwDeviceID, lpszDeviceClass) + Argument("size", dwSize);
    return Serve("lineSetDevConfigA", arguments, [&] {
        if (const LONG result = Check(dwDeviceID, lpszDeviceClass))
            return result;
        if (!lpDeviceConfig)
            return Failure(LINEERR_INVALPOINTER);
        const auto* first = static_cast<const std::byte*>(lpDeviceConfig);
        FindDevice(dwDeviceID)->config.assign(first, first + dwSize);
        return LONG{0};
    });
}

// No dialog comes up: nobody would close it.
LONG WINAPI lineConfigDialogA(DWORD dwDeviceID, HWND hwndOwner, LPCSTR lpszDeviceClass) {
    const std::string arguments =
        ArgumentsOf(dwDeviceID, lpszDeviceClass) + Argument("owner", hwndOwner ? 1 : 0);
    return Serve("lineConfigDialogA", arguments, [&] { return Check(dwDeviceID, lpszDeviceClass); });
}
