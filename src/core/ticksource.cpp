#include "ticksource.h"

#include "portmonitor.h"
#include "rooms.h"

#include <algorithm>

namespace {

constexpr UINT_PTR tickTimer = 1;
constexpr LONG shortestConnectedInterval = 55; // ms

void StartTimer(COMCTL& record, LONG milliseconds) {
    record.idTimer = SetTimer(record.hWnd, tickTimer, static_cast<UINT>(milliseconds), nullptr);
}

bool ControlIsConnected(const COMCTL& record) {
    return record.lpControl && upperRooms.isConnected && upperRooms.isConnected(*record.lpControl);
}

} // namespace

void SetUpTick(COMCTL& record) {
    if (!record.bPortOpen)
        return;
    if (record.nAutoProcess == 1 || record.nAutoProcess == 3)
        record.nRThreshold = 1;
    if (record.idTimer || record.lpMonitorThread)
        return;
    if (ControlIsConnected(record))
        StartTimer(record, std::max(record.lInterval, shortestConnectedInterval));
    if (record.lInterval)
        StartTimer(record, record.lInterval);
    else
        record.lpMonitorThread = std::make_unique<CMonitorThread>(record.hWnd);
}
