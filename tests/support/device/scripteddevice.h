// A serial device that does what a test tells it, for what no real or virtual line can do: device errors, a
// refused state, calls that stay pending, fail, or never let go.
//
// It opens for the path \\.\SCRIPTED. doubles.cpp stands behind the platform's serial calls of the test
// program and brings every call for one of its handles here. Each is recorded as a line of its name and main
// arguments. One lock guards it all, so threads of the module and the test may use it together; no call ever
// blocks in it, but for GetOverlappedResult when told to wait. One device lives at a time.
#pragma once

#include <windows.h>

#include <deque>
#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class Answer {
    AtOnce,
    Pending, // until the test completes it, or for ever
    Fails,
};

enum class PendingKind { Read, Write, Wait };

class DeviceLock {
  public:
    explicit DeviceLock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    ~DeviceLock() { ReleaseSRWLockExclusive(&lock_); }
    DeviceLock(const DeviceLock&) = delete;
    DeviceLock& operator=(const DeviceLock&) = delete;

  private:
    SRWLOCK& lock_;
};

class ScriptedDevice {
  public:
    static constexpr const char* Name = "SCRIPTED";

    ScriptedDevice();
    ~ScriptedDevice();
    ScriptedDevice(const ScriptedDevice&) = delete;
    ScriptedDevice& operator=(const ScriptedDevice&) = delete;

    // What it was told, in order.
    std::vector<std::string> Calls() const;
    std::vector<std::string> CallsOf(std::initializer_list<std::string_view> names) const;
    int Count(std::string_view name) const;
    bool Saw(std::string_view line) const;
    void Forget();

    std::vector<DCB> StatesGiven() const;            // by SetCommState
    std::string Written() const;                     // the bytes that it took
    std::vector<std::string> WriteAttempts() const;  // the bytes that each write offered
    std::vector<COMMTIMEOUTS> TimeoutsGiven() const; // by SetCommTimeouts
    bool IsOpen() const;
    int PendingCount(PendingKind kind) const;

    // Opening, state, signals
    void FailOpen(DWORD error); // 0: opens
    void RefuseState(bool refuse);
    void SetState(const DCB& state); // what GetCommState gives
    void SetModemStatus(DWORD status);

    // Status reads
    void FailStatus(bool fail);
    void SetOutputQueue(DWORD bytes);
    void RaiseErrors(DWORD errors); // CE_ bits, given once

    // Input. Bytes wait in the input queue until read; Arrive also raises EV_RXCHAR, Lay doesn't.
    void Arrive(const std::string& bytes);
    void Lay(const std::string& bytes);
    void HoldOnly(size_t bytes); // the room of the input queue: what comes too much is lost, by CE_RXOVER
    void OnRead(Answer answer, DWORD error = ERROR_GEN_FAILURE);
    bool CompleteRead();
    bool FailPendingRead(DWORD error, DWORD arrived); // after so many bytes

    // Output
    void OnWrite(Answer answer, DWORD error = ERROR_GEN_FAILURE);
    void FailWrites(int times, DWORD error = ERROR_GEN_FAILURE); // then as OnWrite says
    void TakeOnly(DWORD bytes);                                  // of the next write
    bool CompleteWrite();

    // Events
    void OnWait(Answer answer, DWORD mask = 0); // the mask of a wait that ends at once
    void RaiseEvent(DWORD mask);

    // A device that keeps its pending calls whatever is cancelled, purged or closed.
    void LetGo(bool letsGo);

    // The platform has no more named events, or no more manual ones for any thread but this one.
    static void FailNamedEvents(bool fail);
    static void FailManualEventsElsewhere(bool fail);

    // The system's text for every error, 0: the platform's own again.
    static void LengthenSystemTexts(DWORD length);

    // The platform's side, for doubles.cpp.
    static ScriptedDevice* Present();
    static bool Owns(HANDLE handle);
    static bool EventFails(BOOL manualReset, const char* name);
    static DWORD SystemTextLength();
    HANDLE Open(DWORD access, DWORD share, DWORD creation, DWORD flags);
    BOOL Close(HANDLE handle);
    BOOL Read(HANDLE handle, void* buffer, DWORD size, DWORD* count, OVERLAPPED* state);
    BOOL Write(HANDLE handle, const void* bytes, DWORD size, DWORD* count, OVERLAPPED* state);
    BOOL Result(HANDLE handle, OVERLAPPED* state, DWORD* count, BOOL wait);
    BOOL Cancel(HANDLE handle, OVERLAPPED* state);
    BOOL SetUp(HANDLE handle, DWORD in, DWORD out);
    BOOL TakeTimeouts(HANDLE handle, const COMMTIMEOUTS& timeouts);
    BOOL GiveState(HANDLE handle, DCB& state);
    BOOL TakeState(HANDLE handle, const DCB& state);
    BOOL TakeMask(HANDLE handle, DWORD mask);
    BOOL GiveMask(HANDLE handle, DWORD& mask);
    BOOL Wait(HANDLE handle, DWORD* mask, OVERLAPPED* state);
    BOOL GiveModemStatus(HANDLE handle, DWORD& status);
    BOOL Escape(HANDLE handle, DWORD function);
    BOOL Break(HANDLE handle, bool on);
    BOOL Purge(HANDLE handle, DWORD flags);
    BOOL Status(HANDLE handle, DWORD* errors, COMSTAT* status);

    // A serial call for a handle that is none: recorded as "... on no device".
    void RecordOrphan(const char* name, DWORD argument);

  private:
    struct PendingCall {
        PendingKind kind;
        OVERLAPPED* state;
        void* target; // the reader's buffer or the waiter's mask
        DWORD size;
        std::string bytes;
    };

    template <class... Arguments>
    void Record(const char* name, const Arguments&... arguments) {
        std::ostringstream line;
        line << name;
        ((line << ' ' << arguments), ...);
        calls_.push_back(line.str());
    }
    bool IsCurrent(HANDLE handle) const;
    BOOL StartPending(PendingCall call);
    void Finish(const PendingCall& call, DWORD error, DWORD count);
    bool FinishFirst(PendingKind kind, DWORD error, DWORD arrived = 0);
    void FinishAll(PendingKind kind, DWORD error);
    void DeliverEvents();
    void QueueInput(const std::string& bytes);
    DWORD TakeInput(void* buffer, DWORD size);

    mutable SRWLOCK lock_ = SRWLOCK_INIT; // guards everything below
    std::vector<std::string> calls_;
    std::vector<DCB> states_;
    std::vector<COMMTIMEOUTS> timeouts_;
    std::vector<std::string> attempts_;
    std::string written_;
    std::string input_;
    size_t inputRoom_ = std::string::npos;
    std::vector<HANDLE> open_;
    std::deque<PendingCall> pending_;

    DWORD openError_ = 0;
    bool refusesState_ = false;
    bool failsStatus_ = false;
    bool letsGo_ = true;
    DCB state_ = {};
    DWORD modemStatus_ = 0;
    DWORD outputQueue_ = 0;
    DWORD errors_ = 0;
    DWORD mask_ = 0;
    DWORD raised_ = 0; // events that no wait has been told of
    Answer readAnswer_ = Answer::AtOnce;
    DWORD readError_ = 0;
    Answer writeAnswer_ = Answer::AtOnce;
    DWORD writeError_ = 0;
    int failingWrites_ = 0;
    DWORD failingWriteError_ = 0;
    DWORD writeLimit_ = MAXDWORD;
    Answer waitAnswer_ = Answer::Pending;
    DWORD waitMask_ = 0;
};

} // namespace host
