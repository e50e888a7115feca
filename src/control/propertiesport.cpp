// Properties of the port and its line. portopen.cpp opens and closes it.
#include "ansi.h"
#include "propertyrows.h"

#include <comdef.h>

#include <cstdio>
#include <cstring>

namespace {

constexpr DISPID settingsId = 1;
constexpr DISPID rThresholdId = 90;
constexpr int firstErrorCode = 1000; // events are below

bool IsNumber(VARTYPE type) {
    switch (type) {
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_R8:
        return true;
    default:
        return false;
    }
}

template <size_t Size>
void CopyText(char (&to)[Size], const std::string& text) {
    const size_t length = text.copy(to, Size - 1);
    to[length] = '\0';
}

HRESULT TakePortName(CTarnCommCtl& control, VARIANT& given) {
    char(&szPort)[PortNameSize] = control.Properties().m_szPort;
    if (V_VT(&given) == VT_BSTR) {
        CopyText(szPort, AnsiOf(V_BSTR(&given)));
        return S_OK;
    }
    if (!IsNumber(V_VT(&given)))
        return control.ReportError(TypeMismatch, "Type mismatch.");
    const HRESULT result = VariantChangeType(&given, &given, 0, VT_I4);
    if (SUCCEEDED(result))
        std::snprintf(szPort, sizeof szPort, "COM%ld", V_I4(&given));
    return result;
}

void TakeFirstLine(CTarnCommCtl& control) {
    const CTapiApp& telephony = control.Telephony();
    DWORD device = 0;
    if (!telephony.IsDisabled() && telephony.FindNextDataModem(device))
        CopyText(control.Properties().m_szPort, telephony.GetModemName(device));
}

} // namespace

// A number comes back as the name that it stands for. Not logged.
STDMETHODIMP CTarnCommCtl::get_CommPort(VARIANT* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        VariantInit(value);
        V_BSTR(value) = MakeBstr(std::string_view(m_Properties.m_szPort));
        V_VT(value) = VT_BSTR;
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_CommPort(VARIANT value) {
    return Body([&]() -> HRESULT {
        _variant_t given;
        HRESULT result = VariantCopyInd(&given, &value);
        if (SUCCEEDED(result))
            result = TakePortName(*this, given);
        if (FAILED(result))
            return result;
        char(&szPort)[PortNameSize] = m_Properties.m_szPort;
        if (!*szPort)
            TakeFirstLine(*this);
        SetCommPort(CommObject(), szPort);
        Log().AssignedBytes("CommPort", szPort, std::strlen(szPort));
        UpdateStatus();
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_Settings(BSTR* value) {
    return ReadText("Settings", value, [this] {
        OutputDebugStringA("Settings read\n");
        char settings[TARN_SETTINGS_TEXT_SIZE] = {};
        GetSettings(CommObject(), settings);
        return MakeBstr(std::string_view(settings));
    });
}

STDMETHODIMP CTarnCommCtl::put_Settings(BSTR value) {
    return Body([&]() -> HRESULT {
        m_Properties.m_sSettings = value ? value : L"";
        if (!m_Properties.m_sSettings.empty()) // an empty text leaves the comm object what it has
            SetSettings(CommObject(), AnsiOf(value).c_str());
        Log().AssignedText("Settings", value);
        UpdateStatus();
        FireOnChanged(settingsId);
        return S_OK;
    });
}

READ_TEXT(PortStatus, m_sPortStatus)

STDMETHODIMP CTarnCommCtl::get_CommHandle(LONG* value) {
    return Read(
        "CommHandle", [](HWND object) { return HandleToLong(GetCommID(object)); }, value);
}

STDMETHODIMP CTarnCommCtl::put_CommHandle(LONG value) {
    return Body([&]() -> HRESULT {
        const HANDLE device = LongToHandle(value);
        SetCommID(CommObject(), device);
        m_bConnected = device != INVALID_HANDLE_VALUE;
        Log().Assigned("CommHandle", value);
        UpdateStatus();
        return S_OK;
    });
}

// Another name of CommHandle, which the log calls by the first.
STDMETHODIMP CTarnCommCtl::get_CommID(LONG* value) {
    return get_CommHandle(value);
}

STDMETHODIMP CTarnCommCtl::put_CommID(LONG value) {
    return put_CommHandle(value);
}

PLAIN(Handshaking, Handshaking, m_nHandshaking, GetHandshaking, SetHandshaking)
PLAIN(InBufferSize, LONG, m_cbInBufferSize, GetInBufferSize, SetInBufferSize)
PLAIN(OutBufferSize, LONG, m_cbOutBufferSize, GetOutBufferSize, SetOutBufferSize)

// Counts: 0 empties, another value is only logged.
READ(InBufferCount, LONG, GetInBufferCount)
STDMETHODIMP CTarnCommCtl::put_InBufferCount(LONG value) {
    const auto clear = [](HWND object, int count) {
        if (!count)
            ClearInputBuffer(object);
    };
    return WriteThrough("InBufferCount", clear, value);
}

READ(OutBufferCount, LONG, GetOutBufferCount)
STDMETHODIMP CTarnCommCtl::put_OutBufferCount(LONG value) {
    const auto clear = [](HWND object, int count) {
        if (!count)
            ClearOutputBuffer(object);
    };
    return WriteThrough("OutBufferCount", clear, value);
}

READ(RThreshold, LONG, GetRThreshold)
WRITE_TOLD(RThreshold, LONG, m_nRThreshold, SetRThreshold, rThresholdId)
PLAIN(SThreshold, LONG, m_nSThreshold, GetSThreshold, SetSThreshold)
PLAIN(NullDiscard, VARIANT_BOOL, m_bNullDiscard, GetNullDiscard, SetNullDiscard)

STDMETHODIMP CTarnCommCtl::get_ParityReplace(BSTR* value) {
    return ReadText("ParityReplace", value, [this] {
        const HWND object = CommObject();
        const int code = GetParityReplace(object);
        const char c = static_cast<char>(code);
        const bool hasNone = code == noParityReplace || !IsWindow(object);
        return MakeBstr(hasNone ? std::string_view() : std::string_view(&c, 1));
    });
}

STDMETHODIMP CTarnCommCtl::put_ParityReplace(BSTR value) {
    return Body([&]() -> HRESULT {
        m_Properties.m_sParityReplace = value ? value : L"";
        PassParityReplace();
        Log().AssignedText("ParityReplace", value);
        return S_OK;
    });
}

UNCACHED(Break, VARIANT_BOOL, GetBreak, SetBreak)

// A call of the telephony service has its carrier as long as it has a handle.
STDMETHODIMP CTarnCommCtl::get_CDHolding(VARIANT_BOOL* value) {
    return Read("CDHolding", m_bTapiCall ? GetPortOpen : GetCarrier, value);
}

READ(CTSHolding, VARIANT_BOOL, GetCTS)
READ(DSRHolding, VARIANT_BOOL, GetDSR)
UNCACHED(DTRHolding, VARIANT_BOOL, GetDTR, SetDTR)

// The device is told at once, too.
UNCACHED(DTREnable, VARIANT_BOOL, GetDTR, SetDTR)

PLAIN(RTSEnable, VARIANT_BOOL, m_bRTSEnable, GetRTS, SetRTS)

PLAIN(CDTimeOut, LONG, m_lCDTimeOut, GetCarrierTimeOut, SetCarrierTimeOut)
PLAIN(CTSTimeOut, LONG, m_lCTSTimeOut, GetCTSTimeOut, SetCTSTimeOut)
PLAIN(DSRTimeOut, LONG, m_lDSRTimeOut, GetDSRTimeOut, SetDSRTimeOut)
PLAIN(InTimeOut, LONG, m_lInTimeOut, GetInputTimeOut, SetInputTimeOut)

READ_CACHED(OutTimeOut, LONG, m_lOutTimeOut)
STDMETHODIMP CTarnCommCtl::put_OutTimeOut(LONG value) {
    if (value < 0)
        return S_OK;
    return Write("OutTimeOut", &ControlProperties::m_lOutTimeOut, SetOutputTimeOut, value);
}

UNCACHED(Interval, LONG, GetInterval, SetInterval)
UNCACHED(Notification, LONG, GetNotification, SetNotification)
UNCACHED(ShutDown, VARIANT_BOOL, GetShutDown, SetShutDown)

STDMETHODIMP CTarnCommCtl::get_CommError(CommError* value) {
    const auto read = [](HWND object) {
        const int code = GetLastCommError(object);
        return code > 0 && code < firstErrorCode ? 0 : code;
    };
    return Read("CommError", read, value);
}

READ(CommEvent, CommEvent, GetLastCommEvent)

// A host must not unload the control's form while a blocking property is on the stack.
STDMETHODIMP CTarnCommCtl::get_Busy(VARIANT_BOOL* value) {
    const auto read = [this](HWND object) { return GetBusy(object) || !m_szBusyProperty.empty(); };
    return Read("Busy", read, value);
}

CACHED(IgnoreOnComm, VARIANT_BOOL, m_bIgnoreOnComm)
