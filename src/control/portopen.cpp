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
        if (kind == Dialog_Hidden || !dialog_.Create() || kind != Dialog_Modal)
            return;
        const HWND top = TopOf(object);
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
    static HWND TopOf(HWND window) {
        while (const HWND parent = GetParent(window))
            window = parent;
        return window;
    }

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
    NotifyObject(CommObject(), TARN_EVENT_CARRIER);
    m_bConnected = false;
    return done;
}

void CTarnCommCtl::HangUpCall() {
    GiveUpCall();
    m_bTapiCall = false;
    UpdateStatus();
}

HRESULT CTarnCommCtl::SetPlainPortOpen(bool open) {
    char error[TARN_ERROR_TEXT_SIZE] = {};
    const bool done = SetPortOpen(CommObject(), open, error) != 0;
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
    m_bTapiCall = true;
    m_Properties.m_sPortStatus = L"Dialing " + m_Properties.m_sPhoneNumber;
    UpdateStatus();
    const DialBox box(CommObject(), m_Properties.m_nDialStatusDialog, [this] { CancelDial(); });
    bool done = m_Tapi.Dial(device, number.c_str(), GetSettingsBaud(CommObject()));
    if (done && !WantsCall()) { // the host has gone just then
        m_Tapi.HangUp();
        done = false;
    }
    m_bTapiCall = done;
    m_bConnected = done;
    m_Properties.m_sPortStatus = done ? L"Connected" : WideOf(m_Tapi.LastError());
    if (!done)
        return S_OK;
    GiveCallToObject(CommObject(), m_Tapi.GetCommHandle());
    NotifyObject(CommObject(), TARN_EVENT_CARRIER);
    return S_OK;
}

void CTarnCommCtl::CancelDial() {
    VARIANT_BOOL done = VARIANT_FALSE;
    get_HangUp(&done);
}
