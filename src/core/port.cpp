#include "port.h"

#include "portdirect.h"
#include "portmonitor.h"
#include "portstate.h"
#include "portstatus.h"
#include "returnedinput.h"
#include "ticksource.h"
#include "writer.h"

#include <array>
#include <chrono>
#include <mutex>

namespace {

constexpr DWORD purgeAll = PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR;
constexpr DWORD signalEvents = EV_CTS | EV_DSR | EV_RLSD | EV_BREAK | EV_ERR;

constexpr auto deviceLockLimit = std::chrono::seconds(2);

// A read returns at once with what is there.
constexpr COMMTIMEOUTS immediateReads = {MAXDWORD, 0, 0, 0, 0};

std::string SystemText(DWORD error) {
    std::array<char, 512> text = {};
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    return {text.data(), length};
}

std::string OpenErrorText(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return "Port not found";
    case ERROR_ACCESS_DENIED:
        return "Port unavailable";
    default:
        return SystemText(error);
    }
}

} // namespace

bool IsDevice(HANDLE device) {
    return device && device != INVALID_HANDLE_VALUE;
}

bool PrepareDevice(COMCTL& record) {
    SetupComm(record.hComm, static_cast<DWORD>(record.cbInBuffer), static_cast<DWORD>(record.cbOutBuffer));
    COMMTIMEOUTS timeouts = immediateReads;
    SetCommTimeouts(record.hComm, &timeouts);
    record.dwModemStat = ReadModemStatus(record);
    return RebuildDeviceState(record, Speed::Apply);
}

bool OpenPort(COMCTL& record, std::string& error) {
    const std::string path = std::string("\\\\.\\") + record.szPort;
    const HANDLE device = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_OVERLAPPED, nullptr);
    const DWORD openError = GetLastError();
    {
        std::scoped_lock guard(record.DeviceLock);
        record.hComm = device;
        ++record.nDevice;
    }
    if (!IsDevice(record.hComm)) {
        error = OpenErrorText(openError);
        return false;
    }
    record.bPortOpen = 1;
    if (!PrepareDevice(record)) {
        // The mask first: a monitor sets its own, and must have the last word or it would never hear of a
        // byte.
        SetCommMask(record.hComm, signalEvents);
        SetUpTick(record);
    }
    record.lpOverlappedWrite->Start(record.hComm);
    return true;
}

void ClosePort(COMCTL& record) {
    PurgeComm(record.hComm, PURGE_RXCLEAR);
    PurgeComm(record.hComm, PURGE_TXCLEAR);
    EscapeCommFunction(record.hComm, CLRDTR);
    CloseDevice(record);
    record.hComm = INVALID_HANDLE_VALUE;
    record.bPortOpen = 0;
}

void CloseDevice(COMCTL& record) {
    if (!IsDevice(record.hComm))
        return;
    PurgeComm(record.hComm, purgeAll);
    record.lpOverlappedWrite->Stop();
    record.lpMonitorThread.reset();
    FinishDirectWrite(record);
    {
        // A worker that had to be terminated inside a call of the driver never lets go.
        const std::unique_lock guard(record.DeviceLock, deviceLockLimit);
        CloseHandle(record.hComm);
        record.hComm = INVALID_HANDLE_VALUE;
        ++record.nDevice;
    }
    DropReturnedInput(record);
}

void AttachDevice(COMCTL& record, HANDLE device) {
    if (!IsDevice(device))
        device = INVALID_HANDLE_VALUE;
    const bool replaced = IsDevice(device) && IsDevice(record.hComm) && device != record.hComm;
    if (!IsDevice(device))
        CloseDevice(record);
    if (replaced) {
        // The old device belongs to whoever attached it, so it stays open; its threads go.
        record.lpOverlappedWrite->Stop();
        record.lpMonitorThread.reset();
    }
    {
        std::scoped_lock guard(record.DeviceLock);
        if (record.hComm != device)
            ++record.nDevice;
        record.hComm = device;
    }
    if (replaced)
        DropReturnedInput(record);
    record.bPortOpen = IsDevice(device);
    if (record.bPortOpen)
        record.lpOverlappedWrite->Start(device);
    else
        record.lpOverlappedWrite->Stop();
    SetUpTick(record);
}
