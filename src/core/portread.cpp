#include "portread.h"

#include "idle.h"
#include "live.h"
#include "returnedinput.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr DWORD pendingReadWait = 500; // ms

enum class ReadEnd {
    Done,
    Failed,
    Abandoned // object gone, port closed or shutting down
};

// A read that could not finish at once; a healthy device with immediate read time-outs never comes here.
ReadEnd WaitForRead(COMCTL& record, const ReadCall& call) {
    const ObjectWatch watch(record);
    const HANDLE device = record.hComm;
    DWORD wait = pendingReadWait;
    while (WaitForSingleObject(call.done.get(), wait) != WAIT_OBJECT_0) {
        wait = 0; // from now on the idle loop makes the pauses
        if (!IdleLoop(&record, IdleFor::Time) || watch.Gone())
            return ReadEnd::Abandoned;
        if (record.hComm != device || record.bShutDown)
            return ReadEnd::Abandoned;
    }
    return ReadEnd::Done;
}

} // namespace

int ReadDevice(COMCTL& record, void* lpBuffer, int cbWanted) {
    if (record.cbReturnedInput)
        return TakeReturnedInput(record, lpBuffer, cbWanted);
    const ObjectWatch watch(record);
    const HANDLE device = record.hComm;
    auto call = std::move(record.lpReadCall);
    if (!call)
        call = std::make_unique<ReadCall>();
    if (!call->Prepare())
        return 0;
    if (call->bytes.size() < static_cast<size_t>(cbWanted))
        call->bytes.resize(static_cast<size_t>(cbWanted));

    DWORD count = 0;
    ReadEnd end = ReadEnd::Done;
    if (!ReadFile(device, call->bytes.data(), static_cast<DWORD>(cbWanted), &count, &call->state)) {
        end = ReadEnd::Failed;
        if (GetLastError() == ERROR_IO_PENDING)
            end = WaitForRead(record, *call);
        if (end == ReadEnd::Done && !GetOverlappedResult(device, &call->state, &count, FALSE))
            end = ReadEnd::Failed;
    }
    if (end == ReadEnd::Abandoned) {
        EndPendingCall(device, std::move(call));
        return 0;
    }
    if (end == ReadEnd::Failed)
        PurgeComm(device, PURGE_RXABORT);
    count = std::min(count, static_cast<DWORD>(cbWanted));
    std::memcpy(lpBuffer, call->bytes.data(), count);
    record.lpReadCall = std::move(call);
    return static_cast<int>(count);
}
