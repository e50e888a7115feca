#include "port.h"

#include "diagnostics/runtimeerror.h"
#include "handle.h"
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

// False: a worker is held up inside a call of the driver, and the device before stays.
bool StoreDevice(COMCTL& record, HANDLE device) {
    if (record.hComm == device)
        return true;
    const std::unique_lock guard(record.DeviceLock, deviceLockLimit);
    if (!guard)
        return false;
    record.hComm = device;
    ++record.nDevice;
    return true;
}

void DetachDevice(COMCTL& record) {
    CloseDevice(record);
    StoreDevice(record, INVALID_HANDLE_VALUE); // in place of the null of an object that never had one
    record.bPortOpen = 0;
    record.lpOverlappedWrite->Stop();
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
    FileHandle device(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OVERLAPPED, nullptr));
    const DWORD openError = device ? ERROR_ACCESS_DENIED : GetLastError();
    if (!StoreDevice(record, device.get()) || !device) {
        error = OpenErrorText(openError);
        return false;
    }
    static_cast<void>(device.release()); // the record's now
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
    if (!IsDevice(device)) {
        DetachDevice(record);
        return;
    }
    const bool replaces = IsDevice(record.hComm) && device != record.hComm;
    if (!StoreDevice(record, device))
        throw RuntimeError(ERROR_BUSY);
    if (replaces) {
        // The old device stays open, one that the object had opened by its name too: whoever replaces it may
        // attach it again. Its threads go. Test: Attach.PortThatTheObjectOpenedStaysOpen
        record.lpOverlappedWrite->Stop();
        record.lpMonitorThread.reset();
        DropReturnedInput(record);
    }
    record.bPortOpen = 1;
    record.lpOverlappedWrite->Start(device);
    SetUpTick(record);
}
