#include "messages.h"

#include "exchange.h"

namespace {

bool messagesFail = false;
DWORD lastRequest = 0;

LONG TakeMessage(HLINEAPP handle, LINEMESSAGE* to) {
    Application* application = Applications().Find(handle);
    if (!application)
        return Failure(LINEERR_INVALAPPHANDLE);
    if (!to)
        return Failure(LINEERR_INVALPOINTER);
    auto& messages = application->messages;
    if (messagesFail || messages.empty())
        return Failure(LINEERR_OPERATIONFAILED);
    *to = messages.front();
    messages.pop_front();
    if (messages.empty())
        ResetEvent(application->event.get());
    return 0;
}

// Waits on a handle of its own: the application may go meanwhile.
void WaitForMessage(HLINEAPP handle, DWORD milliseconds) {
    EventHandle event;
    {
        const std::lock_guard guard(ExchangeLock());
        const Application* application = Applications().Find(handle);
        HANDLE copy = nullptr;
        if (application && DuplicateHandle(GetCurrentProcess(), application->event.get(), GetCurrentProcess(),
                                           &copy, 0, FALSE, DUPLICATE_SAME_ACCESS))
            event.reset(copy);
    }
    if (event)
        WaitForSingleObject(event.get(), milliseconds);
}

} // namespace

HandleTable<Application>& Applications() {
    static auto* applications = new HandleTable<Application>;
    return *applications;
}

void QueueMessage(HLINEAPP handle, const LINEMESSAGE& message) {
    Application* application = Applications().Find(handle);
    if (!application)
        return;
    application->messages.push_back(message);
    SetEvent(application->event.get());
}

void QueueReply(HLINEAPP application, DWORD request, LONG result) {
    LINEMESSAGE message = {};
    message.dwMessageID = LINE_REPLY;
    message.dwParam1 = request;
    message.dwParam2 = static_cast<DWORD_PTR>(static_cast<LONG_PTR>(result));
    QueueMessage(application, message);
}

DWORD NextRequest() {
    return lastRequest = lastRequest % MAXLONG + 1;
}

void QueueReplyToAll(DWORD request, LONG result) {
    for (const auto& [handle, application] : Applications())
        QueueReply(handle, request, result);
}

DWORD WINAPI ExchangeLastRequest() {
    const std::lock_guard guard(ExchangeLock());
    return lastRequest;
}

void FailMessages() {
    messagesFail = true;
    for (auto& [handle, application] : Applications())
        SetEvent(application.event.get());
}

void ClearMessages() {
    messagesFail = false;
    for (auto& [handle, application] : Applications()) {
        application.messages.clear();
        ResetEvent(application.event.get());
    }
}

LONG WINAPI lineGetMessage(HLINEAPP hLineApp, LPLINEMESSAGE lpMessage, DWORD dwTimeout) {
    LONG result = 0;
    if (MeetFault("lineGetMessage", result))
        return result;
    if (dwTimeout)
        WaitForMessage(hLineApp, dwTimeout);
    const std::lock_guard guard(ExchangeLock());
    return TakeMessage(hLineApp, lpMessage);
}
