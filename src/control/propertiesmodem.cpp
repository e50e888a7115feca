// Properties of the modem and of the telephony service.
#include "ansi.h"
#include "guards.h"
#include "modeminfo.h"
#include "objectaccess.h"
#include "propertyrows.h"

namespace {

// Waits for the modem's words.
HRESULT AskModem(CTarnCommCtl& control, const char* name, int(TARNAPI* flat)(HWND), VARIANT_BOOL* value) {
    if (!value)
        return E_POINTER;
    *value = VARIANT_FALSE;
    const CBusyGuard Busy(control, name);
    if (FAILED(Busy.Result()))
        return Busy.Result();
    if (!control.CheckAutoReceive(name))
        return InvalidCall;
    const bool done = flat(control.CommObject()) != 0;
    *value = done ? VARIANT_TRUE : VARIANT_FALSE;
    control.Log().ReturnsBool(name, done);
    return S_OK;
}

// The line of this place among the usable ones, from 0 on.
bool FindLine(const CTapiApp& telephony, LONG place, DWORD& device) {
    device = 0;
    for (LONG left = place; left >= 0; --left) {
        if (!telephony.FindNextDataModem(device))
            return false;
        if (left > 0)
            ++device;
    }
    return place >= 0;
}

void AddLineNames(const CTapiApp& telephony, HWND list, UINT message) {
    for (DWORD device = 0; telephony.FindNextDataModem(device); ++device) {
        const std::string name = telephony.GetModemName(device);
        SendMessageA(list, message, 0, reinterpret_cast<LPARAM>(name.c_str()));
    }
}

using FillFlat = int(TARNAPI*)(HWND object, HWND list);

HRESULT FillNames(CTarnCommCtl& control, const char* name, LONG window, FillFlat flat, UINT message) {
    const HWND list = static_cast<HWND>(LongToHandle(window));
    if (control.Properties().m_bUseTAPI)
        AddLineNames(control.Telephony(), list, message);
    else
        flat(control.CommObject(), list);
    control.Log().Assigned(name, window);
    return S_OK;
}

HRESULT TelephonyFailure(CTarnCommCtl& control) {
    return control.ReportError(GeneralFailure, control.Telephony().StartUpError().c_str());
}

} // namespace

CACHED(UseTAPI, VARIANT_BOOL, m_bUseTAPI)

// The log has it under another name; programs that read logs know it so.
STDMETHODIMP CTarnCommCtl::get_PhoneNumber(BSTR* value) {
    return ReadText("ProjectPhoneNumber", value, [this] { return NullOrBstr(m_Properties.m_sPhoneNumber); });
}

STDMETHODIMP CTarnCommCtl::put_PhoneNumber(BSTR value) {
    return Body([&]() -> HRESULT {
        m_Properties.m_sPhoneNumber = value ? value : L"";
        Log().AssignedText("ProjectPhoneNumber", value);
        return S_OK;
    });
}

PLAIN(DialMode, DialMode, m_nDialMode, GetDialMode, SetDialMode)
PLAIN(DialTimeOut, LONG, m_lDialTimeOut, GetDialTimeOut, SetDialTimeOut)
CACHED(DialStatusDialog, StatusDialog, m_nDialStatusDialog)

// A call is told to be over by OnDisconnected, which the telephony service calls.
STDMETHODIMP CTarnCommCtl::get_HangUp(VARIANT_BOOL* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        const bool done = GiveUpCall();
        *value = done ? VARIANT_TRUE : VARIANT_FALSE;
        Log().ReturnsBool("HangUp", done);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_InitModem(VARIANT_BOOL* value) {
    return Body([&] { return AskModem(*this, "InitModem", InitModem, value); });
}

STDMETHODIMP CTarnCommCtl::get_InitModemForAnswer(VARIANT_BOOL* value) {
    return Body([&] { return AskModem(*this, "InitModemForAnswer", InitModemForAnswer, value); });
}

// The fields of the modem options. A look at one writes all of them anew.
#define MODEM_TEXT(name, field)                                                                              \
    STDMETHODIMP CTarnCommCtl::get_##name(BSTR* value) {                                                     \
        return ReadText(#name, value, [this] { return MakeBstr(CModemInfo(*this)[field]); });                \
    }                                                                                                        \
    STDMETHODIMP CTarnCommCtl::put_##name(BSTR value) {                                                      \
        return Body([&] {                                                                                    \
            CModemInfo(*this)[field] = AnsiOf(value);                                                        \
            Log().AssignedText(#name, value);                                                                \
            return S_OK;                                                                                     \
        });                                                                                                  \
    }

MODEM_TEXT(ModemTitle, ModemField::Title)
MODEM_TEXT(ModemInitCommand, ModemField::Init)
MODEM_TEXT(ModemDialToneCommand, ModemField::DialTone)
MODEM_TEXT(ModemDialPulseCommand, ModemField::DialPulse)
MODEM_TEXT(ModemAnswerCommand, ModemField::Answer)
MODEM_TEXT(ModemHangUpCommand, ModemField::HangUp)

#undef MODEM_TEXT

READ_CACHED(ModemIndex, LONG, m_nModemIndex)

// The value stays, even where there is no such line.
STDMETHODIMP CTarnCommCtl::put_ModemIndex(LONG value) {
    return Body([&]() -> HRESULT {
        m_Properties.m_nModemIndex = value;
        DWORD device = 0;
        if (!FindLine(m_Tapi, value, device))
            return ReportError(GeneralFailure, "Modem not found.");
        CModemInfo(*this)[ModemField::Title] = m_Tapi.GetModemName(device);
        Log().Assigned("ModemIndex", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_FillModemCombo(LONG value) {
    return Body(
        [&] { return FillNames(*this, "FillModemCombo", value, FillComboWithModemNames, CB_ADDSTRING); });
}

STDMETHODIMP CTarnCommCtl::put_FillModemList(LONG value) {
    return Body(
        [&] { return FillNames(*this, "FillModemList", value, FillListWithModemNames, LB_ADDSTRING); });
}

STDMETHODIMP CTarnCommCtl::get_AnswerCalls(VARIANT_BOOL* value) {
    return ReadCached("AnswerCalls", m_Tapi.IsAnswering(), value);
}

// A failure is told to the log alone.
STDMETHODIMP CTarnCommCtl::put_AnswerCalls(VARIANT_BOOL value) {
    return Body([&]() -> HRESULT {
        const bool wanted = value != VARIANT_FALSE;
        const auto log = [&](const char* outcome) { Log().AssignedBool(outcome, wanted); };
        if (wanted == m_Tapi.IsAnswering()) {
            log("AnswerCalls (no change) ");
            return S_OK;
        }
        const int line = m_Tapi.FindModem(m_Properties.m_szPort);
        if (line == noLine) {
            log("AnswerCalls (modem not found) ");
            return S_OK;
        }
        const bool answers = m_Tapi.SetAnswer(wanted, static_cast<DWORD>(line));
        log(answers == wanted ? "AnswerCalls (succeeded) " : "AnswerCalls (failed) ");
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_Locations(ITapiLocation** value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = nullptr;
        const ComPtr<CTapiLocation> locations = m_pLocations;
        Log().ReturnsWord("Locations", "Collection");
        locations->Contents().Read(m_Tapi);
        return locations->QueryInterface(IID_PPV_ARGS(value));
    });
}

STDMETHODIMP CTarnCommCtl::get_Location(BSTR* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = nullptr;
        if (m_Tapi.IsDisabled())
            return TelephonyFailure(*this);
        *value = MakeBstr(m_Tapi.GetCurrentLocationName());
        Log().ReturnsText("Location", *value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_Location(BSTR value) {
    return Body([&]() -> HRESULT {
        if (m_Tapi.IsDisabled())
            return TelephonyFailure(*this);
        if (!m_Tapi.SetCurrentLocation(AnsiOf(value).c_str()))
            return ReportError(GeneralFailure, "Not a valid location.");
        Log().AssignedText("Location", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_Config(BSTR* value) {
    return ReadText("Config", value, [this]() -> BSTR {
        const int line = m_Tapi.FindModem(m_Properties.m_szPort);
        return line == noLine ? nullptr : MakeBstr(m_Tapi.GetDeviceConfig(static_cast<DWORD>(line)));
    });
}

STDMETHODIMP CTarnCommCtl::put_Config(BSTR value) {
    return Body([&]() -> HRESULT {
        Log().AssignedText("Config", value);
        const int line = m_Tapi.FindModem(m_Properties.m_szPort);
        if (line != noLine)
            m_Tapi.SetDeviceConfig(static_cast<DWORD>(line), AnsiOf(value).c_str());
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_CommPorts(ICommPort** value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = nullptr;
        const ComPtr<CCommPort> ports = m_pCommPorts;
        if (!ports)
            return S_OK;
        ports->Contents().Names();
        Log().ReturnsWord("CommPorts", "Collection");
        return ports->QueryInterface(IID_PPV_ARGS(value));
    });
}
