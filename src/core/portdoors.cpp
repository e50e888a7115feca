// The flat functions of the port: its name, opening and closing, settings, counts, queues, errors.
#include "deadline.h"
#include "live.h"
#include "port.h"
#include "portstate.h"
#include "portstatus.h"
#include "returnedinput.h"
#include "settings.h"
#include "TarnComm.h"
#include "ticksource.h"
#include "wall.h"

#include <cstdio>
#include <cstring>
#include <utility>

namespace {

constexpr size_t errorTextSize = 128; // bytes of the caller's buffer, with the NUL
constexpr int nameChanged = 2;

void CopyErrorText(char* szError, const std::string& text) {
    if (szError)
        std::snprintf(szError, errorTextSize, "%s", text.c_str());
}

void PurgeOpenPort(HWND hWnd, DWORD queue) {
    const COMCTL* record = RecordOf(hWnd);
    if (record && record->bPortOpen)
        PurgeComm(record->hComm, queue);
}

} // namespace

void TARNAPI SetCommPort(HWND hWnd, const char* szPort) {
    COMCTL* record = RecordOf(hWnd);
    if (!record || !szPort)
        return;
    record->nPortSetState = nameChanged;
    if (!record->bPortOpen)
        std::snprintf(record->szPort, sizeof record->szPort, "%s", szPort);
}

void TARNAPI SetPort(HWND hWnd, const char* szPort) {
    SetCommPort(hWnd, szPort);
}

const char* TARNAPI GetCommPort(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    return record ? record->szPort : "";
}

const char* TARNAPI GetPort(HWND hWnd) {
    return GetCommPort(hWnd);
}

int TARNAPI SetPortOpen(HWND hWnd, int bOpen, char* szError) {
    return BehindWall("SetPortOpen", [&]() -> int {
        CopyErrorText(szError, "");
        COMCTL* record = RecordOf(hWnd);
        if (!record)
            return 0;
        if ((bOpen != 0) == (record->bPortOpen != 0))
            return 1;
        if (!bOpen) {
            ClosePort(*record);
            return 1;
        }
        std::string error;
        if (!OpenPort(*record, error)) {
            CopyErrorText(szError, error);
            return 0;
        }
        SetUpTick(*record);
        return 1;
    });
}

void TARNAPI SetCommID(HWND hWnd, HANDLE hComm) {
    BehindWall("SetCommID", [&] {
        if (COMCTL* record = RecordOf(hWnd))
            AttachDevice(*record, hComm);
    });
}

int TARNAPI SetSettings(HWND hWnd, const char* szSettings) {
    return BehindWall("SetSettings", [&]() -> int {
        COMCTL* record = RecordOf(hWnd);
        if (!record || !szSettings)
            return 0;
        LineSettings settings;
        if (!ParseSettings(szSettings, settings))
            return SettingsError;
        record->lBaud = settings.speed;
        record->nParity = settings.parity;
        record->nDataBits = settings.dataBits;
        record->nStopBits = settings.stopBits;
        RebuildDeviceState(*record, Speed::Apply);
        return 0;
    });
}

int TARNAPI GetSettings(HWND hWnd, char* szBuffer) {
    return BehindWall("GetSettings", [&]() -> int {
        const COMCTL* record = RecordOf(hWnd);
        if (!record) {
            if (szBuffer)
                *szBuffer = '\0';
            return 0;
        }
        const std::string text =
            FormatSettings({record->lBaud, record->nParity, record->nDataBits, record->nStopBits});
        if (szBuffer)
            std::memcpy(szBuffer, text.c_str(), text.size() + 1);
        return static_cast<int>(text.size());
    });
}

int TARNAPI GetInBufferCount(HWND hWnd) {
    COMCTL* record = RecordOf(hWnd);
    if (!record || !record->bPortOpen)
        return 0;
    record->bInputPolled = 1;
    return ReadLineStatus(*record).input;
}

int TARNAPI GetOutBufferCount(HWND hWnd) {
    COMCTL* record = RecordOf(hWnd);
    return record && record->bPortOpen ? ReadLineStatus(*record).output : 0;
}

void TARNAPI ClearInputBuffer(HWND hWnd) {
    PurgeOpenPort(hWnd, PURGE_RXCLEAR);
    if (COMCTL* record = RecordOf(hWnd))
        DropReturnedInput(*record);
}

// The device's queue only: what waits in the writer's ring still goes out.
void TARNAPI ClearOutputBuffer(HWND hWnd) {
    PurgeOpenPort(hWnd, PURGE_TXCLEAR);
}

int TARNAPI GetLastCommError(HWND hWnd) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return 0;
    const ObjectWatch watch(*record);
    if (!record->nPendingError)
        ReadLineStatus(*record);
    if (watch.Gone())
        return 0;
    return std::exchange(record->nPendingError, 0);
}

void TARNAPI GetTranslationTable(HWND hWnd, void* lpTable) {
    const COMCTL* record = RecordOf(hWnd);
    if (record && lpTable)
        std::memcpy(lpTable, record->abCharMap, sizeof record->abCharMap);
}

void TARNAPI SetTranslationTable(HWND hWnd, const void* lpTable) {
    COMCTL* record = RecordOf(hWnd);
    if (record && lpTable)
        std::memcpy(record->abCharMap, lpTable, sizeof record->abCharMap);
}
