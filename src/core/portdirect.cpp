#include "portdirect.h"

#include "deadline.h"
#include "diagnostics/runtimeerror.h"
#include "diagnostics/SEHException.h"
#include "diagnostics/wiretap.h"
#include "handle.h"
#include "live.h"
#include "overlapped.h"
#include "port.h"
#include "portstatus.h"

namespace {

constexpr unsigned alreadyClosed = ERROR_INVALID_HANDLE;

constexpr DWORD lookAgain = 10;         // ms, however silent the event is
constexpr DWORD afterForeignSignal = 1; // ms

// The whole session shares the event by its name: a signal may tell of another's write, and another's write
// may take this one's signal back. So the call itself is asked.
void AwaitWrite(const COMCTL& record, DWORD limit) {
    const Deadline deadline(limit);
    while (DirectWriteIsStuck(record) && !deadline.Passed()) {
        const DWORD woken = WaitForSingleObject(record.osWrite.hEvent, lookAgain);
        if (woken != WAIT_TIMEOUT && DirectWriteIsStuck(record))
            Sleep(afterForeignSignal);
    }
}

void CloseWriteEvent(COMCTL& record) {
    EventHandle event(record.osWrite.hEvent);
    record.osWrite.hEvent = nullptr;
    try {
        event.reset();
    } catch (const CSEHException& fault) {
        if (fault.GetSeCode() != alreadyClosed)
            throw;
    }
}

} // namespace

DWORD DirectWrite(COMCTL& record, const void* lpBytes, DWORD cbBytes) {
    if (!IsDevice(record.hComm) || !cbBytes || !record.bPortOpen)
        return 0;
    AwaitWrite(record, INFINITE);
    CloseWriteEvent(record);
    record.osWrite = {};
    record.osWrite.hEvent = CreateEventA(nullptr, TRUE, FALSE, "OverlappedWrite");
    if (!record.osWrite.hEvent)
        throw RuntimeError(GetLastError());

    // The write may outlive the caller's buffer.
    const auto* bytes = static_cast<const char*>(lpBytes);
    record.DirectWriteBytes.assign(bytes, bytes + cbBytes);
    DWORD written = 0;
    if (!WriteFile(record.hComm, record.DirectWriteBytes.data(), cbBytes, &written, &record.osWrite)) {
        const DWORD error = GetLastError();
        if (error != ERROR_IO_PENDING) {
            record.osWrite.Internal = ERROR_SUCCESS; // the system leaves it at "pending"
            ReadLineStatus(record);
            throw RuntimeError(error);
        }
    }
    if (record.bWireTapOutput)
        LogData(record, "writes", lpBytes, cbBytes);
    TakeFreshCount(record);
    return written;
}

void FinishDirectWrite(COMCTL& record) {
    if (!record.osWrite.hEvent)
        return;
    if (DirectWriteIsStuck(record)) {
        CancelIoEx(record.hComm, &record.osWrite);
        AwaitWrite(record, CancelLimit);
    }
    if (DirectWriteIsStuck(record))
        return;
    CloseWriteEvent(record);
    record.osWrite = {};
}

bool DirectWriteIsStuck(const COMCTL& record) {
    return record.osWrite.hEvent && !HasOverlappedIoCompleted(&record.osWrite);
}
