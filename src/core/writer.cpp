#include "writer.h"

#include "growingpause.h"
#include "overlapped.h"

#include <array>

namespace {

constexpr DWORD DataWait = 1000;         // ms
constexpr DWORD LongestRetryPause = 100; // ms, of a write that fails again and again

struct WriteCall : OverlappedCall {
    std::array<char, WriterTakeSize> achBuffer;
};

// Hands bytes to one device until told to stop.
class DeviceWriter {
  public:
    DeviceWriter(HANDLE device, HANDLE hStop) : device_(device), hStop_(hStop) {}

    // Reused from take to take, so that the data path makes no event of its own.
    WriteCall& Call() { return *call_; }

    // Bytes written, 0 on failure. Sets stopped when the stop event ended the wait.
    DWORD Write(DWORD cbBytes, bool& stopped) {
        if (!call_->PrepareWrite())
            return 0;
        DWORD written = 0;
        if (WriteFile(device_, call_->achBuffer.data(), cbBytes, &written, &call_->state))
            return written;
        if (GetLastError() != ERROR_IO_PENDING) {
            ClearError();
            return 0;
        }
        const HANDLE handles[] = {hStop_, call_->done.get()};
        if (WaitForMultipleObjects(2, handles, FALSE, INFINITE) == WAIT_OBJECT_0) {
            EndPendingCall(device_, std::move(call_));
            SetEvent(hStop_);
            stopped = true;
            return 0;
        }
        return GetOverlappedResult(device_, &call_->state, &written, FALSE) ? written : 0;
    }

  private:
    void ClearError() {
        DWORD errors = 0;
        COMSTAT status = {};
        ClearCommError(device_, &errors, &status);
    }

    HANDLE device_;
    HANDLE hStop_;
    std::unique_ptr<WriteCall> call_ = std::make_unique<WriteCall>();
};

bool IsDevice(HANDLE device) {
    return device && device != INVALID_HANDLE_VALUE;
}

} // namespace

COverlappedWrite::COverlappedWrite(int cbRing)
    : hStop_(ManualResetEvent()), lpRing_(std::make_unique<CRingBuffer>(cbRing, hStop_.get())),
      hDrained_(AutoResetEvent()) {}

COverlappedWrite::~COverlappedWrite() {
    Stop();
}

bool COverlappedWrite::Start(HANDLE device) {
    std::scoped_lock guard(lock_);
    if (IsDevice(hComm_) || !IsDevice(device))
        return false;
    hComm_ = device;
    ResetEvent(hStop_.get());
    bStop_ = false;
    hThread_ = StartModuleThread([this] { Run(); });
    return true;
}

void COverlappedWrite::Stop() {
    WorkerHandle thread;
    {
        std::scoped_lock guard(lock_);
        if (!IsDevice(hComm_))
            return;
        bStop_ = true;
        SetEvent(hStop_.get());
        thread = std::move(hThread_);
    }
    // Waited for without the lock: the thread takes it at its start.
    EndModuleThread(std::move(thread), WriterStopLimit);
    std::scoped_lock guard(lock_);
    hComm_ = INVALID_HANDLE_VALUE;
    inHand_ = 0;
}

int COverlappedWrite::Held() {
    std::scoped_lock guard(lock_);
    return lpRing_->Count();
}

int COverlappedWrite::InHand() {
    return inHand_;
}

int COverlappedWrite::Free() {
    std::scoped_lock guard(lock_);
    return lpRing_->Free();
}

bool COverlappedWrite::Write(const void* lpBytes, int cbBytes) {
    std::scoped_lock guard(lock_);
    bDrained_ = false;
    return lpRing_->Write(lpBytes, cbBytes);
}

void COverlappedWrite::Purge() {
    std::scoped_lock guard(lock_);
    if (IsDevice(hComm_))
        PurgeComm(hComm_, PURGE_TXABORT | PURGE_TXCLEAR);
    lpRing_->Purge();
}

void COverlappedWrite::Resize(int cbRing) {
    std::scoped_lock guard(lock_);
    lpRing_->Resize(cbRing);
}

// Each of these two sets its own flag before it looks at the other's, so that no signal is missed.
HANDLE COverlappedWrite::DrainedEvent() {
    bDrainedWatched_ = true;
    if (bDrained_.exchange(false))
        SetEvent(hDrained_.get());
    return hDrained_.get();
}

void COverlappedWrite::TellDrained() {
    bDrained_ = true;
    if (bDrainedWatched_.exchange(false))
        SetEvent(hDrained_.get());
}

void COverlappedWrite::Run() {
    HANDLE device;
    CRingBuffer* ring;
    {
        std::scoped_lock guard(lock_);
        device = hComm_;
        ring = lpRing_.get();
    }
    const HANDLE handles[] = {hStop_.get(), ring->DataEvent()};
    DeviceWriter writer(device, hStop_.get());
    GrowingPause retry(LongestRetryPause);
    while (!bStop_) {
        const DWORD woken = WaitForMultipleObjects(2, handles, FALSE, DataWait);
        if (woken == WAIT_OBJECT_0)
            bStop_ = true;
        while (!bStop_) {
            inHand_ = 1; // so that a byte between ring and hand is never counted nowhere
            int left = ring->TakeOn(writer.Call().achBuffer.data(), WriterTakeSize);
            inHand_ = left;
            if (!left)
                break;
            while (left && !bStop_) {
                bool stopped = false;
                // A partial write starts again at the head of the take with what is left of the count; kept
                // so on purpose, see the writer's tests.
                const DWORD written = writer.Write(static_cast<DWORD>(left), stopped);
                left -= static_cast<int>(written);
                inHand_ = left;
                if (stopped)
                    bStop_ = true;
                else if (written)
                    retry.Reset();
                else if (WaitForSingleObject(hStop_.get(), retry.Next()) == WAIT_OBJECT_0)
                    bStop_ = true;
            }
        }
        if (!bStop_ && woken == WAIT_OBJECT_0 + 1)
            TellDrained();
    }
    ring->SignalHeld(); // for the next start
}
