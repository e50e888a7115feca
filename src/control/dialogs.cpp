// Dialogs that the control opens for its host.
#include "ansi.h"
#include "guards.h"
#include "modem/connectionproperties.h"
#include "objectaccess.h"
#include "propertyrows.h"

#include <comdef.h>

namespace {

ConnectionChoice ChoiceOf(HWND object, const ControlProperties& properties) {
    char settings[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(object, settings);
    return {properties.m_szPort, AnsiOf(properties.m_sPhoneNumber), settings, GetHandshaking(object)};
}

// Through the setters, as a host would. Settings mean the same in any case of their letters.
void Apply(CTarnCommCtl& control, const ConnectionChoice& choice, const ConnectionChoice& before) {
    if (choice.port != before.port)
        control.put_CommPort(_variant_t(WideOf(choice.port).c_str()));
    if (choice.phoneNumber != before.phoneNumber)
        control.put_PhoneNumber(_bstr_t(WideOf(choice.phoneNumber).c_str()));
    if (lstrcmpiA(choice.settings.c_str(), before.settings.c_str()) != 0)
        control.put_Settings(_bstr_t(WideOf(choice.settings).c_str()));
    if (choice.handshaking != before.handshaking)
        control.put_Handshaking(static_cast<Handshaking>(choice.handshaking));
}

} // namespace

bool CTarnCommCtl::Has(HWND object) const {
    return CommObject() == object && ControlOf(object) == this;
}

bool CTarnCommCtl::Ask(CMyDialog& dialog) {
    const HWND object = CommObject();
    return m_OpenDialog.Show(dialog) && Has(object);
}

bool CTarnCommCtl::Ask(const std::function<bool()>& systemDialog) {
    const HWND object = CommObject();
    return m_OpenDialog.Show(systemDialog) && Has(object);
}

HWND CTarnCommCtl::DialogOwner() const {
    return Window() ? Window() : GetActiveWindow();
}

bool CTarnCommCtl::ChooseConnection() {
    const ConnectionChoice before = ChoiceOf(CommObject(), m_Properties);
    ConnectionChoice choice = before;
    const ComPtr<CCommPort> ports = m_pCommPorts;
    const auto portNames = [&] { return ports->Contents().Names(); };
    CConnectionProperties dialog(DialogOwner(), choice, m_Tapi, portNames);
    if (!Ask(dialog))
        return false;
    Apply(*this, choice, before);
    return true;
}

// What a connection that is there or under way was made with stays until it ends: then there is no dialog.
STDMETHODIMP CTarnCommCtl::PropertiesDialog(VARIANT_BOOL* Result) {
    return Body([&]() -> HRESULT {
        if (!Result)
            return E_POINTER;
        *Result = VARIANT_FALSE;
        bool confirmed = false;
        if (!m_bTapiCall && !GetPortOpen(CommObject())) {
            const CBusyGuard Busy(*this, "PropertiesDialog");
            if (FAILED(Busy.Result()))
                return Busy.Result();
            confirmed = ChooseConnection();
        }
        *Result = confirmed ? VARIANT_TRUE : VARIANT_FALSE;
        UpdateStatus();
        Log().ReturnsBool("PropertiesDialog", confirmed);
        return S_OK;
    });
}
