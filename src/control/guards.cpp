#include "guards.h"
#include "core/deadline.h"

#include <cstdio>

namespace {

constexpr size_t messageSize = 256;
constexpr DWORD longestTurn = 50; // ms

} // namespace

CBusyGuard::CBusyGuard(CTarnCommCtl& control, const char* name) : control_(&control) {
    if (control.m_szBusyProperty.empty()) {
        control.m_szBusyProperty = name;
        return;
    }
    char message[messageSize];
    std::snprintf(message, sizeof message,
                  "Cannot access the %s property until the %s property has returned.", name,
                  control.m_szBusyProperty.c_str());
    result_ = control.ReportError(InvalidCall, message);
}

CBusyGuard::~CBusyGuard() {
    if (result_ == S_OK)
        control_->m_szBusyProperty.clear();
}

// Asks the cached copy, which may differ from the comm object's own; kept so, see put_AutoReceive.
bool CTarnCommCtl::CheckAutoReceive(const char* name) const {
    if (m_Properties.m_nAutoProcess != 1 && m_Properties.m_nAutoProcess != 3)
        return true;
    char message[messageSize];
    std::snprintf(message, sizeof message, "Cannot access the %s property while AutoReceive is True.", name);
    ReportError(InvalidCall, message);
    return false;
}

HRESULT CTarnCommCtl::ReportError(HRESULT code, const char* message) const {
    return ReportFailure(code, L"TarnLink.TarnComm", message);
}

// Windows that always have a message more must not keep a wait from its limit.
void CTarnCommCtl::IdleLoop() {
    const Deadline turn(longestTurn);
    MSG message;
    while (!turn.Passed() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam)); // the host's own loop still sees it
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}
