#include "notify.h"

#include "comobject.h"
#include "live.h"

namespace {

struct ErrorTextRow {
    int code;
    const char* text;
};

// Some of these have no source in this system; hosts ask for their texts all the same.
constexpr ErrorTextRow errorTexts[] = {
    {Error_Break, "Break Error"},
    {Error_CTSTimeOut, "CTS Time Out Error"},
    {Error_DSRTimeOut, "DSR Time Out Error"},
    {Error_Frame, "Framing Error"},
    {Error_InputTimeOut, "Input Time Out Error"},
    {Error_Overrun, "Data Overrun Error"},
    {Error_CarrierTimeOut, "Carrier Time Out Error"},
    {Error_ReceiveOverflow, "Receive Buffer Overflow Error"},
    {Error_Parity, "Parity Receive Error"},
    {Error_TransmitFull, "Transmit Buffer Full Error"},
};

void Deliver(const COMCTL& record, int code) {
    const HWND hWnd = record.hWnd;
    const int id = GetDlgCtrlID(hWnd);
    if (record.lpfnEventHandler) {
        record.lpfnEventHandler(hWnd, id, code);
        return;
    }
    const HWND target = record.hEventWindow ? record.hEventWindow : GetParent(hWnd);
    if (target)
        SendMessageA(target, WM_COMMAND, static_cast<WPARAM>(id),
                     MAKELPARAM(LOWORD(reinterpret_cast<UINT_PTR>(hWnd)), code));
    else
        SendMessageA(hWnd, FireEventMessage, static_cast<WPARAM>(code), 0);
}

} // namespace

void Notify(HWND hWnd, int code) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return;
    record->nLastEvent = code;
    if (code >= FirstErrorCode)
        record->nPendingError = code;
    const ObjectWatch watch(*record);
    Deliver(*record, code);
    if (watch.Alive())
        record->nPendingError = 0;
}

const char* ErrorText(int code) {
    for (const ErrorTextRow& row : errorTexts)
        if (row.code == code)
            return row.text;
    return nullptr;
}
