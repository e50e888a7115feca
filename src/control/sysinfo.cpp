// System information: the troubleshooter, with what it asks of this control.
#include "ansi.h"
#include "diagnostics/TroubleShootDialog.h"
#include "TarnCommCtl.h"

#include <comdef.h>

namespace {

class ControlReport final : public TroubleShootHost {
  public:
    explicit ControlReport(CTarnCommCtl& control) : control_(control), object_(control.CommObject()) {}

    std::vector<TroubleShootModem> Modems() override {
        std::vector<TroubleShootModem> modems;
        const CTapiApp& telephony = control_.Telephony();
        for (DWORD device = 0; telephony.FindNextDataModem(device); ++device) {
            TroubleShootModem modem = {"", "", telephony.GetMaximumSpeed(device)};
            DWORD permanentId = 0;
            telephony.GetModemName(device, modem.name, modem.provider, permanentId);
            modems.push_back(std::move(modem));
        }
        return modems;
    }

    bool WireTap() override { return control_.Properties().m_bWireTap != 0; }
    std::string CaptureFilename() override { return AnsiOf(control_.Properties().m_sCaptureFilename); }

    void SetWireTap(bool on) override {
        if (!control_.Has(object_))
            return;
        if (!on) { // the property's setter can't
            control_.Properties().m_bWireTap = 0;
            control_.SetWireTapFlags();
            return;
        }
        control_.put_WireTap(VARIANT_TRUE);
        for (const auto put : switches)
            (control_.*put)(VARIANT_TRUE);
    }

    void SetCaptureFilename(const std::string& name) override {
        if (control_.Has(object_))
            control_.put_CaptureFilename(_bstr_t(WideOf(name).c_str()));
    }

  private:
    using Switch = HRESULT (STDMETHODCALLTYPE CTarnCommCtl::*)(VARIANT_BOOL);
    static constexpr Switch switches[] = {
        &CTarnCommCtl::put_WireTapEvents,   &CTarnCommCtl::put_WireTapInput,
        &CTarnCommCtl::put_WireTapOutput,   &CTarnCommCtl::put_WireTapProperties,
        &CTarnCommCtl::put_WireTapTransfer, &CTarnCommCtl::put_WireTapWarnings,
    };

    CTarnCommCtl& control_;
    const HWND object_; // what is set is for this one
};

} // namespace

STDMETHODIMP CTarnCommCtl::ShowSysInfo() {
    return Body([&] {
        ControlReport report(*this);
        CTroubleShootDialog dialog(GetActiveWindow(), report);
        Ask(dialog);
        return S_OK;
    });
}
