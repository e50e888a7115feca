// What a line can do.
#include "messages.h"
#include "plant.h"
#include "record.h"
#include "structures.h"
#include "versions.h"

namespace {

// The structure as version 2.0 has it: what came later is not filled in, and its room is for texts.
constexpr DWORD fixedSize = offsetof(LINEDEVCAPS, PermanentLineGuid);

// As a service on a real machine numbers them: not from 0 on.
constexpr DWORD firstPermanentId = 0x100;

LINEDEVCAPS FixedPart(DWORD device, const PlantLine& line) {
    LINEDEVCAPS caps = {};
    caps.dwPermanentLineID = firstPermanentId + device;
    caps.dwStringFormat = STRINGFORMAT_ASCII;
    caps.dwAddressModes = LINEADDRESSMODE_ADDRESSID;
    caps.dwNumAddresses = 1;
    caps.dwBearerModes = LINEBEARERMODE_VOICE;
    caps.dwMaxRate = 115200;
    caps.dwMediaModes = line.mediaModes;
    caps.dwMaxNumActiveCalls = 1;
    caps.dwRingModes = 1;
    caps.dwLineStates = LINEDEVSTATE_RINGING;
    return caps;
}

LONG GiveCapabilities(DWORD device, const PlantLine& line, LINEDEVCAPS* to) {
    Structure<LINEDEVCAPS> answer(FixedPart(device, line), fixedSize);
    LINEDEVCAPS& full = answer.Full();
    answer.PutText(line.provider, full.dwProviderInfoSize, full.dwProviderInfoOffset);
    answer.PutText(line.name, full.dwLineNameSize, full.dwLineNameOffset);
    return answer.Deliver(to);
}

} // namespace

LONG WINAPI lineGetDevCapsA(HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPIVersion, DWORD,
                            LPLINEDEVCAPS lpLineDevCaps) {
    return Serve("lineGetDevCapsA", Argument("device", dwDeviceID), [&] {
        if (!Applications().Has(hLineApp))
            return Failure(LINEERR_INVALAPPHANDLE);
        const PlantLine* line = FindDevice(dwDeviceID);
        if (!line)
            return Failure(LINEERR_BADDEVICEID);
        if (!IsVersion(dwAPIVersion))
            return Failure(LINEERR_INCOMPATIBLEAPIVERSION);
        return GiveCapabilities(dwDeviceID, *line, lpLineDevCaps);
    });
}
