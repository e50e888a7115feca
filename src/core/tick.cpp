#include "tick.h"

#include "dispatcher.h"
#include "live.h"
#include "notify.h"
#include "portmonitor.h"
#include "portstatus.h"

namespace {

struct ModemEventRow {
    DWORD bit;
    int code;
    bool onlyWhenOn;
};

// In the order of their events.
constexpr ModemEventRow modemEvents[] = {
    {MS_CTS_ON, Event_CTSChanged, false},
    {MS_DSR_ON, Event_DSRChanged, false},
    {MS_RING_ON, Event_Ring, true},
    {MS_RLSD_ON, Event_CarrierChanged, false},
};

bool ProcessesSerialInput(const COMCTL& record) {
    return record.nAutoProcess == 1 || record.nAutoProcess == 3;
}

// Delivers a threshold's event and clears the flags by a fresh count. False: the object is gone.
bool Deliver(COMCTL& record, int code, LineCounts& counts) {
    const ObjectWatch watch(record);
    Notify(record.hWnd, code);
    if (watch.Gone())
        return false;
    counts = ReadLineStatus(record);
    if (watch.Gone())
        return false;
    UpdateFlags(record, counts);
    return true;
}

bool RaiseThresholds(COMCTL& record, LineCounts& counts) {
    const int output = counts.output;
    if (record.nRThreshold && counts.input >= record.nRThreshold) {
        record.bReceiveFlag = 1;
        if (!Deliver(record, Event_Receive, counts))
            return false;
    }
    if (record.nSThreshold && output <= record.nSThreshold) {
        record.bSendFlag = 1;
        if (!Deliver(record, Event_Send, counts))
            return false;
    }
    return true;
}

void RaiseModemEvents(COMCTL& record) {
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    const DWORD status = ReadModemStatus(record);
    const DWORD changed = status ^ record.dwModemStat;
    record.dwModemStat = status;
    for (const ModemEventRow& row : modemEvents) {
        if (!(changed & row.bit) || (row.onlyWhenOn && !(status & row.bit)))
            continue;
        Notify(hWnd, row.code);
        if (watch.Gone())
            return;
    }
}

} // namespace

LRESULT Tick(HWND hWnd) {
    COMCTL* record = RecordOf(hWnd);
    if (!record || record->nTransferType || !record->bPortOpen)
        return TickFoundNothing;
    const ObjectWatch watch(*record);
    LineCounts counts = ReadLineStatus(*record);
    if (watch.Gone())
        return TickFoundNothing;
    bool foundInput = counts.input != 0;
    if (ProcessesSerialInput(*record)) {
        foundInput =
            DispatchInput(*record); // bytes that can't be read are nothing, or the monitor would spin
        counts = {};
    } else if (!RaiseThresholds(*record, counts)) {
        return TickFoundNothing;
    }
    if (watch.Gone())
        return TickFoundNothing;
    if (record->bPortOpen)
        RaiseModemEvents(*record);
    return foundInput ? counts.input : TickFoundNothing;
}
