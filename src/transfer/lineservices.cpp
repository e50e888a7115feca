// The services that touch the line and the clock.
#include "services.h"

#include "core/deadline.h"
#include "core/portworker.h"
#include "diagnostics/wiretap.h"
#include "TarnComm.h"

#include <algorithm>

namespace {

using Until = WorkerLine::Until;

constexpr DWORD longestPump = 50;        // ms
constexpr DWORD longestWaitSlice = 1000; // ms
constexpr DWORD flushLimit = 10000;      // ms

bool IsStopped(const TRANSFER& transfer) {
    return WaitForSingleObject(transfer.hStop, 0) != WAIT_TIMEOUT;
}

// False on a closed port, which asks for the end.
bool PortIsReady(TRANSFER& transfer) {
    if (xfPortIsOpen(transfer))
        return true;
    xfSetAbort(transfer, 1);
    return false;
}

bool IsAborted(TRANSFER& transfer) {
    return xfGetAbort(transfer) && !transfer.bFinishing;
}

// Stopped, without its port, or aborted before it is finishing.
bool MustStop(TRANSFER& transfer) {
    if (!IsStopped(transfer) && xfPortIsOpen(transfer))
        return IsAborted(transfer);
    xfSetAbort(transfer, 1);
    return true;
}

// Messages of the thread: those of the dialog, if there is one, and nobody else's.
void ServeMessages(TRANSFER& transfer) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        LeaveIfGone(transfer);
        if (message.message == WM_QUIT) {
            xfSetAbort(transfer, 1);
            return;
        }
        if (!transfer.hDlg || IsDialogMessageA(transfer.hDlg, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

void xfPump(TRANSFER& transfer, Until what, DWORD milliseconds) {
    const bool came = transfer.lpLine->Pause(what, std::min(milliseconds, longestPump));
    const DWORD now = GetTickCount();
    // Not for each byte of a busy line.
    if (!came || now - transfer.dwMessagesServed >= longestPump) {
        ServeMessages(transfer);
        transfer.dwMessagesServed = now;
    }
    LeaveIfGone(transfer);
}

// Waits in short pauses until done says so, the time has passed, or the transfer has to end.
template <class Done>
void WaitUntil(TRANSFER& transfer, Until what, DWORD milliseconds, Done&& done) {
    const Deadline deadline(milliseconds);
    while (!done() && !MustStop(transfer) && !deadline.Passed())
        xfPump(transfer, what, deadline.Left());
}

} // namespace

bool xfPortIsOpen(TRANSFER& transfer) {
    return transfer.lpLine->IsOpen();
}

// What was read ahead went with its port.
DWORD xfInQueue(TRANSFER& transfer) {
    return xfPortIsOpen(transfer) ? transfer.lpLine->InQueue() : 0;
}

DWORD xfOutQueue(TRANSFER& transfer) {
    return transfer.lpLine->OutQueue();
}

bool xfDataWaiting(TRANSFER& transfer) {
    return xfInQueue(transfer) > 0;
}

DWORD xfPutChar(TRANSFER& transfer, int c) {
    const char byte = static_cast<char>(c);
    return xfWrite(transfer, &byte, 1);
}

DWORD xfWrite(TRANSFER& transfer, const void* lpBytes, DWORD cbBytes) {
    if (!PortIsReady(transfer))
        return 0;
    if (cbBytes && transfer.lpComCtl->bWireTapOutput)
        LogData(transfer.hWnd, transfer.szObjectName, "writes", lpBytes, cbBytes);
    bool written = false;
    // A host that sends at the same time may have filled the ring: then there is room soon.
    WaitUntil(transfer, Until::OutputGone, flushLimit,
              [&] { return written = transfer.lpLine->Write(lpBytes, cbBytes); });
    return written ? cbBytes : 0;
}

int xfGetChar(TRANSFER& transfer, DWORD milliseconds) {
    int c = transfer.lpLine->Take();
    if (c >= 0)
        return c;
    DWORD left = milliseconds;
    bool dataCame = false;
    while (left && !dataCame) {
        const DWORD slice = std::min(left, longestWaitSlice);
        dataCame = xfWaitForInput(transfer, slice);
        left -= slice;
        if (xfGetAbort(transfer))
            return -1;
    }
    c = transfer.lpLine->Take();
    if (c < 0)
        LogTransfer(transfer, "Receive timeout.");
    return c;
}

bool xfWaitForInput(TRANSFER& transfer, DWORD milliseconds) {
    if (!PortIsReady(transfer))
        return false;
    bool came = false;
    WaitUntil(transfer, Until::Input, milliseconds, [&] { return came = xfDataWaiting(transfer); });
    return came;
}

void xfDelay(TRANSFER& transfer, DWORD milliseconds) {
    if (PortIsReady(transfer))
        WaitUntil(transfer, Until::Time, milliseconds, [] { return false; });
}

void xfFlushOutput(TRANSFER& transfer) {
    if (!PortIsReady(transfer))
        return;
    bool gone = false;
    WaitUntil(transfer, Until::OutputGone, flushLimit, [&] { return gone = xfOutQueue(transfer) == 0; });
    if (!gone && transfer.bWireTap)
        LogTransfer(transfer, "Flushing output buffer failed.");
}

void xfClearOutput(TRANSFER& transfer) {
    LogTransfer(transfer, "Clear output buffer");
    transfer.lpLine->ClearOutput();
}

void xfClearInput(TRANSFER& transfer) {
    LogTransfer(transfer, "Clearing input buffer buffer");
    transfer.lpLine->ClearInput();
}

void xfSendBreak(TRANSFER& transfer, bool on) {
    transfer.lpLine->SendBreak(on);
}

int TARNAPI TimerExpired(TRANSFER* lpTransfer, DWORD dwDeadline) {
    if (!lpTransfer || MustStop(*lpTransfer) || xfGetAbort(*lpTransfer))
        return 1;
    return GetTickCount() >= dwDeadline;
}
