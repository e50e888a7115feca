// PortOpen: opens a plain port, dials a line of the telephony service, closes either.
#include "ansi.h"
#include "guards.h"
#include "modem/dialdialog.h"
#include "objectaccess.h"
#include "propertyrows.h"

namespace {

// The box that tells of a dial while it runs. A modal one keeps the program's window from the user meanwhile.
class DialBox {
  public:
    DialBox(HWND object, int kind, std::function<void()> cancel)
        : dialog_(GetParent(object), std::move(cancel)) {
        const bool isShown = kind != Dialog_Hidden && dialog_.Create();
        if (!isShown || kind != Dialog_Modal ||
            !GetParent(object)) // an object of its own is no user's window
            return;
        const HWND top = GetAncestor(object, GA_ROOT);
        if (IsWindowEnabled(top)) {
            EnableWindow(top, FALSE);
            disabled_ = top;
        }
    }
    // Enabled first: the system would look for another program's window to activate.
    ~DialBox() {
        if (disabled_)
            EnableWindow(disabled_, TRUE);
        dialog_.Close();
        if (disabled_)
            SetActiveWindow(disabled_);
    }
    DialBox(const DialBox&) = delete;
    DialBox& operator=(const DialBox&) = delete;

  private:
    CDialDialog dialog_;
    HWND disabled_ = nullptr;
};

} // namespace

// The line that the port's name stands for, the first usable one for no name, or noLine.
int CTarnCommCtl::LineOfPort() const {
    if (*m_Properties.m_szPort)
        return m_Tapi.FindModem(m_Properties.m_szPort);
    DWORD device = 0;
    return m_Tapi.FindNextDataModem(device) ? static_cast<int>(device) : noLine;
}

READ(PortOpen, VARIANT_BOOL, GetPortOpen)

// A failure is no error: the port stays closed, and PortStatus says why.
STDMETHODIMP CTarnCommCtl::put_PortOpen(VARIANT_BOOL value) {
    return Body([&]() -> HRESULT {
        const bool open = value != VARIANT_FALSE;
        Log().AssignedBool("PortOpen", open);
        if (m_bTapiCall && !open) {
            HangUpCall();
            return S_OK;
        }
        if (open == (GetPortOpen(CommObject()) != 0))
            return S_OK;
        const int line = open ? LineOfPort() : noLine;
        const HRESULT result = line == noLine ? SetPlainPortOpen(open) : DialLine(static_cast<DWORD>(line));
        if (SUCCEEDED(result))
            UpdateStatus();
        return result;
    });
}

bool CTarnCommCtl::GiveUpCall() {
    const bool done = m_Tapi.HangUp();
    SetCommID(CommObject(), INVALID_HANDLE_VALUE);
    m_hCallDevice = INVALID_HANDLE_VALUE;
    m_bTapiCall = false;
    m_bConnected = false;
    m_Properties.m_sPortStatus = L"Disconnected";
    NotifyObject(CommObject(), TARN_EVENT_CARRIER);
    return done;
}

void CTarnCommCtl::HangUpCall() {
    GiveUpCall();
    UpdateStatus();
}

HRESULT CTarnCommCtl::SetPlainPortOpen(bool open) {
    char error[TARN_ERROR_TEXT_SIZE] = {};
    const bool done = SetPortOpen(CommObject(), open, error) != 0;
    m_hCallDevice = INVALID_HANDLE_VALUE;
    m_bTapiCall = false;
    m_bConnected = open && GetPortOpen(CommObject());
    if (!open)
        m_Properties.m_sPortStatus = L"Disconnected"; // whatever the device said
    else
        m_Properties.m_sPortStatus = done ? L"Connected" : WideOf(error);
    return S_OK;
}

HRESULT CTarnCommCtl::DialLine(DWORD device) {
    const std::string number = AnsiOf(m_Properties.m_sPhoneNumber);
    if (number.empty()) {
        m_Properties.m_sPortStatus = L"Phone number required";
        return S_OK;
    }
    const CBusyGuard Busy(*this, "PortOpen");
    if (FAILED(Busy.Result()))
        return Busy.Result();
    m_nDialReferences = References();
    m_bTapiCall = true;
    m_Properties.m_sPortStatus = L"Dialing " + m_Properties.m_sPhoneNumber;
    UpdateStatus();
    const DialBox box(CommObject(), m_Properties.m_nDialStatusDialog, [this] { CancelDial(); });
    bool done = m_Tapi.Dial(device, number.c_str(), GetSettingsBaud(CommObject()));
    if (done && !WantsCall()) { // the host has gone just then
        m_Tapi.HangUp();
        done = false;
    }
    const HANDLE comm = done ? m_Tapi.GetCommHandle() : INVALID_HANDLE_VALUE;
    if (comm == INVALID_HANDLE_VALUE) {
        if (done)
            m_Tapi.HangUp();
        m_bTapiCall = false;
        m_bConnected = false;
        m_Properties.m_sPortStatus = done ? WideOf(callUnavailable) : WideOf(m_Tapi.LastError());
        return S_OK;
    }
    m_Properties.m_sPortStatus = L"Connected";
    TakeCallDevice(comm);
    NotifyObject(CommObject(), TARN_EVENT_CARRIER);
    return S_OK;
}

void CTarnCommCtl::CancelDial() {
    VARIANT_BOOL done = VARIANT_FALSE;
    get_HangUp(&done);
}
