// What a transfer shows of itself: counts, sizes, times and words, to the host, the dialog and the log.
#include "services.h"
#include "statusdialog.h"
#include "Tc-xfer.h"

#include "core/live.h"
#include "diagnostics/debugtext.h"
#include "TarnComm.h"

#include <cstdio>

namespace {

// Makes a request, and leaves the thread if the object went away in it.
LRESULT Request(const TRANSFER& transfer, int nCode, LPARAM lParam) {
    const LRESULT result = xfRequest(transfer.hWnd, nCode, lParam);
    LeaveIfGone(transfer);
    return result;
}

void ShowElapsed(const TRANSFER& transfer) {
    const DWORD seconds = (GetTickCount() - transfer.dwStartTicks) / 1000;
    char text[32] = "";
    if (seconds)
        std::snprintf(text, sizeof text, "%02lu:%02lu:%02lu", static_cast<unsigned long>(seconds / 3600),
                      static_cast<unsigned long>(seconds / 60 % 60),
                      static_cast<unsigned long>(seconds % 60));
    ShowItem(transfer, Item_Elapsed, text);
}

void ShowNumber(const TRANSFER& transfer, int nItem, const char* szFormat, LONG value) {
    char text[32];
    std::snprintf(text, sizeof text, szFormat, static_cast<long>(value));
    ShowItem(transfer, nItem, text);
}

// In 32 bits, so that it begins anew in files above 42,949,672 bytes; kept so, see the tests. Nothing of a
// file of unknown size.
int Percent(LONG cbDone, LONG cbFile) {
    if (cbFile == 0 || cbFile == UnknownFileSize)
        return 0;
    return static_cast<int>(static_cast<DWORD>(cbDone) * 100 / static_cast<DWORD>(cbFile));
}

} // namespace

void LeaveIfGone(const TRANSFER& transfer) {
    if (RecordOf(transfer.hWnd) != transfer.lpComCtl)
        throw WorkerLeaves();
}

int xfGetAbort(TRANSFER& transfer) {
    return transfer.lpComCtl ? transfer.lpComCtl->bAbortTransfer.load() : 1;
}

void xfSetAbort(TRANSFER& transfer, int bAbort) {
    if (transfer.lpComCtl)
        transfer.lpComCtl->bAbortTransfer = bAbort;
}

void LogTransfer(TRANSFER& transfer, const char* szText) {
    if (transfer.bWireTap)
        WireTapTransfer(transfer.hWnd, "%s", szText);
    char line[1026];
    std::snprintf(line, sizeof line, "%s\r\n", szText);
    DebugText(line);
}

void xfStartFile(TRANSFER& transfer) {
    transfer.dwStartTicks = GetTickCount();
    transfer.lBytesDone = 0;
    transfer.lFileOffset = 0;
    transfer.lFileSize = 0;
    for (const int item : {Item_BytesDone, Item_FileSize, Item_Status, Item_Elapsed, Item_BlockSize})
        ShowItem(transfer, item, "");
    LogTransfer(transfer, "Beginning to transfer a new file");
}

void xfSetFileSize(TRANSFER& transfer, LONG cbFile) {
    xfUpdate(transfer, 0, 0);
    transfer.lFileSize = cbFile;
    transfer.lBytesDone = 0;
    if (cbFile != UnknownFileSize) {
        ShowNumber(transfer, Item_FileSize, "%ld bytes", cbFile);
        Request(transfer, Request_FileSize, cbFile);
    }
    char text[64];
    std::snprintf(text, sizeof text, "Total bytes: %ld", static_cast<long>(cbFile));
    LogTransfer(transfer, text);
}

void xfUpdate(TRANSFER& transfer, LONG cbDone, int cbBlock) {
    if (!transfer.lBytesDone)
        transfer.dwStartTicks = GetTickCount();
    if (transfer.hDlg) {
        ShowElapsed(transfer);
        if (cbBlock)
            ShowNumber(transfer, Item_BlockSize, "%ld", cbBlock);
        else
            ShowItem(transfer, Item_BlockSize, "");
    }
    transfer.lBytesDone = cbDone;
    if (transfer.hDlg) {
        ShowPercent(transfer, Percent(cbDone, transfer.lFileSize));
        ShowNumber(transfer, Item_BytesDone, "%ld bytes", cbDone);
    }
    Request(transfer, Request_BytesDone, cbDone);
    char text[64];
    std::snprintf(text, sizeof text, "%ld bytes transferred", static_cast<long>(cbDone));
    LogTransfer(transfer, text);
}

void xfSetMessage(TRANSFER& transfer, const char* szText) {
    ShowItem(transfer, Item_Status, szText);
    Request(transfer, Request_StatusText, reinterpret_cast<LPARAM>(szText));
    if (*szText)
        LogTransfer(transfer, szText);
}

void xfFileSkipped(TRANSFER& transfer) {
    Request(transfer, Request_SkipFile, 0);
    LogTransfer(transfer, "File was skipped.");
}

void xfFileDone(TRANSFER& transfer) {
    Request(transfer, Request_EndFile, 0);
    LogTransfer(transfer, "File has been transferred");
}
