// Calls, from the owner's side: answering, dialling, hanging up, the handle of a connected call.
#include "core/deadline.h"
#include "core/wall.h"
#include "diagnostics/wiretap.h"
#include "TapiApp.h"
#include "tapiblock.h"
#include "tapilog.h"

namespace {

constexpr char unavailable[] = "Connection unavailable";
constexpr char noDialTone[] = "No Dial tone";

constexpr size_t numberSize = 128; // characters, with the NUL; more is cut
constexpr DWORD answeringRings = 5;
constexpr DWORD callParametersSize = 176; // the structure of version 2.0; newer headers have a longer one
constexpr DWORD dialToneWait = 4000;      // ms
constexpr DWORD noCountry = 0;
constexpr DWORD pumpPause = 50;       // ms
constexpr DWORD reasonWait = 500;     // ms
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

// A call that is there ends with its line, so that no handle of it may stay.
bool CTapiApp::StopAnswering() {
    HLINE line = 0;
    HCALL current = 0;
    {
        const std::lock_guard guard(call.lock);
        line = call.TakeLine();
        if (line)
            current = call.TakeCall();
        call.bAnswering = false;
        call.bReopening = false;
        call.dwAnswerDevice = noDevice;
    }
    if (current)
        DropForGood(current);
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
        if (call.hLine || call.hCall)
            return false;
        call.bAnswering = true;
        call.dwAnswerDevice = device;
    }
    const HLINE line = OpenToAnswer(device);
    {
        const std::lock_guard guard(call.lock);
        call.hLine = line;
        call.bAnswering = line != 0;
    }
    if (line)
        LogTapi("SetAnswer returns %d", true);
    return line != 0;
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
    const LONG rings = pService->lineSetNumRings(line, device, answeringRings);
    LogTapi("lineSetNumRings(5) returns %ld", rings);
    return line;
}

bool CTapiApp::Dial(DWORD device, const char* szNumber, LONG rate) {
    const Life watch = life;
    try {
        return PlaceCall(device, szNumber, rate, watch);
    } catch (...) {
        SwallowException("Dial");
    }
    if (watch.expired())
        return false;
    {
        const std::lock_guard guard(call.lock);
        if (!call.IsDialling())
            return false;
        call.AdoptMadeCall();
        call.Fail(callCanceled);
    }
    return FinishDial();
}

bool CTapiApp::PlaceCall(DWORD device, const char* szNumber, LONG rate, const Life& watch) {
    if (bDisabled)
        return false;
    {
        const std::lock_guard guard(call.lock);
        if (call.hLine || call.hCall || call.bReopening) {
            call.lpszError = unavailable;
            return false;
        }
    }
    const std::string number = NumberToDial(device, szNumber);
    LONG result = 0;
    const HLINE line = OpenLine(device, LINECALLPRIVILEGE_NONE, result);
    {
        const std::lock_guard guard(call.lock);
        call.dwAnswerDevice = device;
        if (!line)
            call.lpszError = unavailable;
    }
    if (!line) {
        LogText("lineOpen failed");
        return false;
    }
    if (RequestCall(line, number, rate, watch))
        WaitForDial(watch);
    return !watch.expired() && FinishDial();
}

std::string CTapiApp::NumberToDial(DWORD device, const char* szNumber) const {
    std::string number = szNumber ? szNumber : "";
    number = number.substr(0, numberSize - 1);
    if (number.starts_with('+')) // the canonical form
        number = TranslatePhoneNumber(device, number.c_str()).substr(0, numberSize - 1);
    return number;
}

// The dial runs before it is asked for, so that an early reply counts. False: the request has failed at once;
// the object may be gone.
bool CTapiApp::RequestCall(HLINE line, const std::string& number, LONG rate, const Life& watch) {
    {
        const std::lock_guard guard(call.lock);
        call.hLine = line;
        call.hCall = 0;
        call.hMadeCall = 0;
        call.lpszError = nullptr;
        call.Retire(std::exchange(call.lMakeCallResult, 0));
        call.Retire(std::exchange(call.lDropResult, 0));
        call.dwLastHeard = GetTickCount();
        call.nDialResult = DialResult::Running;
    }
    LINECALLPARAMS parameters = CallParameters(rate);
    const LONG result =
        pService->lineMakeCallA(line, &call.hMadeCall, number.c_str(), noCountry, &parameters);
    {
        const std::lock_guard guard(call.lock);
        call.lMakeCallResult = result;
        call.AdoptMadeCall();
    }
    if (result > 0) // 0 is no request either: the service has done nothing
        return true;
    NoteFailedRequest(result);
    HangUp();
    if (watch.expired())
        return false;
    const std::lock_guard guard(call.lock);
    call.Fail(callCanceled);
    return false;
}

void CTapiApp::NoteFailedRequest(LONG error) {
    const std::lock_guard guard(call.lock);
    if (call.IsDialling() && error == static_cast<LONG>(LINEERR_CALLUNAVAIL))
        call.lpszError = noDialTone;
}

// Afterwards the object may be gone, or the dial has a result.
void CTapiApp::WaitForDial(const Life& watch) {
    while (IsDialling()) {
        const Pumped pumped = PumpMessages(watch);
        if (pumped == Pumped::Gone)
            return;
        const char* reason = WhyToGiveUp(pumped);
        if (!reason)
            continue;
        const std::lock_guard guard(call.lock);
        if (!call.IsDialling())
            return;
        call.AdoptMadeCall();
        call.Fail(reason);
    }
    WaitForReason(watch);
}

// A busy line is told of twice: the state ends the dial, and the disconnection that follows has the reason.
void CTapiApp::WaitForReason(const Life& watch) {
    const Deadline patience(reasonWait);
    while (!patience.Passed()) {
        {
            const std::lock_guard guard(call.lock);
            if (!call.AwaitsReason())
                return;
        }
        if (PumpMessages(watch) != Pumped::On || WhyToGiveUp(Pumped::On))
            return;
    }
}

bool CTapiApp::IsWaiting() const {
    const std::lock_guard guard(call.lock);
    return call.IsDialling() || call.AwaitsReason();
}

const char* CTapiApp::WhyToGiveUp(Pumped pumped) const {
    if (pumped == Pumped::Quit || !pControl.WantsCall())
        return callCanceled;
    if (WaitForSingleObject(hThread.get(), 0) != WAIT_TIMEOUT)
        return unavailable;
    const std::lock_guard guard(call.lock);
    return GetTickCount() - call.dwLastHeard >= limits.silence ? unavailable : nullptr;
}

// Taking a message off the queue also serves what other threads send, in which the object may go. A window
// that always has a message more must not keep the dial from its end.
CTapiApp::Pumped CTapiApp::PumpMessages(const Life& watch) const {
    const Deadline turn(pumpPause);
    MSG message;
    while (IsWaiting() && !turn.Passed()) {
        const bool isOne = PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;
        if (isOne && message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return watch.expired() ? Pumped::Gone : Pumped::Quit;
        }
        if (isOne) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        if (watch.expired())
            return Pumped::Gone;
        if (!isOne)
            break;
    }
    const HANDLE thread = hThread.get();
    if (IsWaiting())
        MsgWaitForMultipleObjects(1, &thread, FALSE, pumpPause, QS_ALLINPUT);
    return Pumped::On;
}

bool CTapiApp::FinishDial() {
    HLINE line = 0;
    HCALL failed = 0;
    {
        const std::lock_guard guard(call.lock);
        if (call.nDialResult == DialResult::Connected)
            return true;
        failed = call.TakeCall();
        line = call.TakeLine();
    }
    if (failed)
        DropForGood(failed);
    if (line)
        pService->lineClose(line);
    return false;
}

void CTapiApp::DropForGood(HCALL dropped) {
    const LONG result = pService->lineDrop(dropped, nullptr, 0);
    const std::lock_guard guard(call.lock);
    call.Retire(result);
}

bool CTapiApp::HangUp() {
    return BehindWall("HangUp", [this] {
        const Life watch = life;
        pControl.OnDisconnected();
        return !watch.expired() && EndCall();
    });
}

// A call is only dropped: when it is idle, the thread releases it and its line.
bool CTapiApp::EndCall(const char* szReason) {
    if (bDisabled)
        return false;
    HLINE unused = 0;
    HCALL current = 0;
    {
        const std::lock_guard guard(call.lock);
        call.AdoptMadeCall();
        current = call.hCall;
        if (!call.hLine || !current)
            call.Fail(szReason);
        if (!current)
            unused = call.TakeLine();
    }
    if (unused)
        pService->lineClose(unused);
    if (!current)
        return true;
    const LONG result = pService->lineDrop(current, nullptr, 0);
    const std::lock_guard guard(call.lock);
    call.lDropResult = result;
    if (result < 0 && call.IsDialling()) // no idle state will come
        call.Fail(szReason);
    return result >= 0;
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
