// What the telephony service tells of a call.
#include "core/handle.h"
#include "objectaccess.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

namespace {

constexpr int newConnection = 9;  // an event's code that no comm object has a source for
constexpr ULONG holdsOfADial = 2; // put_PortOpen's, and that of its guard

bool IsHeldByItsHost(CTarnCommCtl& control) {
    control.AddRef();
    return control.Release() > holdsOfADial;
}

} // namespace

void CTarnCommCtl::OnDisconnected() {
    SetCommID(CommObject(), INVALID_HANDLE_VALUE);
    m_bTapiCall = false;
    m_bConnected = false;
    m_Properties.m_sPortStatus = L"Disconnected";
    UpdateStatus();
}

void CTarnCommCtl::OnIdle() {
    SetCommID(CommObject(), INVALID_HANDLE_VALUE);
    UpdateStatus();
}

// From here on the call is as one that was dialled: closing the port drops it. Nobody takes the call of a
// control whose object has gone.
void CTarnCommCtl::OnAnswered(HANDLE hComm) {
    const ComPtr<IUnknown> held(static_cast<ITarnComm*>(this)); // its host may go in the first event
    if (ControlOf(CommObject()) != this) {
        const FileHandle unused(hComm);
        m_Tapi.HangUp();
        return;
    }
    GiveCallToObject(CommObject(), hComm);
    m_bTapiCall = true;
    m_bConnected = true;
    NotifyObject(CommObject(), newConnection);
    NotifyObject(CommObject(), TARN_EVENT_CARRIER);
}

void CTarnCommCtl::OnNotify(int code) {
    const ComPtr<IUnknown> held(static_cast<ITarnComm*>(this));
    NotifyObject(CommObject(), code);
}

// A control without a window doesn't see its host leave.
bool CTarnCommCtl::WantsCall() const {
    const HWND object = CommObject();
    CTarnCommCtl* self = ControlOf(object);
    return self == this && !GetShutDown(object) && IsHeldByItsHost(*self);
}
