#include "lines.h"

#include "calls.h"
#include "exchange.h"
#include "messages.h"
#include "plant.h"
#include "record.h"
#include "versions.h"

#include <vector>

namespace {

std::string PrivilegeWord(DWORD privileges) {
    switch (privileges) {
    case LINECALLPRIVILEGE_NONE:
        return "none";
    case LINECALLPRIVILEGE_MONITOR:
        return "monitor";
    case LINECALLPRIVILEGE_OWNER:
        return "owner";
    case LINECALLPRIVILEGE_MONITOR | LINECALLPRIVILEGE_OWNER:
        return "monitor+owner";
    default:
        return "";
    }
}

LONG CheckOpening(DWORD device, DWORD version, DWORD privileges, DWORD mediaModes) {
    const PlantLine* line = FindDevice(device);
    if (!line)
        return Failure(LINEERR_BADDEVICEID);
    if (!IsVersion(version))
        return Failure(LINEERR_INCOMPATIBLEAPIVERSION);
    if (PrivilegeWord(privileges).empty())
        return Failure(LINEERR_INVALPRIVSELECT);
    // Media modes matter to owners only: they are the calls they want.
    const bool known = mediaModes && !(mediaModes & ~line->mediaModes);
    return (privileges & LINECALLPRIVILEGE_OWNER) && !known ? Failure(LINEERR_INVALMEDIAMODE) : 0;
}

} // namespace

HandleTable<OpenLine>& OpenLines() {
    static auto* lines = new HandleTable<OpenLine>;
    return *lines;
}

void CloseLine(HLINE line) {
    EndCallsOf(line);
    OpenLines().Remove(line);
}

void CloseLinesOf(HLINEAPP application) {
    std::vector<HLINE> its;
    for (const auto& [handle, line] : OpenLines())
        if (line.application == application)
            its.push_back(handle);
    for (const HLINE line : its)
        CloseLine(line);
}

void QueueForDevice(DWORD device, DWORD messageId, DWORD_PTR param1, DWORD_PTR param2, DWORD_PTR param3) {
    for (const auto& [handle, line] : OpenLines())
        if (line.device == device)
            QueueMessage(line.application, {handle, messageId, line.instance, param1, param2, param3});
}

void WINAPI ExchangeSendMessage(DWORD device, DWORD messageId, DWORD_PTR param1, DWORD_PTR param2,
                                DWORD_PTR param3) {
    const std::lock_guard guard(ExchangeLock());
    QueueForDevice(device, messageId, param1, param2, param3);
}

LONG WINAPI lineOpenA(HLINEAPP hLineApp, DWORD dwDeviceID, LPHLINE lphLine, DWORD dwAPIVersion, DWORD,
                      DWORD_PTR dwCallbackInstance, DWORD dwPrivileges, DWORD dwMediaModes,
                      LPLINECALLPARAMS const) {
    const std::string arguments = Argument("device", dwDeviceID) +
                                  Argument("privileges", PrivilegeWord(dwPrivileges)) +
                                  Argument("media", Hex(dwMediaModes));
    return Serve("lineOpenA", arguments, [&] {
        if (!Applications().Has(hLineApp))
            return Failure(LINEERR_INVALAPPHANDLE);
        if (!lphLine)
            return Failure(LINEERR_INVALPOINTER);
        if (const LONG result = CheckOpening(dwDeviceID, dwAPIVersion, dwPrivileges, dwMediaModes))
            return result;
        *lphLine = OpenLines().Add({hLineApp, dwDeviceID, dwPrivileges, dwCallbackInstance});
        return LONG{0};
    });
}

LONG WINAPI lineClose(HLINE hLine) {
    return Serve("lineClose", "", [&] {
        if (!OpenLines().Has(hLine))
            return Failure(LINEERR_INVALLINEHANDLE);
        CloseLine(hLine);
        return LONG{0};
    });
}

// Nobody counts rings here; the record shows the number.
LONG WINAPI lineSetNumRings(HLINE hLine, DWORD dwAddressID, DWORD dwNumRings) {
    const std::string arguments = Argument("address", dwAddressID) + Argument("rings", dwNumRings);
    return Serve("lineSetNumRings", arguments,
                 [&] { return OpenLines().Has(hLine) ? 0 : Failure(LINEERR_INVALLINEHANDLE); });
}
