// What the telephony service tells of a call.
#include "core/handle.h"
#include "objectaccess.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

namespace {

constexpr int newConnection = 9; // an event's code that no comm object has a source for

} // namespace

// The object has a port or a handle that came from no call: the host opened it after the call.
bool CTarnCommCtl::HasOtherDevice() const {
    return GetPortOpen(CommObject()) && GetCommID(CommObject()) != m_hCallDevice;
}

void CTarnCommCtl::TakeCallDevice(HANDLE hComm) {
    GiveCallToObject(CommObject(), hComm);
    m_hCallDevice = hComm;
    m_bTapiCall = true;
    m_bConnected = true;
}

void CTarnCommCtl::OnDisconnected() {
    if (HasOtherDevice())
        return;
    SetCommID(CommObject(), INVALID_HANDLE_VALUE);
    m_hCallDevice = INVALID_HANDLE_VALUE;
    m_bTapiCall = false;
    m_bConnected = false;
    m_Properties.m_sPortStatus = L"Disconnected";
    UpdateStatus();
}

// A call may go idle without having been disconnected.
void CTarnCommCtl::OnIdle() {
    if (m_hCallDevice != INVALID_HANDLE_VALUE)
        OnDisconnected();
    else
        UpdateStatus();
}

// From here on the call is as one that was dialled: closing the port drops it. Nobody takes the call of a
// control whose object has gone. A plain port that is open makes room.
void CTarnCommCtl::OnAnswered(HANDLE hComm) {
    const ComPtr<IUnknown> held(static_cast<ITarnComm*>(this)); // its host may go in the first event
    if (ControlOf(CommObject()) != this) {
        const FileHandle unused(hComm);
        m_Tapi.HangUp();
        return;
    }
    if (GetPortOpen(CommObject()))
        SetPortOpen(CommObject(), 0, nullptr);
    TakeCallDevice(hComm);
    NotifyObject(CommObject(), newConnection);
    NotifyObject(CommObject(), TARN_EVENT_CARRIER);
}

void CTarnCommCtl::OnNotify(int code) {
    const ComPtr<IUnknown> held(static_cast<ITarnComm*>(this));
    NotifyObject(CommObject(), code);
}

ULONG CTarnCommCtl::References() {
    AddRef();
    return Release();
}

// A host that leaves takes the window of a shown control, and the comm object with it. Of a control without
// one it gives back a reference that was there when the dial began.
bool CTarnCommCtl::WantsCall() const {
    const HWND object = CommObject();
    CTarnCommCtl* self = ControlOf(object);
    if (self != this || GetShutDown(object))
        return false;
    return m_hWndComm || self->References() >= m_nDialReferences;
}
