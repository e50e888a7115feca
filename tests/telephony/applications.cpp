// An application's start and end, and the version it gets.
#include "exchangefile.h"
#include "lines.h"
#include "messages.h"
#include "plant.h"
#include "record.h"
#include "versions.h"

#include <algorithm>

namespace {

LONG CheckParameters(LINEINITIALIZEEXPARAMS* parameters) {
    if (!parameters)
        return Failure(LINEERR_INVALPOINTER);
    if (parameters->dwTotalSize < sizeof *parameters)
        return Failure(LINEERR_STRUCTURETOOSMALL);
    // Hidden windows and completion ports are for other services.
    if (parameters->dwOptions != LINEINITIALIZEEXOPTION_USEEVENT)
        return Failure(LINEERR_INVALPARAM);
    return 0;
}

LONG StartApplication(HLINEAPP& handle, DWORD& deviceCount, DWORD& version,
                      LINEINITIALIZEEXPARAMS& parameters) {
    if (version < lowestVersion)
        return Failure(LINEERR_INCOMPATIBLEAPIVERSION);
    version = std::min(version, highestVersion);
    deviceCount = static_cast<DWORD>(ThePlant().lines.size());
    handle = Applications().Add({});
    parameters.dwNeededSize = parameters.dwUsedSize = sizeof parameters;
    parameters.Handles.hEvent = Applications().Find(handle)->event.get();
    return 0;
}

} // namespace

LONG WINAPI lineInitializeExA(LPHLINEAPP lphLineApp, HINSTANCE, LINECALLBACK, LPCSTR lpszFriendlyAppName,
                              LPDWORD lpdwNumDevs, LPDWORD lpdwAPIVersion,
                              LPLINEINITIALIZEEXPARAMS lpLineInitializeExParams) {
    const std::string arguments = Argument("name", TextOf(lpszFriendlyAppName)) +
                                  Argument("version", Hex(lpdwAPIVersion ? *lpdwAPIVersion : 0));
    return Serve("lineInitializeExA", arguments, [&] {
        if (!lphLineApp || !lpdwNumDevs || !lpdwAPIVersion)
            return Failure(LINEERR_INVALPOINTER);
        if (const LONG result = CheckParameters(lpLineInitializeExParams))
            return result;
        ReadExchangeFileOnce();
        return StartApplication(*lphLineApp, *lpdwNumDevs, *lpdwAPIVersion, *lpLineInitializeExParams);
    });
}

LONG WINAPI lineShutdown(HLINEAPP hLineApp) {
    return Serve("lineShutdown", "", [&] {
        if (!Applications().Has(hLineApp))
            return Failure(LINEERR_INVALAPPHANDLE);
        CloseLinesOf(hLineApp);
        Applications().Remove(hLineApp);
        return LONG{0};
    });
}

LONG WINAPI lineNegotiateAPIVersion(HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPILowVersion,
                                    DWORD dwAPIHighVersion, LPDWORD lpdwAPIVersion,
                                    LPLINEEXTENSIONID lpExtensionID) {
    const std::string arguments = Argument("device", dwDeviceID) + Argument("low", Hex(dwAPILowVersion)) +
                                  Argument("high", Hex(dwAPIHighVersion));
    return Serve("lineNegotiateAPIVersion", arguments, [&] {
        if (!Applications().Has(hLineApp))
            return Failure(LINEERR_INVALAPPHANDLE);
        if (!FindDevice(dwDeviceID))
            return Failure(LINEERR_BADDEVICEID);
        if (!lpdwAPIVersion)
            return Failure(LINEERR_INVALPOINTER);
        if (dwAPILowVersion > dwAPIHighVersion || dwAPILowVersion > highestVersion ||
            dwAPIHighVersion < lowestVersion)
            return Failure(LINEERR_INCOMPATIBLEAPIVERSION);
        *lpdwAPIVersion = std::min(dwAPIHighVersion, highestVersion);
        if (lpExtensionID)
            *lpExtensionID = {};
        return LONG{0};
    });
}
