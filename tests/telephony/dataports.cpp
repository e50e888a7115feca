// The data of a connected call: a handle of its line's port, which belongs to the one who asked.
#include "calls.h"
#include "core/handle.h"
#include "lines.h"
#include "plant.h"
#include "record.h"
#include "structures.h"

namespace {

constexpr char dataClass[] = "comm/datamodem";

FileHandle OpenPortOf(const PlantLine& line) {
    const std::string path = "\\\\.\\" + line.port;
    return FileHandle(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OVERLAPPED, nullptr));
}

LONG GiveDataHandle(HCALL handle, VARSTRING* to) {
    const Call* call = Calls().Find(handle);
    if (!call)
        return Failure(LINEERR_INVALCALLHANDLE);
    if (call->state != LINECALLSTATE_CONNECTED)
        return Failure(LINEERR_INVALCALLSTATE);
    const PlantLine* line = FindDevice(call->device);
    if (!line || line->port.empty())
        return Failure(LINEERR_OPERATIONUNAVAIL);
    VARSTRING fixed = {};
    fixed.dwStringFormat = STRINGFORMAT_BINARY;
    Structure<VARSTRING> answer(fixed);
    DWORD data = 0;
    // The port's name follows the handle.
    const std::string bytes = std::string(reinterpret_cast<char*>(&data), sizeof data) + line->port + '\0';
    VARSTRING& full = answer.Full();
    full.dwStringSize = static_cast<DWORD>(bytes.size());
    full.dwStringOffset = answer.PutBytes(bytes.data(), full.dwStringSize);
    if (!answer.Fits(to))
        return answer.Deliver(to);
    FileHandle port = OpenPortOf(*line);
    if (!port)
        return Failure(LINEERR_RESOURCEUNAVAIL);
    data = HandleToULong(port.release());
    answer.Change(full.dwStringOffset, &data, sizeof data);
    return answer.Deliver(to);
}

} // namespace

LONG WINAPI lineGetIDA(HLINE, DWORD, HCALL hCall, DWORD dwSelect, LPVARSTRING lpDeviceID,
                       LPCSTR lpszDeviceClass) {
    const std::string arguments = Argument("select", dwSelect) + Argument("class", TextOf(lpszDeviceClass));
    return Serve("lineGetIDA", arguments, [&] {
        if (dwSelect != LINECALLSELECT_CALL)
            return Failure(LINEERR_INVALCALLSELECT);
        if (_stricmp(TextOf(lpszDeviceClass).c_str(), dataClass) != 0)
            return Failure(LINEERR_INVALDEVICECLASS);
        return GiveDataHandle(hCall, lpDeviceID);
    });
}
