#include "core/live.h"
#include "core/portsignals.h"
#include "modem.h"
#include "modemoptions.h"
#include "TarnComm.h"

namespace {

constexpr LONG dtrDrop = 200; // ms

bool StopDialing(COMCTL& record) {
    const ObjectWatch watch(record);
    Output(record.hWnd, "\r", 1);
    if (watch.Gone())
        return false;
    record.bDialCancel = 1;
    return true;
}

// DTR down for a while. False: the object is gone, or the carrier is.
bool CarrierOutlivesDTR(COMCTL& record) {
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    const int bDTR = record.bDTR;
    SetDTR(hWnd, 0);
    ComPause(hWnd, dtrDrop);
    if (watch.Gone())
        return false;
    SetDTR(hWnd, bDTR);
    return GetCarrier(hWnd);
}

} // namespace

bool HangUpLine(COMCTL& record) {
    if (record.bDialing)
        return StopDialing(record);
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    if (!GetCarrier(hWnd))
        return true;
    if (CarrierOutlivesDTR(record) && Ask(record, ModemOption(record, ModemField::HangUp)))
        return true;
    return watch.Alive() && !GetCarrier(hWnd);
}

bool DropLine(COMCTL& record) {
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    if (!GetCarrier(hWnd))
        return true;
    DriveDTR(record, false);
    ComPause(hWnd, dtrDrop);
    if (watch.Gone())
        return false;
    DriveDTR(record, true);
    if (GetCarrier(hWnd))
        SendCommand(record, ModemOption(record, ModemField::HangUp));
    return watch.Alive() && !GetCarrier(hWnd);
}
