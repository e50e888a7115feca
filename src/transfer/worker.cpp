#include "worker.h"

#include "kermit.h"
#include "modemprotocol.h"
#include "services.h"
#include "statusdialog.h"
#include "Tc-xfer.h"
#include "transferstate.h"

#include "core/ascii.h"
#include "core/comapartment.h"
#include "core/deadline.h"
#include "core/idle.h"
#include "core/live.h"
#include "core/notify.h"
#include "core/portworker.h"
#include "core/stoppablesend.h"
#include "core/thread.h"
#include "core/tick.h"
#include "core/ticksource.h"
#include "diagnostics/swallow.h"
#include "TarnComm.h"

#include <cstdio>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr DWORD cancelSilence = 2000;   // ms without a byte after which the line counts as quiet
constexpr DWORD cancelLimit = 30000;    // ms for a sender that doesn't become quiet
constexpr DWORD workerStopLimit = 2000; // ms until a worker that won't stop is terminated

// Of the worker that runs on this thread.
thread_local StoppableSend* windowSend;

LRESULT SendToWindow(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto answer = windowSend->Send(message, wParam, lParam, 0);
    if (!answer)
        throw WorkerLeaves();
    return *answer;
}

// Sends what nobody but the object's own worker may ask of the window: announced in the record first.
LRESULT SendAnnounced(COMCTL& record, UINT message, int nCode, LPARAM lParam) {
    class Announcement {
      public:
        Announcement(TransferShare& share, const WindowRequest& request) : share_(share), request_(request) {
            share_.lpWindowRequest = &request;
        }
        // After an answer the record may be another worker's, or gone.
        ~Announcement() {
            if (!request_.bTaken)
                share_.lpWindowRequest = nullptr;
        }
        Announcement(const Announcement&) = delete;
        Announcement& operator=(const Announcement&) = delete;

      private:
        TransferShare& share_;
        const WindowRequest& request_;
    };
    const WindowRequest request{nCode, lParam};
    const Announcement announcement(record, request);
    return SendToWindow(message, static_cast<WPARAM>(nCode), lParam);
}

// The record of a request that its worker has announced, once; null for everybody else's.
COMCTL* TakeAnnounced(HWND hWnd, int nCode, LPARAM lParam) {
    COMCTL* record = RecordOf(hWnd);
    const WindowRequest* request = record ? record->lpWindowRequest.load() : nullptr;
    if (!request || request->nCode != nCode || request->lParam != lParam)
        return nullptr;
    record->lpWindowRequest = nullptr;
    request->bTaken = true;
    return record;
}

// A request that only the window's thread can answer.
LRESULT RequestOnWindow(const TRANSFER& transfer, int nCode, LPARAM lParam) {
    return SendAnnounced(*transfer.lpComCtl, TransferMessage, nCode, lParam);
}

// Keeps the owner of the dialog disabled, whatever way the worker leaves.
class OwnerLock {
  public:
    void Take(HWND hOwner) {
        hOwner_ = hOwner;
        if (hOwner_)
            EnableWindow(hOwner_, FALSE);
    }
    void Release() {
        if (hOwner_)
            EnableWindow(std::exchange(hOwner_, nullptr), TRUE);
    }
    OwnerLock() = default;
    ~OwnerLock() { Release(); }
    OwnerLock(const OwnerLock&) = delete;
    OwnerLock& operator=(const OwnerLock&) = delete;

  private:
    HWND hOwner_ = nullptr;
};

// The port in the state that a transfer needs, until it goes.
class TransferPort {
  public:
    explicit TransferPort(TRANSFER& transfer) : transfer_(transfer) {}
    ~TransferPort() { Restore(); }
    TransferPort(const TransferPort&) = delete;
    TransferPort& operator=(const TransferPort&) = delete;

    bool SetUp() {
        DCB block = {};
        block.DCBlength = sizeof block;
        if (!transfer_.lpLine->GetState(block))
            return false;
        const TransferState states = StatesOfTransfer(block, transfer_.nProtocol);
        transfer_.dcbSaved = states.afterwards;
        transfer_.dwBaud = block.BaudRate;
        isSetUp_ = transfer_.lpLine->SetState(states.meanwhile);
        return isSetUp_;
    }

    void Restore() {
        if (std::exchange(isSetUp_, false))
            transfer_.lpLine->SetState(transfer_.dcbSaved);
    }

  private:
    TRANSFER& transfer_;
    bool isSetUp_ = false;
};

// 2 locks the owner and 1 does not, whatever the names of the values say; kept so, see the tests.
void MakeDialog(TRANSFER& transfer, OwnerLock& owner) {
    constexpr int dialogThatLocks = 2;
    transfer.nDialogType = static_cast<int>(xfRequest(transfer.hWnd, Request_DialogType, 0));
    if (transfer.nDialogType != 1 && transfer.nDialogType != dialogThatLocks)
        return;
    transfer.hDlg = reinterpret_cast<HWND>(
        RequestOnWindow(transfer, Request_CreateDialog, reinterpret_cast<LPARAM>(&DlgProc)));
    if (transfer.nDialogType == dialogThatLocks)
        owner.Take(reinterpret_cast<HWND>(xfRequest(transfer.hWnd, Request_DialogParent, 0)));
    if (transfer.hDlg)
        OpenStatusDialog(transfer);
}

void CloseDialog(TRANSFER& transfer) {
    if (transfer.hDlg)
        RequestOnWindow(transfer, Request_DestroyDialog, reinterpret_cast<LPARAM>(transfer.hDlg));
    transfer.hDlg = nullptr;
}

bool IsModemProtocol(int nProtocol) {
    return nProtocol >= Protocol_XModemChecksum && nProtocol <= Protocol_ZModem;
}

// Non-zero for failure.
int RunProtocol(TRANSFER& transfer) {
    const bool send = transfer.nDirection == XferUpload;
    if (!send && transfer.nDirection != XferDownload)
        return 1;
    if (transfer.nProtocol == Protocol_Kermit)
        return send ? KermitSend(transfer) : KermitReceive(transfer);
    if (!IsModemProtocol(transfer.nProtocol))
        return 1;
    CModemProtocol engine(transfer, transfer.lpComCtl->nResumeMethod != 0);
    return send ? engine.StartModemSend(transfer.nProtocol) : engine.StartModemReceive(transfer.nProtocol);
}

// Tells the other side that it is over, and waits until it is quiet.
void xfCancelSequence(TRANSFER& transfer) {
    xfSetAbort(transfer, 0);
    xfClearOutput(transfer);
    const std::string cancel = std::string(10, ascii::CAN) + std::string(10, ascii::BS);
    xfWrite(transfer, cancel.data(), static_cast<DWORD>(cancel.size()));
    xfFlushOutput(transfer);
    const Deadline limit(cancelLimit);
    while (!limit.Passed() && xfGetChar(transfer, cancelSilence) >= 0)
        ;
    xfClearInput(transfer);
    xfSetAbort(transfer, 1);
}

// For an outside watcher: nothing in the module makes this event.
void TellWatcher() {
    const EventHandle watcher(OpenEventA(EVENT_MODIFY_STATE, FALSE, "TARNABORTEVENT"));
    if (watcher)
        SetEvent(watcher.get());
}

// Non-zero for failure.
int RunWithPort(TRANSFER& transfer, TransferPort& port) {
    OwnerLock owner;
    transfer.nDirection = static_cast<int>(xfRequest(transfer.hWnd, Request_Direction, 0));
    MakeDialog(transfer, owner);
    const int bError = RunProtocol(transfer);
    owner.Release();
    const int bAborted = xfGetAbort(transfer);
    if (bAborted || transfer.bFileFailed)
        xfCancelSequence(transfer);
    transfer.bFinishing = 1;
    xfFlushOutput(transfer);
    port.Restore();
    CloseDialog(transfer);
    return bError || bAborted;
}

// Takes the line, runs the protocol, gives the line back. Non-zero for failure; nothing: the port is not to
// be had.
std::optional<int> RunOnLine(TRANSFER& transfer) {
    WorkerLine line(*transfer.lpComCtl, transfer.hStop);
    transfer.lpLine = &line;
    TransferPort port(transfer);
    if (!port.SetUp())
        return std::nullopt;
    return RunWithPort(transfer, port);
}

// The end is told when the line has been given up: the host may use it at once.
void RunTransfer(TRANSFER& transfer) {
    transfer.nProtocol = static_cast<int>(xfRequest(transfer.hWnd, Request_Protocol, 0));
    LogTransfer(transfer, (std::string("Transfer protocol is ") + ProtocolName(transfer.nProtocol)).c_str());
    const std::optional<int> bFailed = RunOnLine(transfer);
    xfRequest(transfer.hWnd, bFailed.value_or(1) ? Request_FailTransfer : Request_EndTransfer, 0);
    if (bFailed)
        TellWatcher();
}

// A transfer that can't go on (memory is out) still comes to its end, or the object would wait for it for
// ever.
void RunTransferToItsEnd(TRANSFER& transfer) {
    try {
        RunTransfer(transfer);
    } catch (const WorkerLeaves&) {
        throw;
    } catch (...) {
        SwallowException("TransferThread");
        CloseDialog(transfer);
        xfRequest(transfer.hWnd, Request_FailTransfer, 0);
    }
}

struct WorkerStart {
    HWND hWnd;
    EventHandle stop;
    char szObjectName[NameSize];
};

void TransferThread(const WorkerStart& start) {
    StoppableSend send(start.hWnd, start.stop.get());
    windowSend = &send;
    // Left before the sender goes: leaving it may still serve a late answer.
    const ComApartment apartment;
    TRANSFER Transfer;
    Transfer.lpComCtl = RecordOf(start.hWnd);
    if (!Transfer.lpComCtl)
        return;
    Transfer.hWnd = start.hWnd;
    Transfer.hStop = start.stop.get();
    Transfer.bWireTap = Transfer.lpComCtl->bWireTapTransfer;
    Transfer.uMessage = RegisterWindowMessageA("TarnTransfer");
    std::snprintf(Transfer.szObjectName, sizeof Transfer.szObjectName, "%s", start.szObjectName);
    try {
        RunTransferToItsEnd(Transfer);
    } catch (const WorkerLeaves&) {
        // The object is gone, and with it everybody who would want to hear how it ended. Its dialog may
        // outlive this record.
        if (Transfer.hDlg)
            SetWindowLongPtrA(Transfer.hDlg, DWLP_USER, 0);
    }
}

HANDLE Duplicate(HANDLE handle) {
    const HANDLE self = GetCurrentProcess();
    HANDLE copy = nullptr;
    DuplicateHandle(self, handle, self, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return copy;
}

HANDLE StartWorker(COMCTL& record) {
    if (!record.hTransferStop)
        record.hTransferStop = ManualResetEvent();
    // The worker has a handle of its own: the record's may be replaced while it still says goodbye.
    auto start =
        std::make_shared<WorkerStart>(record.hWnd, EventHandle(Duplicate(record.hTransferStop.get())));
    record.bAbortTransfer = 0; // not by the worker itself: an abort may come before its first instruction
    std::snprintf(start->szObjectName, sizeof start->szObjectName, "%s", record.szName);
    return StartModuleThread([start] { TransferThread(*start); }).release();
}

bool WorkerRuns(const COMCTL& record) {
    return record.hTransferThread && WaitForSingleObject(record.hTransferThread.get(), 0) == WAIT_TIMEOUT;
}

} // namespace

HANDLE StartWorkerAlone(COMCTL& record) {
    if (WorkerRuns(record))
        return nullptr;
    record.hTransferThread.reset(StartWorker(record)); // the object waits for it when it goes
    record.bTransferAlone = 1;
    return record.hTransferThread ? Duplicate(record.hTransferThread.get()) : nullptr;
}

bool WorkerStandsAlone(const COMCTL& record) {
    return record.bTransferAlone && WorkerRuns(record);
}

bool BeginTransfer(COMCTL& record) {
    record.bTransferAlone = 0;
    record.nTransferStatus = TransferStatus_WaitForFile;
    record.hTransferStop = ManualResetEvent();
    try {
        record.hTransferThread.reset(StartWorker(record));
    } catch (const std::bad_alloc&) {
        record.hTransferThread.reset();
    }
    return static_cast<bool>(record.hTransferThread);
}

void EndTransferThread(COMCTL& record) {
    if (record.hTransferThread) {
        SetEvent(record.hTransferStop.get());
        if (WaitServingSentMessages(record.hTransferThread.get(), workerStopLimit) != WAIT_OBJECT_0) {
            TerminateThread(record.hTransferThread.get(), 0);
            record.hTransferThread.reset();
        }
    }
    if (const HWND hDlg = record.hTransferDialog.exchange(nullptr))
        DestroyStatusDialog(hDlg);
}

void DeliverTransfer(HWND) {
    SendToWindow(TransferEventMessage, 0, 0);
}

void DeliverEndOfTransfer(HWND hWnd, int nStatus) {
    if (COMCTL* record = RecordOf(hWnd))
        SendAnnounced(*record, TransferEndMessage, nStatus, 0);
}

LRESULT AnswerWindowRequest(HWND hWnd, int nCode, LPARAM lParam) {
    return TakeAnnounced(hWnd, nCode, lParam) ? xfRequest(hWnd, nCode, lParam) : 0;
}

LRESULT AnswerTransferEvent(HWND hWnd) {
    if (RecordOf(hWnd))
        Notify(hWnd, Event_Transfer);
    return 0;
}

LRESULT AnswerTransferEnd(HWND hWnd, int nStatus) {
    COMCTL* record = TakeAnnounced(hWnd, nStatus, 0);
    if (!record)
        return 0;
    const ObjectWatch watch(*record);
    record->bTransferAlone = 0;
    SettleTransfer(*record, nStatus);
    Notify(hWnd, Event_Transfer);
    if (watch.Gone())
        return 0;
    SetUpTick(*record);
    if (record->hFocusWindow == hWnd)
        SetFocus(hWnd);
    // Ticks that came during the transfer found nothing, and no other may come for bytes that are here.
    if (watch.Alive())
        Tick(hWnd);
    return 0;
}
