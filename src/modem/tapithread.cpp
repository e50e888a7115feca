// The telephony thread: takes the service's messages and turns them into the state of the call.
#include "core/comapartment.h"
#include "core/wall.h"
#include "diagnostics/wiretap.h"
#include "TapiApp.h"
#include "tapilog.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr DWORD lookAgain = 1000; // ms
constexpr int looks = 5;          // at a queue that seems to be empty
constexpr DWORD noMessage = static_cast<DWORD>(-1);
constexpr DWORD serviceIsGone = static_cast<DWORD>(-1); // the thread's exit code

constexpr char ringing[] = "TapiThread:Ringing";
constexpr char lineReply[] = "TapiThread:LineReply";
constexpr char idle[] = "TapiThread:Idle";
constexpr char connected[] = "TapiThread:Connected";
constexpr char disconnected[] = "TapiThread:Disconnected";

using Act = void (CTapiApp::*)(const LINEMESSAGE&);

struct MessageRow {
    DWORD message;
    const char* szName;
    Act act = nullptr; // logs by itself
};

struct StateRow {
    DWORD state;
    const char* szWord;
    Act act = nullptr;
};

struct WordRow {
    DWORD value;
    const char* szWord;
};

constexpr WordRow dialToneWords[] = {
    {LINEDIALTONEMODE_NORMAL, "Normal"},     {LINEDIALTONEMODE_SPECIAL, "Special"},
    {LINEDIALTONEMODE_INTERNAL, "Internal"}, {LINEDIALTONEMODE_EXTERNAL, "External"},
    {LINEDIALTONEMODE_UNKNOWN, "Unknown"},   {LINEDIALTONEMODE_UNAVAIL, "Unavailable"},
};

constexpr WordRow disconnectReasons[] = {
    {LINEDISCONNECTMODE_REJECT, "Call rejected"},
    {LINEDISCONNECTMODE_BUSY, "Busy"},
    {LINEDISCONNECTMODE_NOANSWER, "No Answer"},
    {LINEDISCONNECTMODE_BADADDRESS, "Bad Address"},
    {LINEDISCONNECTMODE_UNREACHABLE, "Destination Unreachable"},
    {LINEDISCONNECTMODE_NODIALTONE, "No Dial Tone"},
};

template <class Row, size_t count, class Field>
const Row* Find(const Row (&rows)[count], Field field, DWORD value) {
    const auto* found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.*field == value; });
    return found == std::end(rows) ? nullptr : found;
}

template <size_t count>
const char* WordOf(const WordRow (&rows)[count], DWORD_PTR value, const char* szOther) {
    const WordRow* row = Find(rows, &WordRow::value, static_cast<DWORD>(value));
    return row ? row->szWord : szOther;
}

} // namespace

struct CTapiApp::ThreadTables {
    static constexpr MessageRow messages[] = {
        {LINE_ADDRESSSTATE, "LINE_ADDRESSSTATE"},
        {LINE_CALLINFO, "LINE_CALLINFO"},
        {LINE_CALLSTATE, "LINE_CALLSTATE", &CTapiApp::TakeCallState},
        {LINE_CLOSE, "LINE_CLOSE", &CTapiApp::TakeClose},
        {LINE_DEVSPECIFIC, "LINE_DEVSPECIFIC"},
        {LINE_DEVSPECIFICFEATURE, "LINE_DEVSPECIFICFEATURE"},
        {LINE_GATHERDIGITS, "LINE_GATHERDIGITS"},
        {LINE_GENERATE, "LINE_GENERATE"},
        {LINE_LINEDEVSTATE, "LINE_LINEDEVSTATE", &CTapiApp::TakeDeviceState},
        {LINE_MONITORDIGITS, "LINE_MONITORDIGITS"},
        {LINE_MONITORMEDIA, "LINE_MONITORMEDIA"},
        {LINE_MONITORTONE, "LINE_MONITORTONE"},
        {LINE_REPLY, "LINE_REPLY", &CTapiApp::TakeReply},
        {LINE_REQUEST, "LINE_REQUEST"},
        {LINE_CREATE, "LINE_CREATE"},
        {LINE_AGENTSPECIFIC, "LINE_AGENTSPECIFIC"},
        {LINE_AGENTSTATUS, "LINE_AGENTSTATUS"},
        {LINE_APPNEWCALL, "LINE_APPNEWCALL"},
        {LINE_PROXYREQUEST, "LINE_PROXYREQUEST"},
        {LINE_REMOVE, "LINE_REMOVE"},
    };

    static constexpr StateRow states[] = {
        {LINECALLSTATE_IDLE, "Idle", &CTapiApp::CallIdle},
        {LINECALLSTATE_OFFERING, "Offering", &CTapiApp::CallOffered},
        {LINECALLSTATE_ACCEPTED, "Accepted"},
        {LINECALLSTATE_DIALTONE, "Dial tone"},
        {LINECALLSTATE_DIALING, "Dialing"},
        {LINECALLSTATE_RINGBACK, "Ring back"},
        {LINECALLSTATE_BUSY, "Busy", &CTapiApp::CallBusy},
        {LINECALLSTATE_SPECIALINFO, "Special Info"},
        {LINECALLSTATE_CONNECTED, "Connected", &CTapiApp::CallConnected},
        {LINECALLSTATE_PROCEEDING, "Proceeding"},
        {LINECALLSTATE_ONHOLD, "On Hold"},
        {LINECALLSTATE_DISCONNECTED, "Disconnected - ", &CTapiApp::CallDisconnected},
        {LINECALLSTATE_UNKNOWN, "Unkown"},
    };

    static std::string WordOfState(const StateRow* row, const LINEMESSAGE& message) {
        if (!row)
            return "Other";
        if (row->state != LINECALLSTATE_DIALTONE)
            return row->szWord;
        return std::string(row->szWord) + " " + WordOf(dialToneWords, message.dwParam2, "Other");
    }
};

DWORD CTapiApp::TapiThread() {
    const ComApartment apartment;
    if (Listen())
        return 0;
    GoDeaf();
    return serviceIsGone;
}

bool CTapiApp::Listen() {
    const HANDLE handles[] = {hShutdown.get(), hLineEvent};
    for (;;) {
        switch (WaitForMultipleObjects(2, handles, FALSE, lookAgain)) {
        case WAIT_OBJECT_0:
            return true;
        case WAIT_OBJECT_0 + 1:
            if (!ServeMessage())
                return false;
            break;
        case WAIT_TIMEOUT:
            break;
        default:
            return false;
        }
    }
}

// Nobody would answer on a line that waits. One with a call stays, for its data.
void CTapiApp::GoDeaf() {
    HLINE waiting = 0;
    {
        const std::lock_guard guard(call.lock);
        call.bDeaf = true;
        if (call.bAnswering && !call.hCall) {
            waiting = call.TakeLine();
            call.BeginNext();
        }
        call.bAnswering = call.bReopening = false;
    }
    BehindWall("TapiThread", [&] {
        if (waiting)
            pService->lineClose(waiting);
    });
}

LONG CTapiApp::GetMessageOfService(LINEMESSAGE& message) const {
    LONG result = static_cast<LONG>(LINEERR_INVALAPPHANDLE);
    BehindWall("TapiThread", [&] { result = pService->lineGetMessage(hLineApp, &message, 0); });
    return result;
}

// False: the service is gone. A queue that was emptied meanwhile, by the closing of its line, is no failure;
// nor is one that was empty and had a message again when its event was looked at.
bool CTapiApp::ServeMessage() {
    LINEMESSAGE message = {};
    LONG result = 0;
    for (int look = 0; look < looks; ++look) {
        message.dwMessageID = noMessage;
        result = GetMessageOfService(message);
        if (result != static_cast<LONG>(LINEERR_OPERATIONFAILED))
            break;
        if (WaitForSingleObject(hLineEvent, 0) == WAIT_TIMEOUT)
            return true;
    }
    if (result != 0 || message.dwMessageID == noMessage) {
        LogText("lineGetMessage returned error\n");
        return false;
    }
    BehindWall("TapiThread", [&] { TakeMessage(message); });
    return true;
}

void CTapiApp::TakeMessage(const LINEMESSAGE& message) {
    {
        const std::lock_guard guard(call.lock);
        call.AdoptMadeCall();
        const bool isState = message.dwMessageID == LINE_CALLSTATE && call.Concerns(message.hDevice);
        const bool isReply =
            message.dwMessageID == LINE_REPLY && call.IsRequest(static_cast<LONG>(message.dwParam1));
        if (call.owed == Owed::Reply && (isState || isReply))
            call.owed = Owed::Nothing;
    }
    const MessageRow* row = Find(ThreadTables::messages, &MessageRow::message, message.dwMessageID);
    if (!row)
        return LogText("Unknown line message!\n");
    if (row->act)
        return (this->*row->act)(message);
    LogTapi("Line message received: %s\n", row->szName);
}

bool CTapiApp::Tell(News news, const char* szLabel, DWORD which) {
    const WPARAM told = static_cast<WPARAM>(news) | static_cast<WPARAM>(which) << newsBits;
    return ownerSend->Send(NewsWindow::message, told, reinterpret_cast<LPARAM>(szLabel), 0).has_value();
}

bool CTapiApp::HangUpFromThread(const char* szLabel, DWORD which, const char* szReason) {
    if (!Tell(News::Disconnected, szLabel, which))
        return false;
    BehindWall(szLabel, [&] { EndCall(szReason, which); });
    return true;
}

void CTapiApp::TakeDeviceState(const LINEMESSAGE& message) {
    if (message.dwParam1 == LINEDEVSTATE_RINGING)
        Tell(News::Ring, ringing, noCall);
    LogText("Line message received: LINE_LINEDEVSTATE\n");
}

// Without this a dial on a line that is no more would have no end; nothing else is done about it.
void CTapiApp::TakeClose(const LINEMESSAGE& message) {
    LogText("Line message received: LINE_CLOSE\n");
    const std::lock_guard guard(call.lock);
    if (call.IsDialling() && message.hDevice == call.hLine)
        call.Fail(callUnavailable);
}

void CTapiApp::TakeReply(const LINEMESSAGE& message) {
    const Reply reply = {static_cast<LONG>(message.dwParam1), static_cast<LONG>(message.dwParam2)};
    DWORD which = noCall;
    bool isDrop = false;
    {
        const std::lock_guard guard(call.lock);
        call.TakeReply(reply);
        if (call.IsRequest(reply.request))
            which = call.nCall;
        isDrop = call.IsDrop(reply.request);
    }
    if (which != noCall && reply.error < 0)
        RequestFailed(reply.error, which, isDrop);
    LogText("\nLine message received: LINE_REPLY\n");
}

// The result comes last: the dialler must have heard of the disconnection before it reads the reason. A drop
// that is refused is not asked for again.
void CTapiApp::RequestFailed(LONG error, DWORD which, bool isDrop) {
    NoteFailedRequest(error, which);
    if (!isDrop && !HangUpFromThread(lineReply, which))
        return;
    const std::lock_guard guard(call.lock);
    if (call.nCall != which)
        return;
    if (isDrop) {
        call.bEnding = false;
        call.owed = Owed::Nothing;
    }
    call.Fail(callCanceled);
}

void CTapiApp::TakeCallState(const LINEMESSAGE& message) {
    const StateRow* row = Find(ThreadTables::states, &StateRow::state, static_cast<DWORD>(message.dwParam1));
    LogTapi("Line message received: LINE_CALLSTATE  %s\n", ThreadTables::WordOfState(row, message).c_str());
    if (row && row->act)
        (this->*row->act)(message);
}

void CTapiApp::CallIdle(const LINEMESSAGE& message) {
    HLINE line = 0;
    HCALL ended = 0;
    bool again = false;
    DWORD which = noCall;
    {
        const std::lock_guard guard(call.lock);
        if (!call.Concerns(message.hDevice))
            return;
        call.nDialResult = DialResult::Failed;
        ended = call.TakeCall();
        line = call.TakeLine();
        again = call.bReopening = call.bAnswering;
        call.BeginNext();
        which = call.nCall;
    }
    BehindWall(idle, [&] {
        if (ended)
            pService->lineDeallocateCall(ended);
        if (line)
            pService->lineClose(line);
    });
    if (!Tell(News::Idle, idle, which) || !again)
        return;
    BehindWall(idle, [this] { OpenAgain(); });
    const std::lock_guard guard(call.lock);
    if (std::exchange(call.bReopening, false)) // the service has faulted
        call.bAnswering = false;
}

// The owner may turn answering off, or on again by itself, while the line is being opened; then it isn't
// wanted.
void CTapiApp::OpenAgain() {
    DWORD device = noDevice;
    {
        const std::lock_guard guard(call.lock);
        if (call.hLine)
            call.bReopening = false;
        if (!call.bReopening)
            return;
        device = call.dwAnswerDevice;
    }
    LogTapi("SetAnswer(%d)", true);
    HLINE line = OpenToAnswer(device);
    bool answering = false;
    {
        const std::lock_guard guard(call.lock);
        if (call.bReopening) {
            call.bReopening = false;
            if (!call.hLine)
                call.hLine = std::exchange(line, 0);
            call.bAnswering = answering = call.hLine != 0;
        }
    }
    if (line)
        pService->lineClose(line);
    if (answering)
        LogTapi("SetAnswer returns %d", true);
}

// One call at a time: another one that waits meanwhile is left to ring.
void CTapiApp::CallOffered(const LINEMESSAGE& message) {
    const HCALL offered = message.hDevice;
    DWORD which = noCall;
    {
        const std::lock_guard guard(call.lock);
        if (call.hCall || !call.bAnswering || !offered)
            return;
        call.BeginNext();
        call.hCall = offered;
        call.bOffered = true;
        which = call.nCall;
    }
    LONG result = static_cast<LONG>(LINEERR_OPERATIONFAILED);
    BehindWall("TapiThread", [&] { result = pService->lineAnswer(offered, nullptr, 0); });
    if (result < 0) {
        HangUpFromThread(lineReply, which);
        return;
    }
    const std::lock_guard guard(call.lock);
    if (call.nCall == which)
        call.lAnswerResult = result;
}

void CTapiApp::CallBusy(const LINEMESSAGE& message) {
    const std::lock_guard guard(call.lock);
    if (call.Concerns(message.hDevice))
        call.nDialResult = DialResult::Failed;
}

// The owner of a call that was dialled asks for its handle by himself. A call that is being dropped, or whose
// dial was given up, is connected no more.
void CTapiApp::CallConnected(const LINEMESSAGE& message) {
    DWORD which = noCall;
    {
        const std::lock_guard guard(call.lock);
        if (!call.Concerns(message.hDevice) || call.bEnding)
            return;
        if (call.IsDialling())
            call.nDialResult = DialResult::Connected;
        else if (std::exchange(call.bOffered, false))
            which = call.nCall;
    }
    if (which == noCall || !Tell(News::Answered, connected, which))
        return;
    const std::lock_guard guard(call.lock);
    if (call.nCall == which && !call.bEnding)
        call.nDialResult = DialResult::Connected;
}

// The reason and the result come when all has been told: the dialler's own word about the call is the last.
void CTapiApp::CallDisconnected(const LINEMESSAGE& message) {
    DWORD which = noCall;
    {
        const std::lock_guard guard(call.lock);
        if (!call.Concerns(message.hDevice))
            return;
        which = call.nCall;
    }
    const char* reason = WordOf(disconnectReasons, message.dwParam2, callCanceled);
    if (!HangUpFromThread(disconnected, which, reason) || !Tell(News::Carrier, disconnected, which))
        return;
    const std::lock_guard guard(call.lock);
    if (call.nCall != which)
        return;
    call.nDialResult = DialResult::Failed;
    call.lpszError = reason;
}
