#include "portstatus.h"

#include "live.h"
#include "notify.h"
#include "writer.h"

#include <algorithm>

namespace {

struct ErrorRow {
    DWORD bit;
    int code;
};

// In the order of their events.
constexpr ErrorRow errorRows[] = {
    {CE_BREAK, Error_Break},     {CE_FRAME, Error_Frame},
    {CE_OVERRUN, Error_Overrun}, {CE_RXOVER, Error_ReceiveOverflow},
    {CE_RXPARITY, Error_Parity}, {CE_TXFULL, Error_TransmitFull},
};

void ReportErrors(const COMCTL& record, DWORD errors) {
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    for (const ErrorRow& row : errorRows) {
        if (!(errors & row.bit))
            continue;
        Notify(hWnd, row.code);
        if (watch.Gone())
            return;
    }
}

} // namespace

// Bytes in the writer's hand are the driver's as soon as it counts them, so that they are counted once.
int OutputCount(const COMCTL& record, DWORD queued) {
    if (!record.lpOverlappedWrite)
        return static_cast<int>(queued);
    const int held = record.lpOverlappedWrite->Held();
    return held + std::max(static_cast<int>(queued), record.lpOverlappedWrite->InHand());
}

LineCounts ReadLineStatus(COMCTL& record) {
    DWORD errors = 0;
    COMSTAT status = {};
    if (!ClearCommError(record.hComm, &errors, &status))
        return {};
    const LineCounts counts{static_cast<int>(status.cbInQue) + record.cbReturnedInput,
                            OutputCount(record, status.cbOutQue)};
    if (errors)
        ReportErrors(record, errors);
    return counts;
}

void UpdateFlags(COMCTL& record, const LineCounts& counts) {
    if (counts.input < record.nRThreshold)
        record.bReceiveFlag = 0;
    if (counts.output > record.nSThreshold)
        record.bSendFlag = 0;
}

void TakeFreshCount(COMCTL& record) {
    const ObjectWatch watch(record);
    const LineCounts counts = ReadLineStatus(record);
    if (watch.Alive())
        UpdateFlags(record, counts);
}

DWORD ReadModemStatus(const COMCTL& record) {
    DWORD status = 0;
    return GetCommModemStatus(record.hComm, &status) ? status : 0;
}
