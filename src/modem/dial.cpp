#include "core/live.h"
#include "lookuplimit.h"
#include "modem.h"
#include "modemoptions.h"

namespace {

// The modem's words, in the order of the results.
constexpr char words[] = "CONNECT\0NO CARRIER\0NO DIALTONE\0BUSY\0";
static_assert(TARN_DIAL_CONNECTED == 0 && TARN_DIAL_NO_CARRIER == 1 && TARN_DIAL_NO_DIAL_TONE == 2 &&
              TARN_DIAL_BUSY == 3);

void SendCarriageReturn(HWND hWnd) {
    Output(hWnd, "\r", 1);
}

// The modem's word; the speed behind "CONNECT" stays in the input. A carriage return stops a modem that said
// none.
int AwaitWord(HWND hWnd) {
    const int found = DiscardUntilLookUp(hWnd, words);
    if (found >= 0)
        return found;
    SendCarriageReturn(hWnd);
    return TARN_DIAL_TIMED_OUT;
}

} // namespace

int DialNumber(COMCTL& record, const std::string& number) {
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    ClearInputBuffer(hWnd);
    ClearOutputBuffer(hWnd);
    SendCommand(record, ModemOption(record, DialPrefixField(record)));
    Output(hWnd, number.data(), static_cast<int>(number.size()));
    SendCarriageReturn(hWnd);
    if (watch.Gone())
        return TARN_DIAL_TIMED_OUT;
    const LookUpLimit limit(record, record.lDialTimeOut);
    record.bDialing = 1;
    record.bDialCancel = 0;
    const int result = AwaitWord(hWnd);
    if (watch.Gone())
        return result;
    const bool cancelled = record.bDialCancel;
    record.bDialing = 0;
    record.bDialCancel = 0;
    return cancelled ? TARN_DIAL_CANCELLED : result;
}
