// The flat functions of the modem.
#include "core/live.h"
#include "core/wall.h"
#include "modem.h"
#include "modemnames.h"
#include "modemoptions.h"
#include "TarnComm.h"

namespace {

constexpr const char* attention = "AT^M";

// Runs the work on the object; 0 for a dead one.
template <class Work>
int OnObject(HWND hWnd, const char* szPlace, Work&& work) {
    return BehindWall(szPlace, [&]() -> int {
        COMCTL* record = RecordOf(hWnd);
        return record ? static_cast<int>(work(*record)) : 0;
    });
}

} // namespace

int TARNAPI OutputModem(HWND hWnd, const char* szCommand) {
    return OnObject(hWnd, "OutputModem",
                    [&](COMCTL& record) { return szCommand && SendCommand(record, szCommand); });
}

int TARNAPI WaitForOk(HWND hWnd) {
    return OnObject(hWnd, "WaitForOk", AwaitOk);
}

int TARNAPI CheckModem(HWND hWnd) {
    return OnObject(hWnd, "CheckModem", [](COMCTL& record) { return Ask(record, attention); });
}

int TARNAPI InitModem(HWND hWnd) {
    return OnObject(hWnd, "InitModem", SetUpModem);
}

int TARNAPI InitModemForAnswer(HWND hWnd) {
    return OnObject(hWnd, "InitModemForAnswer", [](COMCTL& record) {
        return SetUpModem(record) && Ask(record, ModemOption(record, ModemField::Answer));
    });
}

int TARNAPI Dial(HWND hWnd, const char* szNumber) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return 0;
    int result = TARN_DIAL_TIMED_OUT; // what a failure behind the wall gives; 0 would mean a call
    BehindWall("Dial", [&] { result = DialNumber(*record, szNumber ? szNumber : ""); });
    return result;
}

int TARNAPI HangUp(HWND hWnd) {
    return OnObject(hWnd, "HangUp", HangUpLine);
}

int TARNAPI Disconnect(HWND hWnd) {
    return OnObject(hWnd, "Disconnect", DropLine);
}

int TARNAPI GetModemOptions(HWND hWnd, char* lpBuffer) {
    return OnObject(hWnd, "GetModemOptions",
                    [&](const COMCTL& record) { return lpBuffer ? CopyModemOptions(record, lpBuffer) : 0; });
}

void TARNAPI SetModemOptions(HWND hWnd, const char* szOptions) {
    COMCTL* record = RecordOf(hWnd);
    if (record && szOptions)
        StoreModemOptions(*record, szOptions);
}

int TARNAPI FillListWithModemNames(HWND hWnd, HWND hListBox) {
    return OnObject(hWnd, "FillListWithModemNames", [&](const COMCTL& record) {
        return IsWindow(hListBox) && FillListBox(record, hListBox);
    });
}

int TARNAPI FillComboWithModemNames(HWND hWnd, HWND hComboBox) {
    return OnObject(hWnd, "FillComboWithModemNames", [&](const COMCTL& record) {
        return IsWindow(hComboBox) && FillComboBox(record, hComboBox);
    });
}
