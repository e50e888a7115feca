// Modem signals and the break, in and out.
#include "portsignals.h"

#include "live.h"
#include "portstate.h"
#include "portstatus.h"
#include "TarnComm.h"
#include "wall.h"

namespace {

int SignalIsOn(HWND hWnd, DWORD bit) {
    const COMCTL* record = RecordOf(hWnd);
    return record && record->bPortOpen && (ReadModemStatus(*record) & bit);
}

} // namespace

void DriveDTR(const COMCTL& record, bool on) {
    EscapeCommFunction(record.hComm, on ? SETDTR : CLRDTR);
}

void PretendXOn(const COMCTL& record, bool on) {
    EscapeCommFunction(record.hComm, on ? SETXON : SETXOFF);
}

void TARNAPI SetDTR(HWND hWnd, int bDTR) {
    BehindWall("SetDTR", [&] {
        COMCTL* record = RecordOf(hWnd);
        if (!record)
            return;
        record->bDTR = bDTR;
        RebuildDeviceState(*record, Speed::Leave);
        DriveDTR(*record, bDTR);
    });
}

void TARNAPI SetRTS(HWND hWnd, int bRTS) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return;
    record->bRTS = bRTS;
    if (record->bPortOpen)
        EscapeCommFunction(record->hComm, bRTS ? SETRTS : CLRRTS);
}

void TARNAPI SetBreak(HWND hWnd, int bBreak) {
    const COMCTL* record = RecordOf(hWnd);
    if (!record || !record->bPortOpen)
        return;
    if (bBreak)
        SetCommBreak(record->hComm);
    else
        ClearCommBreak(record->hComm);
}

// Asks whether the device reports breaks, not whether one is being sent; kept so, see the port's tests.
int TARNAPI GetBreak(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    DWORD mask = 0;
    return record && record->bPortOpen && GetCommMask(record->hComm, &mask) && (mask & EV_BREAK);
}

int TARNAPI GetCTS(HWND hWnd) {
    return SignalIsOn(hWnd, MS_CTS_ON);
}

int TARNAPI GetDSR(HWND hWnd) {
    return SignalIsOn(hWnd, MS_DSR_ON);
}

int TARNAPI GetCarrier(HWND hWnd) {
    return SignalIsOn(hWnd, MS_RLSD_ON);
}
