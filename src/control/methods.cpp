// The methods that are no talk with a person at the far end (hostmethods.cpp) and open no dialog.
#include "ansi.h"
#include "core/live.h"
#include "core/portprobe.h"
#include "core/portsignals.h"
#include "objectaccess.h"
#include "propertyrows.h"

#include <algorithm>

namespace {

// The text of the screen from one place on, as far as the screen goes. Empty for a place outside of it.
std::string_view ScreenFrom(HWND object, int column, int row, int length) {
    const char* screen = GetTextAt(object, 0, 0);
    const bool isEmpty = GetTextAt(object, 1, 0) == screen; // there are no cells
    const long long place = static_cast<long long>(row) * GetColumns(object) + column;
    const long long left = static_cast<long long>(GetRows(object)) * GetColumns(object) - place;
    if (isEmpty || place < 0 || left <= 0 || length <= 0)
        return {};
    return {screen + place, static_cast<size_t>(std::min<long long>(length, left))};
}

} // namespace

STDMETHODIMP CTarnCommCtl::GetPortType(BSTR PortName, PortType* Result) {
    return Body([&]() -> HRESULT {
        if (!Result)
            return E_POINTER;
        *Result = PortType_Unknown;
        const std::string name = AnsiOf(PortName);
        const PortProbe probe = ProbePort(name.c_str());
        if (probe.found && probe.kind == PortKind::Serial)
            *Result = PortType_Serial;
        else if (probe.found ? probe.kind == PortKind::Modem : m_Tapi.FindModem(name.c_str()) != noLine)
            *Result = PortType_Modem;
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::TranslatePhoneNumber(BSTR Number, BSTR* Result) {
    return Body([&]() -> HRESULT {
        if (!Result)
            return E_POINTER;
        *Result = nullptr;
        // The rules are the location's: where the port is no line, any line will do.
        const int own = LineOfPort();
        DWORD device = own == noLine ? 0 : static_cast<DWORD>(own);
        const bool hasLine = own != noLine || m_Tapi.FindNextDataModem(device);
        *Result =
            MakeBstr(hasLine ? m_Tapi.TranslatePhoneNumber(device, AnsiOf(Number).c_str()) : std::string());
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::ContentsAt(short col, short row, short len, BSTR* Result) {
    return Body([&]() -> HRESULT {
        if (!Result)
            return E_POINTER;
        *Result = nullptr;
        *Result = MakeBstr(ScreenFrom(CommObject(), col, row, len));
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::WaitUntilEndOfTransfer(VARIANT_BOOL* Result) {
    return Body([&]() -> HRESULT {
        if (!Result)
            return E_POINTER;
        *Result = VARIANT_FALSE;
        const HWND object = CommObject();
        WaitUntilTransferIsFinished(object);
        // An object that is gone has the status of a success.
        const bool good = ControlOf(object) == this && GetTransferStatus(object) == TARN_TRANSFER_SUCCESS;
        *Result = good ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

// A method in spite of its name.
STDMETHODIMP CTarnCommCtl::put_AllowSending(VARIANT_BOOL newVal) {
    return Body([&] {
        const COMCTL* record = RecordOf(CommObject());
        if (record && GetCommID(CommObject()) != INVALID_HANDLE_VALUE)
            PretendXOn(*record, newVal != VARIANT_FALSE);
        return S_OK;
    });
}
