#include "output.h"

#include "diagnostics/runtimeerror.h"
#include "diagnostics/wiretap.h"
#include "live.h"
#include "portdirect.h"
#include "portstatus.h"
#include "rooms.h"
#include "TarnComm.h"
#include "wall.h"
#include "writer.h"

bool WriteToRing(COMCTL& record, const void* lpBytes, int cbBytes) {
    if (!record.lpOverlappedWrite->Write(lpBytes, cbBytes))
        return false;
    if (record.bWireTapOutput && cbBytes)
        LogData(record, "writes", lpBytes, static_cast<DWORD>(cbBytes));
    return true;
}

bool SendBytes(COMCTL& record, const void* lpBytes, int cbBytes) {
    if (!record.bPortOpen)
        return false;
    const ObjectWatch watch(record);
    WriteToRing(record, lpBytes, cbBytes);
    TakeFreshCount(record);
    if (watch.Alive() && record.bEcho)
        TerminalWrite(record.hWnd, lpBytes, cbBytes);
    return true;
}

int TARNAPI Output(HWND hWnd, const void* lpBytes, int cbBytes) {
    return BehindWall("Output", [&]() -> int {
        COMCTL* record = RecordOf(hWnd);
        if (!record || !lpBytes || cbBytes < 0)
            return 0;
        const ObjectWatch watch(*record);
        if (record->bEcho)
            TerminalWrite(hWnd, lpBytes, cbBytes);
        if (watch.Gone() || !record->bPortOpen)
            return 0;
        const bool queued = WriteToRing(*record, lpBytes, cbBytes);
        TakeFreshCount(*record);
        return queued;
    });
}

DWORD TARNAPI ComOutput(HWND hWnd, const void* lpBytes, DWORD cbBytes) {
    COMCTL* record = RecordOf(hWnd);
    if (!record || !lpBytes)
        return 0;
    try {
        return DirectWrite(*record, lpBytes, cbBytes);
    } catch (...) {
        return 0; // a RuntimeError's text is in the log; nothing throws across this interface
    }
}
