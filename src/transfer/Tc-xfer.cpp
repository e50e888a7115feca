#include "Tc-xfer.h"

#include "queue.h"
#include "statusdialog.h"
#include "xferpath.h"

#include "core/live.h"
#include "diagnostics/runtime.h"

#include <cstdio>

namespace {

template <size_t Size>
void CopyName(char (&field)[Size], const std::string& name) {
    std::scoped_lock guard(TransferLock());
    std::snprintf(field, Size, "%s", name.c_str());
}

template <size_t Size>
std::string NameIn(const char (&field)[Size]) {
    std::scoped_lock guard(TransferLock());
    return field;
}

void EmptyNames(COMCTL& record) {
    CopyName(record.szSourceFilename, "");
    CopyName(record.szDestFilename, "");
}

// Delivered by the worker, run on the window's thread while the worker waits. False: the object is gone.
bool SetStatus(COMCTL& record, int nStatus) {
    const ObjectWatch watch(record);
    record.nTransferStatus = nStatus;
    DeliverTransfer(record.hWnd);
    return watch.Alive();
}

LRESULT SetDone(COMCTL& record, std::atomic<LONG> COMCTL::*count, LPARAM lParam, bool deliver) {
    record.*count = static_cast<LONG>(lParam);
    record.nTransferStatus = TransferStatus_Transfering;
    if (deliver)
        SetStatus(record, TransferStatus_Transfering);
    return 0;
}

LRESULT SetText(COMCTL& record, LPARAM lParam) {
    const auto* text = reinterpret_cast<const char*>(lParam);
    CopyName(record.szTransferStatus, text ? text : "");
    record.nTransferStatus = TransferStatus_Transfering;
    return 0;
}

// Asked by a sender that comes to its end unless one waits.
LRESULT FilesWaiting(COMCTL& record) {
    if (record.nTransferType == XferUpload)
        FirstQueuedFileOrEnd(record);
    return record.cFiles;
}

void NameDownload(COMCTL& record, const TRANSFERNAMES& names) {
    CopyName(record.szDestFilename, "");
    const std::string queued = FirstQueuedFile(record);
    if (!queued.empty())
        StoreDestFilename(record, queued.c_str());
    if (NameIn(record.szDestFilename).empty())
        CopyName(record.szDestFilename, *names.lpDest);
    CopyName(record.szSourceFilename, *names.lpSource);
}

// A protocol that finds no file comes to its end: one that were queued later would never be sent.
void NameUpload(COMCTL& record, const TRANSFERNAMES& names) {
    const std::string queued =
        names.lpSource->empty() ? FirstQueuedFileOrEnd(record) : FirstQueuedFile(record);
    const std::string source = queued.empty() ? *names.lpSource : queued;
    CopyName(record.szSourceFilename, source);
    CopyName(record.szDestFilename, names.lpDest->empty() ? source : *names.lpDest);
}

LRESULT PrepareFile(COMCTL& record, const TRANSFERNAMES& names) {
    record.lBytesTransferred = 0;
    const bool upload = record.nTransferType == XferUpload;
    if (upload)
        NameUpload(record, names);
    else
        NameDownload(record, names);
    DropFirstQueuedFile(record);
    // An upload without a name has come to the end of its queue: there is no file to tell of.
    if (upload && NameIn(record.szSourceFilename).empty())
        return 0;
    if (!SetStatus(record, TransferStatus_Prepare))
        return 0;
    const std::string source = NameIn(record.szSourceFilename);
    const std::string dest = NameIn(record.szDestFilename);
    if (!source.empty())
        *names.lpSource = source;
    if (!dest.empty())
        *names.lpDest = dest;
    SetStatus(record, TransferStatus_Starting);
    return 0;
}

LRESULT EndFile(COMCTL& record, int nStatus) {
    if (!SetStatus(record, nStatus))
        return 0;
    EmptyNames(record);
    record.nTransferStatus = TransferStatus_WaitForFile;
    return 0;
}

LRESULT EndTransfer(const COMCTL& record, int nStatus) {
    DeliverEndOfTransfer(record.hWnd, nStatus);
    return 0;
}

LRESULT DialogParent(const COMCTL& record) {
    const HWND parent = record.hDialogParent;
    return reinterpret_cast<LRESULT>(parent ? parent : GetParent(record.hWnd));
}

LRESULT PortHandle(COMCTL& record) {
    std::scoped_lock guard(record.DeviceLock);
    return reinterpret_cast<LRESULT>(record.hComm);
}

LRESULT CreateDialogFor(COMCTL& record, LPARAM lpProcedure) {
    const HWND hDlg = CreateStatusDialog(reinterpret_cast<HWND>(DialogParent(record)),
                                         reinterpret_cast<DLGPROC>(lpProcedure));
    record.hTransferDialog = hDlg;
    return reinterpret_cast<LRESULT>(hDlg);
}

LRESULT DestroyDialogOf(COMCTL& record, LPARAM hDlg) {
    DestroyStatusDialog(reinterpret_cast<HWND>(hDlg));
    record.hTransferDialog = nullptr;
    return 0;
}

} // namespace

// What is left in the queue goes before the host hears of the end: in that event it may start a transfer of
// its own, whose queue must stand.
void SettleTransfer(COMCTL& record, int nStatus) {
    DropQueuedFiles(record);
    ReopenQueue(record);
    Ensure(record.cFiles >= 0, "lpComCtl->cFiles >= 0");
    EmptyNames(record);
    record.nTransferStatus = nStatus;
    record.nTransferType = XferNone;
}

LRESULT xfRequest(HWND hWnd, int nCode, LPARAM lParam) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return 0;
    switch (nCode) {
    case Request_DialogType:
        return record->nTransferDialogType;
    case Request_Port:
        return PortHandle(*record);
    case Request_DialogParent:
        return DialogParent(*record);
    case Request_Protocol:
        return record->nProtocol;
    case Request_EndTransfer:
        return EndTransfer(*record, TransferStatus_Success);
    case Request_FailTransfer:
        return EndTransfer(*record, TransferStatus_Failure);
    case Request_FileSize:
        return SetDone(*record, &COMCTL::lTransferFileSize, lParam, true);
    case Request_BytesDone:
        return SetDone(*record, &COMCTL::lBytesTransferred, lParam, lParam != 0);
    case Request_StatusText:
        return SetText(*record, lParam);
    case Request_PrepareFile:
        return lParam ? PrepareFile(*record, *reinterpret_cast<const TRANSFERNAMES*>(lParam)) : 0;
    case Request_EndFile:
        return EndFile(*record, TransferStatus_EndOfFile);
    case Request_SkipFile:
        return EndFile(*record, TransferStatus_FileAbort);
    case Request_Abort:
        return record->bAbortTransfer;
    case Request_Direction:
        return record->nTransferType;
    case Request_FilesWaiting:
        return FilesWaiting(*record);
    case Request_CreateDialog:
        return CreateDialogFor(*record, lParam);
    case Request_DestroyDialog:
        return DestroyDialogOf(*record, lParam);
    default:
        return 0;
    }
}
