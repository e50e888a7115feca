#include "portworker.h"

#include "portstatus.h"
#include "returnedinput.h"
#include "writer.h"

#include <algorithm>

namespace {

// A read ends when its bytes are there, however long that takes.
constexpr COMMTIMEOUTS patientReads = {0, 0, 0, 0, 0};

constexpr DWORD outputPoll = 2;      // ms between looks at the driver's own queue, which has no event
constexpr DWORD failedReadPause = 5; // ms where no read can be made pending

} // namespace

template <class Call>
auto WorkerLine::OnDevice(Call&& call) {
    std::scoped_lock guard(record_.DeviceLock);
    using Result = decltype(call());
    const bool present = number_ == record_.nDevice && device_ && device_ != INVALID_HANDLE_VALUE;
    return present ? call() : Result{};
}

WorkerLine::WorkerLine(COMCTL& record, HANDLE hStop)
    : record_(record), hStop_(hStop), block_(std::make_unique<BlockRead>()) {
    {
        std::scoped_lock guard(record_.DeviceLock);
        device_ = record_.hComm;
        number_ = record_.nDevice;
    }
    // An earlier transfer may have read what is meant for this one.
    end_ = static_cast<size_t>(
        TakeReturnedInput(record_, block_->bytes.data(), static_cast<int>(block_->bytes.size())));
    timeoutsChanged_ = OnDevice([&] {
        COMMTIMEOUTS timeouts = patientReads;
        return GetCommTimeouts(device_, &timeouts_) && SetCommTimeouts(device_, &timeouts);
    });
}

WorkerLine::~WorkerLine() {
    EndPending();
    GiveBack();
    if (timeoutsChanged_)
        OnDevice([&] { return SetCommTimeouts(device_, &timeouts_); });
}

bool WorkerLine::IsOpen() {
    return OnDevice([] { return true; });
}

bool WorkerLine::GetState(DCB& block) {
    return OnDevice([&] { return GetCommState(device_, &block) != FALSE; });
}

bool WorkerLine::SetState(DCB block) {
    return OnDevice([&] { return SetCommState(device_, &block) != FALSE; });
}

DWORD WorkerLine::InQueue() {
    if (!HasUnread())
        Fill();
    const DWORD unread = static_cast<DWORD>(end_ - next_);
    // What lies here answers most questions; only a block that was full may have more behind it.
    if (end_ != block_->bytes.size())
        return unread;
    return unread + OnDevice([&] {
               DWORD errors = 0;
               COMSTAT status = {};
               return ClearCommError(device_, &errors, &status) ? status.cbInQue : 0;
           });
}

DWORD WorkerLine::OutQueue() {
    return OnDevice([&] {
        DWORD errors = 0;
        COMSTAT status = {};
        if (!ClearCommError(device_, &errors, &status))
            return DWORD{0};
        return static_cast<DWORD>(OutputCount(record_, status.cbOutQue));
    });
}

int WorkerLine::Take() {
    if (!HasUnread() && !Fill())
        return -1;
    return static_cast<unsigned char>(block_->bytes[next_++]);
}

bool WorkerLine::Write(const void* lpBytes, DWORD cbBytes) {
    return OnDevice([&] { return record_.lpOverlappedWrite->Write(lpBytes, static_cast<int>(cbBytes)); });
}

void WorkerLine::ClearInput() {
    EndPending();
    next_ = end_ = 0;
    OnDevice([&] { return PurgeComm(device_, PURGE_RXCLEAR); });
}

void WorkerLine::ClearOutput() {
    OnDevice([&] {
        record_.lpOverlappedWrite->Purge();
        return true;
    });
}

void WorkerLine::SendBreak(bool on) {
    OnDevice([&] { return on ? SetCommBreak(device_) : ClearCommBreak(device_); });
}

// Puts what is there into the empty block. False: nothing is there.
bool WorkerLine::Fill() {
    next_ = end_ = 0;
    if (pending_ && !TakePending())
        return false;
    return OnDevice([&] { return ReadBlock(); }) || HasUnread();
}

// The byte of the pending read, if it has come.
bool WorkerLine::TakePending() {
    if (!HasOverlappedIoCompleted(&pending_->state))
        return false;
    DWORD count = 0;
    const bool read = GetOverlappedResult(device_, &pending_->state, &count, FALSE) && count == 1;
    if (read)
        block_->bytes[end_++] = pending_->byte;
    pendingFailed_ = !read;
    spare_ = std::move(pending_);
    return true;
}

// Counted bytes come at once; where they don't, somebody else read them, and the device must not keep the
// memory.
bool WorkerLine::EndsSoon(BlockRead& read) {
    if (WaitForSingleObject(read.done.get(), failedReadPause) == WAIT_OBJECT_0)
        return true;
    CancelIoEx(device_, &read.state);
    return WaitForSingleObject(read.done.get(), CancelLimit) == WAIT_OBJECT_0;
}

// Appends what the driver has counted; such a read ends at once.
bool WorkerLine::ReadBlock() {
    DWORD errors = 0;
    COMSTAT status = {};
    if (!ClearCommError(device_, &errors, &status))
        return false;
    const DWORD room = static_cast<DWORD>(block_->bytes.size() - end_);
    const DWORD wanted = std::min(status.cbInQue, room);
    if (!wanted || !block_->Prepare())
        return false;
    DWORD count = 0;
    if (!ReadFile(device_, block_->bytes.data() + end_, wanted, &count, &block_->state)) {
        if (GetLastError() != ERROR_IO_PENDING)
            return false;
        if (!EndsSoon(*block_)) {
            static_cast<void>(block_.release());
            block_ = std::make_unique<BlockRead>();
            end_ = 0;
            return false;
        }
        count = 0;
        GetOverlappedResult(device_, &block_->state, &count, FALSE);
    }
    end_ += std::min(count, wanted);
    return count != 0;
}

void WorkerLine::StartPending() {
    if (pending_)
        return;
    auto read = spare_ ? std::move(spare_) : std::make_unique<ByteRead>();
    const bool started = OnDevice([&] {
        if (!read->Prepare())
            return false;
        DWORD count = 0;
        return ReadFile(device_, &read->byte, 1, &count, &read->state) || GetLastError() == ERROR_IO_PENDING;
    });
    (started ? pending_ : spare_) = std::move(read);
}

// Ends the pending read; a byte that comes in this moment is kept.
void WorkerLine::EndPending() {
    if (!pending_)
        return;
    next_ = end_ = 0; // while a read is pending there is nothing else
    CancelIoEx(device_, &pending_->state);
    if (WaitForSingleObject(pending_->done.get(), CancelLimit) == WAIT_OBJECT_0)
        TakePending();
    else
        static_cast<void>(pending_.release());
}

void WorkerLine::GiveBack() {
    if (HasUnread())
        OnDevice([&] {
            GiveBackInput(record_, block_->bytes.data() + next_, end_ - next_);
            return true;
        });
    next_ = end_ = 0;
}

bool WorkerLine::Pause(Until what, DWORD milliseconds) {
    HANDLE handles[2] = {hStop_, nullptr};
    DWORD count = 1;
    if (what == Until::Input) {
        if (HasUnread())
            return true;
        if (!pendingFailed_)
            StartPending();
        pendingFailed_ = false;
        if (pending_)
            handles[count++] = pending_->done.get();
        else
            milliseconds = std::min(milliseconds, failedReadPause);
    }
    if (what == Until::OutputGone) {
        handles[count++] = record_.lpOverlappedWrite->DrainedEvent();
        milliseconds = std::min(milliseconds, outputPoll);
    }
    const DWORD woken = MsgWaitForMultipleObjects(count, handles, FALSE, milliseconds, QS_ALLINPUT);
    return count == 2 && woken == WAIT_OBJECT_0 + 1;
}
