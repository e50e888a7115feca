// Calls, from the owner's side: answering, dialling, hanging up, the handle of a connected call.
#include "core/deadline.h"
#include "core/wall.h"
#include "diagnostics/wiretap.h"
#include "TapiApp.h"
#include "tapiblock.h"
#include "tapilog.h"

namespace {

constexpr char noDialTone[] = "No Dial tone";

constexpr size_t numberSize = 128; // characters, with the NUL; more is cut
constexpr DWORD answeringRings = 5;
constexpr DWORD callParametersSize = 176; // the structure of version 2.0; newer headers have a longer one
constexpr DWORD dialToneWait = 4000;      // ms
constexpr DWORD noCountry = 0;
constexpr DWORD pumpPause = 50;       // ms
constexpr DWORD reasonWait = 1500;    // ms
constexpr DWORD handleBlockSize = 84; // to begin with
constexpr char dataHandleClass[] = "comm/datamodem";

static_assert(sizeof(LINECALLPARAMS) >= callParametersSize);

LINECALLPARAMS CallParameters(LONG rate) {
    LINECALLPARAMS parameters = {};
    parameters.dwTotalSize = callParametersSize;
    parameters.dwBearerMode = LINEBEARERMODE_VOICE;
    if (rate != 0)
        parameters.dwMaxRate = static_cast<DWORD>(rate);
    parameters.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    parameters.dwCallParamFlags = LINECALLPARAMFLAGS_IDLE;
    parameters.dwAddressMode = LINEADDRESSMODE_ADDRESSID;
    parameters.DialParams.dwWaitForDialtone = dialToneWait;
    return parameters;
}

// Nothing where the service has filled in none.
HANDLE HandleIn(const TapiBlock<VARSTRING>& block) {
    LONG value = 0;
    const std::byte* bytes = block.At(block->dwStringOffset, sizeof value);
    if (!bytes || block->dwStringOffset < sizeof(VARSTRING))
        return INVALID_HANDLE_VALUE;
    std::memcpy(&value, bytes, sizeof value);
    return value ? LongToHandle(value) : INVALID_HANDLE_VALUE;
}

} // namespace

bool CTapiApp::IsDialling() const {
    const std::lock_guard guard(call.lock);
    return call.IsDialling();
}

std::string CTapiApp::LastError() const {
    const std::lock_guard guard(call.lock);
    return call.lpszError ? call.lpszError : "";
}

HLINE CTapiApp::OpenLine(DWORD device, DWORD privileges, LONG& result) const {
    HLINE line = 0;
    result = pService->lineOpenA(hLineApp, device, &line, NegotiateVersion(device), 0, 0, privileges,
                                 LINEMEDIAMODE_DATAMODEM, nullptr);
    return result == 0 ? line : 0;
}

bool CTapiApp::SetAnswer(bool on, DWORD device) {
    return BehindWall("SetAnswer", [&] {
        LogTapi("SetAnswer(%d)", on);
        if (bDisabled) {
            LogText("TAPI is disabled");
            return false;
        }
        bool isSame = false;
        {
            const std::lock_guard guard(call.lock);
            isSame = on == call.bAnswering;
        }
        if (isSame) {
            LogText("AnswerCalls set to same value - no action take");
            return true;
        }
        return on ? StartAnswering(device) : StopAnswering();
    });
}

bool CTapiApp::IsAnswering() const {
    const std::lock_guard guard(call.lock);
    return call.bAnswering;
}

// A call that is there ends with its line, so that no handle of it may stay.
bool CTapiApp::StopAnswering() {
    HLINE line = 0;
    HCALL current = 0;
    {
        const std::lock_guard guard(call.lock);
        line = call.TakeLine();
        if (line)
            current = call.TakeCall();
        if (call.IsDialling())
            call.Fail(callCanceled);
        call.bAnswering = false;
        call.bReopening = false;
        call.dwAnswerDevice = noDevice;
        call.BeginNext();
    }
    if (current)
        pService->lineDrop(current, nullptr, 0);
    if (line)
        LogTapi("LineClose returns 0x%lx", static_cast<DWORD>(pService->lineClose(line)));
    LogTapi("SetAnswer returns %d", false);
    if (current)
        pControl.OnDisconnected(); // the last step: the object may be gone
    return false;
}

// The first call may be offered before lineOpen has returned: the line answers from before it is open.
bool CTapiApp::StartAnswering(DWORD device) {
    {
        const std::lock_guard guard(call.lock);
        if (call.IsTaken() || call.bDeaf)
            return false;
        call.bAnswering = true;
        call.dwAnswerDevice = device;
    }
    HLINE line = 0;
    BehindWall("SetAnswer", [&] { line = OpenToAnswer(device); });
    bool answering = false;
    {
        const std::lock_guard guard(call.lock);
        if (!call.hLine && !call.bDeaf)
            call.hLine = std::exchange(line, 0);
        call.bAnswering = answering = call.hLine || call.bReopening;
    }
    if (line) // the thread has opened it by itself, after a call that has come and gone meanwhile
        pService->lineClose(line);
    if (answering)
        LogTapi("SetAnswer returns %d", true);
    return answering;
}

// The device number goes as the address, as it always has.
HLINE CTapiApp::OpenToAnswer(DWORD device) const {
    LONG result = 0;
    const HLINE line = OpenLine(device, LINECALLPRIVILEGE_OWNER, result);
    LogTapi("LineOpen returns 0x%lx", static_cast<DWORD>(result));
    if (!line) {
        LogText("lineOpen failed");
        return 0;
    }
    LONG rings = static_cast<LONG>(LINEERR_OPERATIONFAILED);
    BehindWall("SetAnswer", [&] { rings = pService->lineSetNumRings(line, device, answeringRings); });
    LogTapi("lineSetNumRings(5) returns %ld", rings);
    return line;
}

bool CTapiApp::Dial(DWORD device, const char* szNumber, LONG rate) {
    const Life watch = life;
    DWORD dial = noCall;
    BehindWall("Dial", [&] { PlaceCall(device, szNumber, rate, watch, dial); });
    return !watch.expired() && dial != noCall && BehindWall("Dial", [&] { return FinishDial(dial); });
}

// The telephony thread waits for the end of the news that it told: no dial could get anywhere meanwhile.
void CTapiApp::PlaceCall(DWORD device, const char* szNumber, LONG rate, const Life& watch, DWORD& dial) {
    if (bDisabled)
        return;
    {
        const std::lock_guard guard(call.lock);
        if (call.IsTaken() || call.bDeaf || newsUnderWay) {
            call.lpszError = callUnavailable;
            return;
        }
    }
    const std::string number = NumberToDial(device, szNumber);
    LONG result = 0;
    const HLINE line = OpenLine(device, LINECALLPRIVILEGE_NONE, result);
    {
        const std::lock_guard guard(call.lock);
        call.dwAnswerDevice = device;
        if (!line)
            call.lpszError = callUnavailable;
    }
    if (!line)
        return LogText("lineOpen failed");
    if (RequestCall(line, number, rate, watch, dial))
        WaitForDial(watch, dial);
}

std::string CTapiApp::NumberToDial(DWORD device, const char* szNumber) const {
    std::string number = szNumber ? szNumber : "";
    number = number.substr(0, numberSize - 1);
    if (number.starts_with('+')) // the canonical form
        number = TranslatePhoneNumber(device, number.c_str()).substr(0, numberSize - 1);
    return number;
}

// The dial runs before it is asked for, so that an early reply counts.
DWORD CTapiApp::BeginDial(HLINE line, const std::shared_ptr<MadeCall>& made) {
    const std::lock_guard guard(call.lock);
    call.placed.push_back(made);
    call.BeginNext();
    call.hLine = line;
    call.hCall = 0;
    call.made = made;
    call.lpszError = nullptr;
    call.Owe(Owed::Reply);
    call.nDialResult = DialResult::Running;
    return call.nCall;
}

// False: the request has failed at once; the object may be gone.
bool CTapiApp::RequestCall(HLINE line, const std::string& number, LONG rate, const Life& watch, DWORD& dial) {
    const auto made = std::make_shared<MadeCall>();
    dial = BeginDial(line, made);
    const LONG result = MakeCall(line, number, rate, *made, dial);
    if (result > 0) // 0 is no request either: the service has done nothing
        return true;
    NoteFailedRequest(result, dial);
    HangUp();
    if (watch.expired())
        return false;
    const std::lock_guard guard(call.lock);
    if (call.nCall == dial)
        call.Fail(callCanceled);
    return false;
}

// The request's number, or an error: also that of its reply, if it was there at once.
LONG CTapiApp::MakeCall(HLINE line, const std::string& number, LONG rate, MadeCall& made, DWORD dial) {
    LINECALLPARAMS parameters = CallParameters(rate);
    const AskingGuard asking(call);
    const LONG result = pService->lineMakeCallA(line, &made.handle, number.c_str(), noCountry, &parameters);
    const std::lock_guard guard(call.lock);
    const std::optional<LONG> reply = call.EarlyReplyTo(result);
    made.request = result;
    if (result <= 0 || reply)
        std::erase_if(call.placed, [&](const auto& placed) { return placed.get() == &made; });
    if (call.nCall == dial) {
        call.lMakeCallResult = result;
        call.AdoptMadeCall();
        if (reply && call.owed == Owed::Reply)
            call.owed = Owed::Nothing;
    }
    return reply && *reply < 0 ? *reply : result;
}

void CTapiApp::NoteFailedRequest(LONG error, DWORD which) {
    const std::lock_guard guard(call.lock);
    if (call.nCall == which && call.IsDialling() && error == static_cast<LONG>(LINEERR_CALLUNAVAIL))
        call.lpszError = noDialTone;
}

// Afterwards the object may be gone, or the dial has a result.
void CTapiApp::WaitForDial(const Life& watch, DWORD dial) {
    while (IsRunning(dial)) {
        const Pumped pumped = PumpMessages(watch, dial);
        if (pumped == Pumped::Gone)
            return;
        const char* reason = WhyToGiveUp(pumped);
        if (!reason)
            continue;
        const std::lock_guard guard(call.lock);
        if (call.nCall != dial || !call.IsDialling())
            return;
        call.AdoptMadeCall();
        call.Fail(reason);
    }
    WaitForReason(watch, dial);
}

// A busy line is told of twice: the state ends the dial, and the disconnection that follows has the reason.
void CTapiApp::WaitForReason(const Life& watch, DWORD dial) {
    const Deadline patience(reasonWait);
    while (!patience.Passed() && IsWaiting(dial))
        if (PumpMessages(watch, dial) != Pumped::On || WhyToGiveUp(Pumped::On))
            return;
}

bool CTapiApp::IsRunning(DWORD dial) const {
    const std::lock_guard guard(call.lock);
    return call.nCall == dial && call.IsDialling();
}

bool CTapiApp::IsWaiting(DWORD dial) const {
    const std::lock_guard guard(call.lock);
    return call.nCall == dial && (call.IsDialling() || call.AwaitsReason());
}

// The states of a call have no time limit: a far end may ring for as long as the host likes.
const char* CTapiApp::WhyToGiveUp(Pumped pumped) const {
    if (pumped == Pumped::Quit || !pControl.WantsCall())
        return callCanceled;
    if (WaitForSingleObject(hThread.get(), 0) != WAIT_TIMEOUT)
        return callUnavailable;
    const std::lock_guard guard(call.lock);
    const bool isSilent = call.owed != Owed::Nothing && GetTickCount() - call.dwOwedSince >= limits.silence;
    return isSilent ? callUnavailable : nullptr;
}

// Taking a message off the queue also serves what other threads send, in which the object may go. A window
// that always has a message more must not keep the dial from its end.
CTapiApp::Pumped CTapiApp::PumpMessages(const Life& watch, DWORD dial) const {
    const Deadline turn(pumpPause);
    MSG message;
    while (IsWaiting(dial) && !turn.Passed()) {
        const bool isOne = PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;
        if (isOne && message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return watch.expired() ? Pumped::Gone : Pumped::Quit;
        }
        if (isOne) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        if (watch.expired())
            return Pumped::Gone;
        if (!isOne)
            break;
    }
    const HANDLE thread = hThread.get();
    if (IsWaiting(dial))
        MsgWaitForMultipleObjects(1, &thread, FALSE, pumpPause, QS_ALLINPUT);
    return Pumped::On;
}

bool CTapiApp::FinishDial(DWORD dial) {
    HLINE line = 0;
    HCALL failed = 0;
    {
        const std::lock_guard guard(call.lock);
        if (call.nCall != dial)
            return false;
        if (call.nDialResult == DialResult::Connected && !call.bEnding)
            return true;
        call.AdoptMadeCall();
        if (call.IsDialling())
            call.Fail(callCanceled);
        call.nDialResult = DialResult::Failed;
        const bool isDropped = call.bEnding;
        failed = call.TakeCall();
        if (isDropped)
            failed = 0;
        line = call.TakeLine();
        call.BeginNext();
    }
    BehindWall("Dial", [&] {
        if (failed)
            pService->lineDrop(failed, nullptr, 0);
    });
    if (line)
        pService->lineClose(line);
    return false;
}

bool CTapiApp::HangUp() {
    return BehindWall("HangUp", [this] {
        const Life watch = life;
        pControl.OnDisconnected();
        return !watch.expired() && EndCall();
    });
}

// A call is only dropped: when it is idle, the thread releases it and its line. A line that waited for calls
// waits no more, so that it can be told to wait again.
bool CTapiApp::EndCall(const char* szReason, DWORD which) {
    if (bDisabled)
        return false;
    HLINE unused = 0;
    HCALL current = 0;
    DWORD present = noCall;
    bool wasEnding = false;
    {
        const std::lock_guard guard(call.lock);
        if (which != noCall && which != call.nCall)
            return false;
        call.AdoptMadeCall();
        current = call.hCall;
        if (!call.hLine || !current)
            call.Fail(szReason);
        if (!current && call.hLine) {
            unused = call.TakeLine();
            call.bAnswering = false;
            call.BeginNext();
        }
        if (current) {
            wasEnding = std::exchange(call.bEnding, true);
            call.Owe(Owed::Idle);
        }
        present = call.nCall;
    }
    if (unused)
        pService->lineClose(unused);
    return !current || DropCall(current, present, szReason, wasEnding);
}

bool CTapiApp::DropCall(HCALL dropped, DWORD which, const char* szReason, bool wasEnding) {
    const AskingGuard asking(call);
    const LONG result = pService->lineDrop(dropped, nullptr, 0);
    const std::lock_guard guard(call.lock);
    const bool accepted = result >= 0 && call.EarlyReplyTo(result).value_or(0) >= 0;
    if (call.nCall != which)
        return accepted;
    if (accepted) {
        call.lDropResult = result;
    } else if (!wasEnding) { // no idle state will come
        call.bEnding = false;
        call.owed = Owed::Nothing;
        if (call.IsDialling())
            call.Fail(szReason);
    }
    return accepted;
}

HANDLE CTapiApp::GetCommHandle() const {
    HANDLE handle = INVALID_HANDLE_VALUE;
    BehindWall("GetCommHandle", [&] {
        HCALL current = 0;
        {
            const std::lock_guard guard(call.lock);
            current = call.hCall;
        }
        if (bDisabled || !current)
            return;
        TapiBlock<VARSTRING> block(handleBlockSize);
        const LONG result = block.Fill([&](VARSTRING* string) {
            return pService->lineGetIDA(0, 0, current, LINECALLSELECT_CALL, string, dataHandleClass);
        });
        if (result == 0)
            handle = HandleIn(block);
    });
    return handle;
}
