// The flat functions of the transfer.
#include "filestream.h"
#include "queue.h"
#include "transfer.h"
#include "worker.h"
#include "xferpath.h"

#include "core/idle.h"
#include "core/live.h"
#include "core/rooms.h"
#include "core/wall.h"
#include "TarnComm.h"

#include <cstdio>
#include <cstring>

namespace {

int Start(COMCTL& record, XferDirection direction) {
    if (record.nTransferType == direction)
        return 1; // the running transfer takes it from the queue
    record.nTransferType = direction;
    if (BeginTransfer(record))
        return 1;
    record.nTransferType = XferNone;
    record.nTransferStatus = TransferStatus_Failure;
    DropFirstQueuedFile(record);
    return 0;
}

bool CanBeRead(const std::string& name) {
    FileStream file;
    return file.Open(name, FileMode::Read) == 0;
}

template <auto Field>
auto Read(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    return record ? (record->*Field).load() : 0;
}

template <auto Field>
int CopyName(HWND hWnd, char* szName, int cbName) {
    const COMCTL* record = RecordOf(hWnd);
    if (!record || !szName || cbName <= 0)
        return 0;
    std::scoped_lock guard(TransferLock());
    std::snprintf(szName, static_cast<size_t>(cbName), "%s", record->*Field);
    return static_cast<int>(std::strlen(szName));
}

template <auto Field>
int NameLength(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    if (!record)
        return 0;
    std::scoped_lock guard(TransferLock());
    return static_cast<int>(std::strlen(record->*Field));
}

void RequestAbort(HWND hWnd) {
    if (COMCTL* record = RecordOf(hWnd))
        record->bAbortTransfer = 1;
}

void DownloadByItself(HWND hWnd, const char* szName) {
    Download(hWnd, szName);
}

// The row of this room is filled before any thread can make an object.
[[maybe_unused]] const auto connected = upperRooms.startDownload = DownloadByItself;

} // namespace

int TARNAPI Upload(HWND hWnd, const char* szName) {
    return BehindWall("Upload", [&]() -> int {
        COMCTL* record = RecordOf(hWnd);
        if (!record)
            return 0;
        record->bAbortTransfer = 0;
        if (record->nTransferType == XferDownload || WorkerStandsAlone(*record))
            return 0;
        if (!CanBeRead(MakeXferPath(*record, szName ? szName : "")) || !QueueFile(*record, szName))
            return 0;
        return Start(*record, XferUpload);
    });
}

int TARNAPI Download(HWND hWnd, const char* szName) {
    return BehindWall("Download", [&]() -> int {
        COMCTL* record = RecordOf(hWnd);
        if (!record)
            return 0;
        record->bAbortTransfer = 0;
        if (record->nTransferType == XferUpload || WorkerStandsAlone(*record))
            return 0;
        if (!QueueFile(*record, szName))
            return 0;
        return Start(*record, XferDownload);
    });
}

HANDLE TARNAPI StartTransfer(HWND hWnd) {
    return BehindWall("StartTransfer", [&]() -> HANDLE {
        COMCTL* record = RecordOf(hWnd);
        return record ? StartWorkerAlone(*record) : nullptr;
    });
}

// Both end the whole transfer: there is no end of one file.
void TARNAPI AbortTransfer(HWND hWnd) {
    RequestAbort(hWnd);
}

void TARNAPI AbortCurrentFile(HWND hWnd) {
    RequestAbort(hWnd);
}

void TARNAPI WaitUntilTransferIsFinished(HWND hWnd) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return;
    while (record->nTransferStatus >= TransferStatus_WaitForFile && !record->bShutDown) {
        if (!IdleLoop(record, IdleFor::Time) || !IdleLoop(record, IdleFor::Time))
            return;
    }
}

int TARNAPI GetTransferStatus(HWND hWnd) {
    return Read<&COMCTL::nTransferStatus>(hWnd);
}

int TARNAPI GetTransferType(HWND hWnd) {
    return Read<&COMCTL::nTransferType>(hWnd);
}

LONG TARNAPI GetTransferFileSize(HWND hWnd) {
    return Read<&COMCTL::lTransferFileSize>(hWnd);
}

LONG TARNAPI GetTransferBytesTransferred(HWND hWnd) {
    return Read<&COMCTL::lBytesTransferred>(hWnd);
}

// The two names of the transfer have functions of their own; these two give nothing, kept so.
int TARNAPI GetTransferFilename(HWND, char*, int) {
    return 0;
}

int TARNAPI GetTransferFilenameLength(HWND) {
    return 0;
}

int TARNAPI GetSourceFilename(HWND hWnd, char* szName, int cbName) {
    return CopyName<&COMCTL::szSourceFilename>(hWnd, szName, cbName);
}

int TARNAPI GetSourceFilenameLength(HWND hWnd) {
    return NameLength<&COMCTL::szSourceFilename>(hWnd);
}

int TARNAPI GetDestFilename(HWND hWnd, char* szName, int cbName) {
    return CopyName<&COMCTL::szDestFilename>(hWnd, szName, cbName);
}

int TARNAPI GetDestFilenameLength(HWND hWnd) {
    return NameLength<&COMCTL::szDestFilename>(hWnd);
}

void TARNAPI SetDestFilename(HWND hWnd, const char* szName) {
    BehindWall("SetDestFilename", [&] {
        if (COMCTL* record = RecordOf(hWnd))
            StoreDestFilename(*record, szName);
    });
}

void TARNAPI SetXferPath(HWND hWnd, const char* szPath) {
    COMCTL* record = RecordOf(hWnd);
    if (!record || !szPath)
        return;
    std::scoped_lock guard(TransferLock());
    std::snprintf(record->szXferPath, sizeof record->szXferPath, "%s", szPath);
}
