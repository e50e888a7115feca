#include "scripteddevice.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>

namespace host {

namespace {

// Handles of the device: values that the platform gives to nobody, as its own are multiples of four. None is
// used twice, so a call after the closing is seen as such.
constexpr ULONG_PTR handleBase = 0x5C000002;
constexpr ULONG_PTR handleMask = 0xFF000003;
constexpr ULONG_PTR handleStep = 4;

// What the platform keeps in OVERLAPPED::Internal.
constexpr ULONG_PTR statusPending = 0x103;
constexpr ULONG_PTR statusOfError = 0xC0070000; // joined with the error code

std::atomic<ScriptedDevice*> present{nullptr};
std::atomic<ULONG_PTR> nextHandle{handleBase};

// Read before the program's constructors have run, so they stand apart from the device.
std::atomic<bool> namedEventsFail{false};
std::atomic<DWORD> manualEventsThread{0}; // it alone gets manual events, 0: every thread does
std::atomic<DWORD> systemTextLength{0};

BOOL Failure(DWORD error) {
    SetLastError(error);
    return FALSE;
}

std::string Hex(DWORD value) {
    std::ostringstream text;
    text << std::hex << value;
    return text.str();
}

std::string_view NameOf(std::string_view line) {
    return line.substr(0, line.find(' '));
}

const char* KindName(PendingKind kind) {
    switch (kind) {
    case PendingKind::Read:
        return "ReadFile";
    case PendingKind::Write:
        return "WriteFile";
    case PendingKind::Wait:
        return "WaitCommEvent";
    }
    return "";
}

} // namespace

ScriptedDevice::ScriptedDevice() {
    state_.DCBlength = sizeof state_;
    state_.BaudRate = 1200;
    present = this;
}

ScriptedDevice::~ScriptedDevice() {
    present = nullptr;
    FailNamedEvents(false);
    FailManualEventsElsewhere(false);
    LengthenSystemTexts(0);
}

ScriptedDevice* ScriptedDevice::Present() {
    return present;
}

bool ScriptedDevice::Owns(HANDLE handle) {
    return (reinterpret_cast<ULONG_PTR>(handle) & handleMask) == handleBase;
}

bool ScriptedDevice::EventFails(BOOL manualReset, const char* name) {
    if (name)
        return namedEventsFail;
    const DWORD thread = manualEventsThread;
    return manualReset && thread && thread != GetCurrentThreadId();
}

void ScriptedDevice::FailNamedEvents(bool fail) {
    namedEventsFail = fail;
}

void ScriptedDevice::FailManualEventsElsewhere(bool fail) {
    manualEventsThread = fail ? GetCurrentThreadId() : 0;
}

void ScriptedDevice::LengthenSystemTexts(DWORD length) {
    systemTextLength = length;
}

DWORD ScriptedDevice::SystemTextLength() {
    return systemTextLength;
}

// What it was told

std::vector<std::string> ScriptedDevice::Calls() const {
    const DeviceLock guard(lock_);
    return calls_;
}

std::vector<std::string> ScriptedDevice::CallsOf(std::initializer_list<std::string_view> names) const {
    std::vector<std::string> chosen;
    for (const std::string& line : Calls())
        if (std::ranges::find(names, NameOf(line)) != names.end())
            chosen.push_back(line);
    return chosen;
}

int ScriptedDevice::Count(std::string_view name) const {
    const DeviceLock guard(lock_);
    return static_cast<int>(std::ranges::count(calls_, name, NameOf));
}

bool ScriptedDevice::Saw(std::string_view line) const {
    const DeviceLock guard(lock_);
    return std::ranges::find(calls_, line) != calls_.end();
}

void ScriptedDevice::Forget() {
    const DeviceLock guard(lock_);
    calls_.clear();
    states_.clear();
    timeouts_.clear();
    attempts_.clear();
    written_.clear();
}

std::vector<DCB> ScriptedDevice::StatesGiven() const {
    const DeviceLock guard(lock_);
    return states_;
}

std::string ScriptedDevice::Written() const {
    const DeviceLock guard(lock_);
    return written_;
}

std::vector<std::string> ScriptedDevice::WriteAttempts() const {
    const DeviceLock guard(lock_);
    return attempts_;
}

std::vector<COMMTIMEOUTS> ScriptedDevice::TimeoutsGiven() const {
    const DeviceLock guard(lock_);
    return timeouts_;
}

bool ScriptedDevice::IsOpen() const {
    const DeviceLock guard(lock_);
    return !open_.empty();
}

int ScriptedDevice::PendingCount(PendingKind kind) const {
    const DeviceLock guard(lock_);
    return static_cast<int>(std::ranges::count(pending_, kind, &PendingCall::kind));
}

// Switches

void ScriptedDevice::FailOpen(DWORD error) {
    const DeviceLock guard(lock_);
    openError_ = error;
}

void ScriptedDevice::RefuseState(bool refuse) {
    const DeviceLock guard(lock_);
    refusesState_ = refuse;
}

void ScriptedDevice::SetState(const DCB& state) {
    const DeviceLock guard(lock_);
    state_ = state;
}

void ScriptedDevice::SetModemStatus(DWORD status) {
    const DeviceLock guard(lock_);
    modemStatus_ = status;
}

void ScriptedDevice::FailStatus(bool fail) {
    const DeviceLock guard(lock_);
    failsStatus_ = fail;
}

void ScriptedDevice::SetOutputQueue(DWORD bytes) {
    const DeviceLock guard(lock_);
    outputQueue_ = bytes;
}

void ScriptedDevice::RaiseErrors(DWORD errors) {
    const DeviceLock guard(lock_);
    errors_ |= errors;
}

void ScriptedDevice::Lay(const std::string& bytes) {
    const DeviceLock guard(lock_);
    QueueInput(bytes);
}

void ScriptedDevice::HoldOnly(size_t bytes) {
    const DeviceLock guard(lock_);
    inputRoom_ = bytes;
}

void ScriptedDevice::Arrive(const std::string& bytes) {
    Lay(bytes);
    RaiseEvent(EV_RXCHAR);
}

void ScriptedDevice::OnRead(Answer answer, DWORD error) {
    const DeviceLock guard(lock_);
    readAnswer_ = answer;
    readError_ = error;
}

void ScriptedDevice::OnWrite(Answer answer, DWORD error) {
    const DeviceLock guard(lock_);
    writeAnswer_ = answer;
    writeError_ = error;
}

void ScriptedDevice::FailWrites(int times, DWORD error) {
    const DeviceLock guard(lock_);
    failingWrites_ = times;
    failingWriteError_ = error;
}

void ScriptedDevice::TakeOnly(DWORD bytes) {
    const DeviceLock guard(lock_);
    writeLimit_ = bytes;
}

void ScriptedDevice::OnWait(Answer answer, DWORD mask) {
    const DeviceLock guard(lock_);
    waitAnswer_ = answer;
    waitMask_ = mask;
}

void ScriptedDevice::RaiseEvent(DWORD mask) {
    const DeviceLock guard(lock_);
    raised_ |= mask;
    DeliverEvents();
}

void ScriptedDevice::LetGo(bool letsGo) {
    const DeviceLock guard(lock_);
    letsGo_ = letsGo;
}

bool ScriptedDevice::CompleteRead() {
    const DeviceLock guard(lock_);
    return FinishFirst(PendingKind::Read, ERROR_SUCCESS);
}

bool ScriptedDevice::FailPendingRead(DWORD error, DWORD arrived) {
    const DeviceLock guard(lock_);
    return FinishFirst(PendingKind::Read, error, arrived);
}

bool ScriptedDevice::CompleteWrite() {
    const DeviceLock guard(lock_);
    return FinishFirst(PendingKind::Write, ERROR_SUCCESS);
}

// Pending calls; the lock is held

bool ScriptedDevice::IsCurrent(HANDLE handle) const {
    return std::ranges::find(open_, handle) != open_.end();
}

BOOL ScriptedDevice::StartPending(PendingCall call) {
    call.state->Internal = statusPending;
    call.state->InternalHigh = 0;
    ResetEvent(call.state->hEvent);
    pending_.push_back(std::move(call));
    return Failure(ERROR_IO_PENDING);
}

void ScriptedDevice::Finish(const PendingCall& call, DWORD error, DWORD count) {
    call.state->InternalHigh = count;
    call.state->Internal = error ? statusOfError | error : 0;
    SetEvent(call.state->hEvent);
}

bool ScriptedDevice::FinishFirst(PendingKind kind, DWORD error, DWORD arrived) {
    const auto found = std::ranges::find(pending_, kind, &PendingCall::kind);
    if (found == pending_.end())
        return false;
    const PendingCall call = *found;
    pending_.erase(found);
    DWORD count = 0;
    if (kind == PendingKind::Read)
        count = TakeInput(call.target, error ? std::min(arrived, call.size) : call.size);
    if (kind == PendingKind::Write && !error) {
        written_ += call.bytes;
        count = call.size;
    }
    if (kind == PendingKind::Wait)
        *static_cast<DWORD*>(call.target) = std::exchange(raised_, 0);
    Finish(call, error, count);
    return true;
}

void ScriptedDevice::FinishAll(PendingKind kind, DWORD error) {
    while (letsGo_ && FinishFirst(kind, error))
        continue;
}

void ScriptedDevice::DeliverEvents() {
    if (raised_)
        FinishFirst(PendingKind::Wait, ERROR_SUCCESS);
}

void ScriptedDevice::QueueInput(const std::string& bytes) {
    const size_t room = inputRoom_ - std::min(inputRoom_, input_.size());
    input_ += bytes.substr(0, room);
    if (bytes.size() > room)
        errors_ |= CE_RXOVER;
}

DWORD ScriptedDevice::TakeInput(void* buffer, DWORD size) {
    const auto count = std::min<size_t>(size, input_.size());
    std::memcpy(buffer, input_.data(), count);
    input_.erase(0, count);
    return static_cast<DWORD>(count);
}

// The platform's side

HANDLE ScriptedDevice::Open(DWORD access, DWORD share, DWORD creation, DWORD flags) {
    const DeviceLock guard(lock_);
    Record("CreateFileA", Hex(access), share, creation, Hex(flags));
    if (openError_) {
        SetLastError(openError_);
        return INVALID_HANDLE_VALUE;
    }
    open_.push_back(reinterpret_cast<HANDLE>(nextHandle.fetch_add(handleStep)));
    return open_.back();
}

BOOL ScriptedDevice::Close(HANDLE handle) {
    const DeviceLock guard(lock_);
    Record("CloseHandle");
    if (!std::erase(open_, handle))
        return Failure(ERROR_INVALID_HANDLE);
    for (const PendingKind kind : {PendingKind::Read, PendingKind::Write, PendingKind::Wait})
        FinishAll(kind, ERROR_OPERATION_ABORTED);
    return TRUE;
}

BOOL ScriptedDevice::Read(HANDLE handle, void* buffer, DWORD size, DWORD* count, OVERLAPPED* state) {
    const DeviceLock guard(lock_);
    Record("ReadFile", size);
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    if (readAnswer_ == Answer::Fails)
        return Failure(readError_);
    if (readAnswer_ == Answer::Pending)
        return StartPending({PendingKind::Read, state, buffer, size, {}});
    const DWORD taken = TakeInput(buffer, size);
    Finish({PendingKind::Read, state, buffer, size, {}}, ERROR_SUCCESS, taken);
    if (count)
        *count = taken;
    return TRUE;
}

BOOL ScriptedDevice::Write(HANDLE handle, const void* bytes, DWORD size, DWORD* count, OVERLAPPED* state) {
    const DeviceLock guard(lock_);
    Record("WriteFile", size);
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    const std::string offered(static_cast<const char*>(bytes), size);
    attempts_.push_back(offered);
    // As the platform does it ahead of each write, and leaves it when the write fails.
    state->Internal = statusPending;
    ResetEvent(state->hEvent);
    if (failingWrites_ > 0) {
        --failingWrites_;
        return Failure(failingWriteError_);
    }
    if (writeAnswer_ == Answer::Fails)
        return Failure(writeError_);
    const DWORD taken = std::min(size, std::exchange(writeLimit_, MAXDWORD));
    PendingCall call{PendingKind::Write, state, nullptr, taken, offered.substr(0, taken)};
    if (writeAnswer_ == Answer::Pending)
        return StartPending(std::move(call));
    written_ += call.bytes;
    Finish(call, ERROR_SUCCESS, taken);
    if (count)
        *count = taken;
    return TRUE;
}

BOOL ScriptedDevice::Result(HANDLE, OVERLAPPED* state, DWORD* count, BOOL wait) {
    HANDLE done = nullptr;
    {
        const DeviceLock guard(lock_);
        Record("GetOverlappedResult", wait ? "waiting" : "now");
        if (state->Internal == statusPending) {
            if (!wait)
                return Failure(ERROR_IO_INCOMPLETE);
            done = state->hEvent;
        }
    }
    if (done)
        WaitForSingleObject(done, INFINITE);
    const DeviceLock guard(lock_);
    *count = static_cast<DWORD>(state->InternalHigh);
    return state->Internal ? Failure(LOWORD(state->Internal)) : TRUE;
}

BOOL ScriptedDevice::Cancel(HANDLE, OVERLAPPED* state) {
    const DeviceLock guard(lock_);
    const auto found = std::ranges::find(pending_, state, &PendingCall::state);
    if (found == pending_.end()) {
        Record("CancelIoEx", "nothing");
        return Failure(ERROR_NOT_FOUND);
    }
    Record("CancelIoEx", KindName(found->kind));
    if (!letsGo_)
        return TRUE;
    const PendingCall call = *found;
    pending_.erase(found);
    Finish(call, ERROR_OPERATION_ABORTED, 0);
    return TRUE;
}

BOOL ScriptedDevice::SetUp(HANDLE handle, DWORD in, DWORD out) {
    const DeviceLock guard(lock_);
    Record("SetupComm", in, out);
    return IsCurrent(handle) || Failure(ERROR_INVALID_HANDLE);
}

BOOL ScriptedDevice::TakeTimeouts(HANDLE handle, const COMMTIMEOUTS& timeouts) {
    const DeviceLock guard(lock_);
    Record("SetCommTimeouts");
    timeouts_.push_back(timeouts);
    return IsCurrent(handle) || Failure(ERROR_INVALID_HANDLE);
}

BOOL ScriptedDevice::GiveState(HANDLE handle, DCB& state) {
    const DeviceLock guard(lock_);
    Record("GetCommState");
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    state = state_;
    return TRUE;
}

BOOL ScriptedDevice::TakeState(HANDLE handle, const DCB& state) {
    const DeviceLock guard(lock_);
    Record("SetCommState");
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    states_.push_back(state);
    if (refusesState_)
        return Failure(ERROR_INVALID_PARAMETER);
    state_ = state;
    return TRUE;
}

BOOL ScriptedDevice::TakeMask(HANDLE handle, DWORD mask) {
    const DeviceLock guard(lock_);
    Record("SetCommMask", mask);
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    mask_ = mask;
    FinishAll(PendingKind::Wait, ERROR_SUCCESS); // with the mask 0, as the platform has it
    return TRUE;
}

BOOL ScriptedDevice::GiveMask(HANDLE handle, DWORD& mask) {
    const DeviceLock guard(lock_);
    Record("GetCommMask");
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    mask = mask_;
    return TRUE;
}

BOOL ScriptedDevice::Wait(HANDLE handle, DWORD* mask, OVERLAPPED* state) {
    const DeviceLock guard(lock_);
    Record("WaitCommEvent");
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    if (waitAnswer_ == Answer::Fails)
        return Failure(ERROR_GEN_FAILURE);
    if (waitAnswer_ == Answer::AtOnce) {
        *mask = waitMask_;
        return TRUE;
    }
    StartPending({PendingKind::Wait, state, mask, 0, {}});
    DeliverEvents();
    return Failure(ERROR_IO_PENDING);
}

BOOL ScriptedDevice::GiveModemStatus(HANDLE handle, DWORD& status) {
    const DeviceLock guard(lock_);
    Record("GetCommModemStatus");
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    status = modemStatus_;
    return TRUE;
}

BOOL ScriptedDevice::Escape(HANDLE handle, DWORD function) {
    const DeviceLock guard(lock_);
    Record("EscapeCommFunction", function);
    return IsCurrent(handle) || Failure(ERROR_INVALID_HANDLE);
}

BOOL ScriptedDevice::Break(HANDLE handle, bool on) {
    const DeviceLock guard(lock_);
    Record(on ? "SetCommBreak" : "ClearCommBreak");
    return IsCurrent(handle) || Failure(ERROR_INVALID_HANDLE);
}

BOOL ScriptedDevice::Purge(HANDLE handle, DWORD flags) {
    const DeviceLock guard(lock_);
    Record("PurgeComm", flags);
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    if (flags & PURGE_RXCLEAR)
        input_.clear();
    if (flags & PURGE_RXABORT)
        FinishAll(PendingKind::Read, ERROR_OPERATION_ABORTED);
    if (flags & PURGE_TXABORT)
        FinishAll(PendingKind::Write, ERROR_OPERATION_ABORTED);
    return TRUE;
}

BOOL ScriptedDevice::Status(HANDLE handle, DWORD* errors, COMSTAT* status) {
    const DeviceLock guard(lock_);
    Record("ClearCommError");
    if (!IsCurrent(handle))
        return Failure(ERROR_INVALID_HANDLE);
    if (failsStatus_)
        return Failure(ERROR_GEN_FAILURE);
    if (errors)
        *errors = std::exchange(errors_, 0);
    if (status) {
        *status = {};
        status->cbInQue = static_cast<DWORD>(input_.size());
        status->cbOutQue = outputQueue_;
    }
    return TRUE;
}

void ScriptedDevice::RecordOrphan(const char* name, DWORD argument) {
    const DeviceLock guard(lock_);
    Record(name, argument, "on no device");
}

} // namespace host
