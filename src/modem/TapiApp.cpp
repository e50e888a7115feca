#include "TapiApp.h"

#include "core/notify.h"
#include "core/wall.h"
#include "diagnostics/swallow.h"
#include "diagnostics/wiretap.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr char applicationName[] = "Lantry";
constexpr LONG operationFailed = static_cast<LONG>(LINEERR_OPERATIONFAILED);

struct StartUpReason {
    DWORD error;
    const char* szText;
};

constexpr StartUpReason startUpReasons[] = {
    {LINEERR_INIFILECORRUPT, "Ini file is corrupt."},
    {LINEERR_INVALAPPNAME, "Invalid application name."},
    {LINEERR_INVALPARAM, "Invalid parameter."},
    {LINEERR_INVALPOINTER, "Invalid pointer."},
    {LINEERR_NOMEM, "Out of memory."},
    {LINEERR_OPERATIONFAILED, "Operation failed."},
    {LINEERR_REINIT, "Line re-initialized."},
};

std::string ReasonOf(LONG error) {
    const auto* found =
        std::find_if(std::begin(startUpReasons), std::end(startUpReasons),
                     [&](const StartUpReason& row) { return static_cast<LONG>(row.error) == error; });
    if (found != std::end(startUpReasons))
        return found->szText;
    return "Error code " + std::to_string(error) + ".";
}

HINSTANCE ModuleOfThisCode() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const char*>(&applicationName), &module);
    return module;
}

} // namespace

CTapiApp::CTapiApp(CTapiOwner& owner, const TapiLimits& theLimits) : pControl(owner), limits(theLimits) {
    try {
        life = std::make_shared<const bool>(true);
        hShutdown = ManualResetEvent();
        lInitResult = InitializeService();
        if (lInitResult != 0) {
            bDisabled = true;
            LogText("lineInitializeEx failed\n");
            return;
        }
        LogLines();
        bDisabled = !StartListening();
    } catch (...) {
        SwallowException("CTapiApp");
        bDisabled = true;
    }
}

// May run inside of an event that the thread sent: it is not answered then, but told to stop.
CTapiApp::~CTapiApp() {
    life.reset();
    try {
        bool isDialling = false;
        {
            const std::lock_guard guard(call.lock);
            isDialling = call.IsDialling();
        }
        if (isDialling) {
            pControl.OnDisconnected();
            EndCall();
        }
    } catch (...) {
        SwallowException("~CTapiApp");
    }
    SetEvent(hShutdown.get());
    EndModuleThread(std::move(hThread), limits.threadEnd);
    newsWindow.reset();
    HLINE line = 0;
    {
        const std::lock_guard guard(call.lock);
        line = call.TakeLine();
    }
    BehindWall("~CTapiApp", [&] {
        if (line)
            pService->lineClose(line);
    });
    BehindWall("~CTapiApp", [this] {
        if (hLineApp)
            pService->lineShutdown(hLineApp);
    });
}

std::string CTapiApp::StartUpError() const {
    if (!bDisabled)
        return "";
    const LONG error = lInitResult ? lInitResult : operationFailed;
    return "Unable to access the Windows Telephony API: " + ReasonOf(error);
}

// A service that answers success and has filled in no handle or no event is none.
LONG CTapiApp::InitializeService() {
    pService = BindTapiService();
    if (!pService)
        return operationFailed;
    LINEINITIALIZEEXPARAMS parameters = {};
    parameters.dwTotalSize = sizeof parameters;
    parameters.dwOptions = LINEINITIALIZEEXOPTION_USEEVENT;
    const LONG result = pService->lineInitializeExA(&hLineApp, ModuleOfThisCode(), nullptr, applicationName,
                                                    &dwNumDevs, &dwAPIVersion, &parameters);
    if (result != 0) {
        hLineApp = 0;
        return result;
    }
    hLineEvent = parameters.Handles.hEvent;
    return hLineApp && hLineEvent ? 0 : operationFailed;
}

void CTapiApp::LogLines() const {
    for (DWORD device = 0; device < dwNumDevs; ++device)
        LogText(IsDataModem(device) ? "Data\r" : "Voice\n");
}

bool CTapiApp::StartListening() {
    newsWindow = std::make_unique<NewsWindow>([this](WPARAM news) {
        OnNews(static_cast<News>(LOBYTE(news)), static_cast<DWORD>(news >> newsBits));
    });
    if (!newsWindow->Handle() || !hShutdown)
        return false;
    ownerSend = std::make_unique<StoppableSend>(newsWindow->Handle(), hShutdown.get());
    hThread = StartModuleThread([this] { return TapiThread(); });
    return static_cast<bool>(hThread);
}

// The object may be gone when the owner returns. The time that the host takes is no silence of the service.
void CTapiApp::OnNews(News news, DWORD which) {
    const Life watch = life;
    if (!life)
        return;
    ++newsUnderWay;
    const auto leave = [&] {
        if (watch.expired())
            return;
        --newsUnderWay;
        const std::lock_guard guard(call.lock);
        call.dwOwedSince = GetTickCount();
    };
    try {
        TellOwner(news, which);
    } catch (...) {
        leave();
        throw;
    }
    leave();
}

// What the call does to the owner's handle is no news once there is another call.
void CTapiApp::TellOwner(News news, DWORD which) {
    bool isPresent = false;
    {
        const std::lock_guard guard(call.lock);
        isPresent = which == call.nCall;
    }
    switch (news) {
    case News::Disconnected:
        return isPresent ? pControl.OnDisconnected() : void();
    case News::Idle:
        return isPresent ? pControl.OnIdle() : void();
    case News::Answered:
        return isPresent ? TellOfAnswer() : void();
    case News::Ring:
        return pControl.OnNotify(Event_Ring);
    case News::Carrier:
        return pControl.OnNotify(Event_CarrierChanged);
    }
}

// A call without data is of no use to anybody.
void CTapiApp::TellOfAnswer() {
    const HANDLE hComm = GetCommHandle();
    if (hComm == INVALID_HANDLE_VALUE)
        EndCall();
    else
        pControl.OnAnswered(hComm);
}
