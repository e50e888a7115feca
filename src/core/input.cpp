#include "input.h"

#include "deadline.h"
#include "diagnostics/wiretap.h"
#include "idle.h"
#include "live.h"
#include "output.h"
#include "portread.h"
#include "portstatus.h"
#include "rooms.h"
#include "TarnComm.h"
#include "wall.h"

#include "ascii.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char dataBits = 0x7F; // what soft parity leaves of a byte

void StripParity(char* bytes, int count) {
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<char>(bytes[i] & dataBits);
}

} // namespace

int ReadInput(COMCTL& record, void* lpBuffer, int cbBuffer) {
    if (record.nTransferType)
        return 0; // the transfer's worker alone reads the line
    const ObjectWatch watch(record);
    const LineCounts counts = ReadLineStatus(record);
    const int wanted = std::min(counts.input, cbBuffer);
    if (watch.Gone() || wanted <= 0)
        return 0;
    std::memset(lpBuffer, 0, static_cast<size_t>(cbBuffer));
    const int count = ReadDevice(record, lpBuffer, wanted);
    if (watch.Gone() || !count)
        return count;
    if (record.bSoftParity)
        StripParity(static_cast<char*>(lpBuffer), count);
    if (record.bWireTapInput)
        LogData(record, "reads", lpBuffer, static_cast<DWORD>(count));
    return count;
}

void EchoInput(COMCTL& record, const void* lpBytes, int cbBytes) {
    const ObjectWatch watch(record);
    if (record.bInputEcho)
        TerminalWrite(record.hWnd, lpBytes, cbBytes);
    if (watch.Alive() && record.bCommEcho)
        WriteToRing(record, lpBytes, cbBytes);
}

int TARNAPI GetInput(HWND hWnd, void* lpBuffer, int cbBuffer) {
    return BehindWall("GetInput", [&]() -> int {
        COMCTL* record = RecordOf(hWnd);
        if (!record || !lpBuffer || cbBuffer <= 0 || record->nBusy || !record->bPortOpen)
            return 0;
        const ObjectWatch watch(*record);
        const int count = ReadInput(*record, lpBuffer, cbBuffer);
        if (watch.Gone())
            return count;
        if (count)
            EchoInput(*record, lpBuffer, count);
        if (watch.Alive())
            TakeFreshCount(*record);
        return count;
    });
}

int TARNAPI GetLineInput(HWND hWnd, char* lpBuffer, int cbBuffer) {
    return BehindWall("GetLineInput", [&]() -> int {
        COMCTL* record = RecordOf(hWnd);
        if (!record || !lpBuffer || cbBuffer <= 0)
            return 0;
        const ObjectWatch watch(*record);
        std::memset(lpBuffer, 0, static_cast<size_t>(cbBuffer));
        const Deadline deadline(record->lInputTimeOut);
        int length = 0;
        char last = '\0';
        bool passed = false;
        while (watch.Alive() && !record->bShutDown && length < cbBuffer && last != ascii::CR && !passed) {
            if (ReadInput(*record, &last, 1)) {
                if (watch.Alive())
                    EchoInput(*record, &last, 1);
                if (last != ascii::CR && last != ascii::LF)
                    lpBuffer[length++] = last;
                continue;
            }
            if (watch.Alive())
                IdleLoop(record, IdleFor::Input, std::min(IdlePause, deadline.Left()));
            passed = deadline.Passed();
        }
        if (length < cbBuffer)
            lpBuffer[length] = '\0'; // a full line has no room for it
        return length;
    });
}
