// What an application asks of calls. Each request is answered by a reply from the exchange's thread.
#include "requests.h"

#include "calls.h"
#include "exchange.h"
#include "lines.h"
#include "messages.h"
#include "outcomes.h"
#include "plant.h"
#include "record.h"
#include "worker.h"

#include <map>

namespace {

std::string ParametersOf(const LINECALLPARAMS* parameters) {
    if (!parameters)
        return "";
    return Argument("size", parameters->dwTotalSize) + Argument("bearer", parameters->dwBearerMode) +
           Argument("maxrate", parameters->dwMaxRate) + Argument("media", Hex(parameters->dwMediaMode)) +
           Argument("flags", parameters->dwCallParamFlags) +
           Argument("addressmode", parameters->dwAddressMode) +
           Argument("dialtone", parameters->DialParams.dwWaitForDialtone);
}

// Where the callers want their handles, by request.
std::map<DWORD, HCALL*>& KeptWaiting() {
    static auto* waiting = new std::map<DWORD, HCALL*>;
    return *waiting;
}

// The caller's variable is written while its line is open, and never after that.
void ReplyToCall(HLINE line, HCALL* to, DWORD request, LONG reply, const std::string& number) {
    const OpenLine* opened = OpenLines().Find(line);
    if (!opened)
        return;
    if (!reply) {
        *to = AddCall(line, NextHandle());
        PlayCall(*to, number);
    }
    QueueReply(opened->application, request, reply);
}

LONG AskForCall(HLINE line, HCALL* to, const std::string& number) {
    const OpenLine* opened = OpenLines().Find(line);
    if (!opened)
        return Failure(LINEERR_INVALLINEHANDLE);
    if (!to)
        return Failure(LINEERR_INVALPOINTER);
    if (IsEngaged(opened->device))
        return Failure(LINEERR_CALLUNAVAIL);
    const Acceptance acceptance = AcceptanceOf(number);
    if (acceptance.atOnce)
        return acceptance.atOnce;
    const DWORD request = NextRequest();
    if (acceptance.silent)
        KeptWaiting()[request] = to;
    else
        After(0, [=] { ReplyToCall(line, to, request, acceptance.reply, number); });
    return static_cast<LONG>(request);
}

LONG AskToAnswer(HCALL handle) {
    const Call* call = Calls().Find(handle);
    if (!call)
        return Failure(LINEERR_INVALCALLHANDLE);
    if (!call->IsOffering())
        return Failure(LINEERR_INVALCALLSTATE);
    const DWORD request = NextRequest();
    After(0, [handle, request, application = call->application] {
        const Call* answered = Calls().Find(handle);
        if (!answered)
            return;
        QueueReply(application, request, answered->IsOffering() ? 0 : Failure(LINEERR_INVALCALLSTATE));
        After(ThePlant().pace, [handle] { Connect(handle); });
    });
    return static_cast<LONG>(request);
}

LONG AskToDrop(HCALL handle) {
    const Call* call = Calls().Find(handle);
    if (!call)
        return Failure(LINEERR_INVALCALLHANDLE);
    const DWORD request = NextRequest();
    After(0, [handle, request, application = call->application] {
        QueueReply(application, request, 0);
        Call* dropped = Calls().Find(handle);
        if (!dropped || dropped->IsIdle())
            return;
        dropped->isPlayed = false;
        LeaveConversation(handle);
        After(ThePlant().pace, [handle] { ChangeState(handle, LINECALLSTATE_IDLE); });
    });
    return static_cast<LONG>(request);
}

} // namespace

void ForgetKeptWaiting() {
    KeptWaiting().clear();
}

void WINAPI ExchangeSendReply(DWORD request, LONG result) {
    const std::lock_guard guard(ExchangeLock());
    const auto waiting = KeptWaiting().extract(request);
    if (waiting && !result)
        *waiting.mapped() = NextHandle();
    QueueReplyToAll(request, result);
}

LONG WINAPI lineMakeCallA(HLINE hLine, LPHCALL lphCall, LPCSTR lpszDestAddress, DWORD dwCountryCode,
                          LPLINECALLPARAMS const lpCallParams) {
    const std::string number = TextOf(lpszDestAddress);
    const std::string arguments =
        Argument("number", number) + Argument("country", dwCountryCode) + ParametersOf(lpCallParams);
    return Serve("lineMakeCallA", arguments, [&] { return AskForCall(hLine, lphCall, number); });
}

LONG WINAPI lineAnswer(HCALL hCall, LPCSTR, DWORD) {
    return Serve("lineAnswer", "", [&] { return AskToAnswer(hCall); });
}

LONG WINAPI lineDrop(HCALL hCall, LPCSTR, DWORD) {
    return Serve("lineDrop", "", [&] { return AskToDrop(hCall); });
}

LONG WINAPI lineDeallocateCall(HCALL hCall) {
    return Serve("lineDeallocateCall", "", [&] {
        const Call* call = Calls().Find(hCall);
        if (!call)
            return Failure(LINEERR_INVALCALLHANDLE);
        if (!call->IsIdle())
            return Failure(LINEERR_INVALCALLSTATE);
        Calls().Remove(hCall);
        return LONG{0};
    });
}
