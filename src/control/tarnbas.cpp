// The flat functions for a BASIC interpreter that calls a library's functions. Each does nothing for a null
// handle.
#include "TarnComm.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr int nothing = -1;
constexpr int colorBits = 15;
constexpr int backgroundShift = 4;
constexpr int lineSize = 4; // characters of a line; kept so, see the tests
constexpr size_t waitListSize = 1024;

struct DialText {
    int result;
    const char* text;
};

constexpr DialText dialTexts[] = {
    {TARN_DIAL_CONNECTED, ""},
    {TARN_DIAL_NO_DIAL_TONE, "No Dial Tone"},
    {TARN_DIAL_BUSY, "Busy"},
    {TARN_DIAL_TIMED_OUT, "Time Out"},
};
constexpr const char* otherDialText = "No Carrier"; // also for a call that was cancelled

const char* TextOf(int dialResult) {
    const auto* row = std::ranges::find(dialTexts, dialResult, &DialText::result);
    return row != std::end(dialTexts) ? row->text : otherDialText;
}

} // namespace

void TARNAPI tarnbasPrint(HWND hWnd, const char* szText) {
    if (hWnd)
        TerminalPrintString(hWnd, szText);
}

void TARNAPI tarnbasClearScreen(HWND hWnd) {
    if (hWnd)
        TerminalPrintString(hWnd, "\f");
}

void TARNAPI tarnbasColor(HWND hWnd, int nForeground, int nBackground) {
    if (hWnd)
        SetColor(hWnd, (nBackground & colorBits) << backgroundShift | (nForeground & colorBits));
}

void TARNAPI tarnbasDial(HWND hWnd, const char* szNumber, char* lpResult) {
    if (hWnd && lpResult)
        std::strcpy(lpResult, TextOf(Dial(hWnd, szNumber)));
}

void TARNAPI tarnbasHangUp(HWND hWnd) {
    if (hWnd)
        HangUp(hWnd);
}

int TARNAPI tarnbasInput(HWND hWnd, char* lpBuffer, int cbBuffer) {
    if (!hWnd || !lpBuffer || cbBuffer <= 0)
        return nothing;
    const int count = GetInput(hWnd, lpBuffer, cbBuffer - 1); // the rest is the closing NUL's
    lpBuffer[count] = '\0';
    return count;
}

int TARNAPI tarnbasLineInput(HWND hWnd, char* lpBuffer) {
    if (!hWnd || !lpBuffer)
        return nothing;
    *lpBuffer = '\0';
    const int length = GetLineInput(hWnd, lpBuffer, lineSize);
    lpBuffer[length] = '\0'; // a full line has brought none
    return length;
}

void TARNAPI tarnbasSend(HWND hWnd, const char* szText) {
    if (hWnd)
        OutputModem(hWnd, szText);
}

int TARNAPI tarnbasWaitFor(HWND hWnd, const char* szList, const char* szSeparator, LONG lTimeOut) {
    if (!hWnd || !szList || std::strlen(szList) > waitListSize)
        return nothing;
    SetLookUpTimeOut(hWnd, lTimeOut);
    std::array<char, waitListSize + 2> list = {}; // two NULs end it
    std::strcpy(list.data(), szList);
    std::replace(list.begin(), list.end(), szSeparator ? *szSeparator : '\0', '\0');
    return DiscardUntilLookUp(hWnd, list.data());
}
