#include "portdirect.h"

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
    DWORD earlier = 0;
    if (record.osWrite.hEvent)
        GetOverlappedResult(record.hComm, &record.osWrite, &earlier, TRUE);
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
    DWORD written = 0;
    if (!GetOverlappedResult(record.hComm, &record.osWrite, &written, FALSE) &&
        GetLastError() == ERROR_IO_INCOMPLETE) {
        CancelIoEx(record.hComm, &record.osWrite);
        if (WaitForSingleObject(record.osWrite.hEvent, CancelLimit) != WAIT_OBJECT_0)
            return;
    }
    CloseWriteEvent(record);
    record.osWrite = {};
}

bool DirectWriteIsStuck(const COMCTL& record) {
    return record.osWrite.hEvent && !HasOverlappedIoCompleted(&record.osWrite);
}
