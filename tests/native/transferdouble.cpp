#include "transferdouble.h"

#include "diagnostics/runtime.h"
#include "transfer/queue.h"
#include "transfer/statusdialog.h"
#include "transfer/Tc-xfer.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>

namespace {

std::map<HWND, TransferDouble*> doubles;

TransferDouble* DoubleOf(HWND hWnd) {
    const auto found = doubles.find(hWnd);
    return found == doubles.end() ? nullptr : found->second;
}

std::string Entry(const COMCTL& record) {
    switch (record.nTransferStatus) {
    case TransferStatus_Failure:
        return "failure";
    case TransferStatus_Success:
        return "success";
    case TransferStatus_Prepare:
        return std::string("prepare ") + record.szSourceFilename + " " + record.szDestFilename;
    case TransferStatus_Starting:
        return "start";
    case TransferStatus_Transfering:
        return "block " + std::to_string(record.lBytesTransferred);
    case TransferStatus_FileAbort:
        return "abort";
    case TransferStatus_EndOfFile:
        return "finish";
    default:
        return "status " + std::to_string(record.nTransferStatus);
    }
}

} // namespace

TransferDouble::TransferDouble(XferDirection direction, int nProtocol) {
    COMCTL& record = object.Record();
    record.nTransferType = direction;
    record.nProtocol = nProtocol;
    record.nTransferStatus = TransferStatus_WaitForFile;
    transfer.lpComCtl = &record;
    transfer.hWnd = object.Handle();
    transfer.lpLine = &line;
    transfer.nProtocol = nProtocol;
    transfer.nDirection = direction;
    transfer.bWireTap = 1;
    doubles[transfer.hWnd] = this;
}

TransferDouble::~TransferDouble() {
    doubles.erase(transfer.hWnd);
}

void TransferDouble::Queue(const std::string& name) {
    QueueFile(object.Record(), name.c_str());
}

void DeliverTransfer(HWND hWnd) {
    TransferDouble* self = DoubleOf(hWnd);
    if (!self)
        return;
    const COMCTL& record = self->object.Record();
    const int status = record.nTransferStatus;
    if (status != TransferStatus_Transfering || self->keepBlocks)
        self->journal.push_back(Entry(record));
    if (self->onEvent)
        self->onEvent(status);
}

void DeliverEndOfTransfer(HWND hWnd, int nStatus) {
    if (TransferDouble* self = DoubleOf(hWnd))
        SettleTransfer(self->object.Record(), nStatus);
    DeliverTransfer(hWnd);
}

HWND CreateStatusDialog(HWND, DLGPROC) {
    return nullptr;
}

void DestroyStatusDialog(HWND) {}

void OpenStatusDialog(TRANSFER&) {}

void ShowItem(const TRANSFER& transfer, int nItem, const char* szText) {
    TransferDouble* self = DoubleOf(transfer.hWnd);
    if (self)
        self->items[nItem] = szText;
    if (!self || nItem != Item_Status)
        return;
    self->lastStatus = szText;
    if (*szText)
        self->journal.push_back(std::string("status ") + szText);
}

void ShowTitle(const TRANSFER& transfer, const char* szTitle) {
    if (TransferDouble* self = DoubleOf(transfer.hWnd))
        self->journal.push_back(std::string("title ") + szTitle);
}

void ShowPercent(const TRANSFER& transfer, int nPercent) {
    if (TransferDouble* self = DoubleOf(transfer.hWnd))
        self->percent = nPercent;
}

HWND WINAPI GetParent(HWND) {
    return nullptr;
}

bool Ensure(bool condition, const char* szText, const char*, unsigned) {
    if (!condition) {
        std::fputs(szText, stderr);
        std::abort();
    }
    return true;
}
