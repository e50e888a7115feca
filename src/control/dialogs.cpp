// Dialogs that the control opens for its host.
#include "ansi.h"
#include "modem/connectionproperties.h"
#include "propertyrows.h"

#include <comdef.h>

namespace {

ConnectionChoice ChoiceOf(HWND object, const ControlProperties& properties) {
    char settings[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(object, settings);
    return {properties.m_szPort, AnsiOf(properties.m_sPhoneNumber), settings, GetHandshaking(object)};
}

// Through the setters, as a host would.
void Apply(CTarnCommCtl& control, const ConnectionChoice& choice, const ConnectionChoice& before) {
    control.put_CommPort(_variant_t(WideOf(choice.port).c_str()));
    control.put_PhoneNumber(_bstr_t(WideOf(choice.phoneNumber).c_str()));
    if (choice.settings != before.settings)
        control.put_Settings(_bstr_t(WideOf(choice.settings).c_str()));
    if (choice.handshaking != before.handshaking)
        control.put_Handshaking(static_cast<Handshaking>(choice.handshaking));
}

} // namespace

STDMETHODIMP CTarnCommCtl::PropertiesDialog(VARIANT_BOOL* Result) {
    return Body([&]() -> HRESULT {
        if (!Result)
            return E_POINTER;
        *Result = VARIANT_FALSE;
        const ConnectionChoice before = ChoiceOf(CommObject(), m_Properties);
        ConnectionChoice choice = before;
        const ComPtr<CCommPort> ports = m_pCommPorts;
        const auto portNames = [&] { return ports->Contents().Names(); };
        CConnectionProperties dialog(Window(), choice, m_Tapi, portNames);
        const bool confirmed = dialog.DoModal() == IDOK;
        if (confirmed)
            Apply(*this, choice, before);
        *Result = confirmed ? VARIANT_TRUE : VARIANT_FALSE;
        UpdateStatus();
        Log().ReturnsBool("PropertiesDialog", confirmed);
        return S_OK;
    });
}
