// The cached copy of the control's properties, with their defaults: what is stored, and what survives the
// change from one comm object to another. Booleans are 0 or -1.
#pragma once

#include <windows.h>

#include <string>

inline constexpr int trueFlag = -1;
inline constexpr int noParityReplace = -1;
inline constexpr const char* ControlWindowClass = "TarnCommControl";
inline constexpr size_t PortNameSize = 100;
inline constexpr size_t ControlModemOptionsSize = 1024;

inline constexpr const char* defaultModemOptions =
    "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400\n";

struct ControlProperties {
    char m_szPort[PortNameSize] = {};
    int m_nInputMode = 0;
    int m_bEnabled = trueFlag;
    int m_bAutoZModem = 1;
    int m_bAbortTransfer = 0;
    int m_bAutoScrollRow = 1;
    int m_bAutoScrollColumn = 0;
    int m_bAutoScrollKeyboard = 1;
    std::wstring m_sCaptureFilename;
    std::wstring m_sXferPath;
    int m_bWireTapInput = 0;
    int m_bWireTapOutput = 0;
    int m_bWireTapTransfer = 0;
    int m_bWireTapEvents = 0;
    int m_bWireTapWarnings = 0;
    int m_bWireTapProperties = 0;
    int m_bWireTap = 0;
    int m_bUseTAPI = 1;
    int m_nBorderStyle = 1;
    std::wstring m_sPortStatus;
    int m_bIgnoreOnComm = 0;
    LONG m_cbInputLen = 0;
    std::string m_sLookUpInput; // bytes of the line
    std::wstring m_sProjectFilename;
    std::wstring m_sPhoneNumber;
    LONG m_cbLookUpInputLen = 0;
    char m_chLookUpSeparator = '|';
    std::wstring m_sLookUpText;
    LONG m_nModemIndex = 0;
    LONG m_nAutoProcess = 3; // drifts from the comm object's, see put_AutoReceive
    LONG m_nAutoScroll = 2;
    int m_nAutoSize = 0;
    int m_nBackSpace = 0;
    int m_nCaptureMode = 0;
    LONG m_lCDTimeOut = 0; // ms, as all times
    int m_nColorFilter = 0;
    int m_nColor = 31; // background in the high nibble
    LONG m_nColumns = 80;
    int m_bCommEcho = 0;
    LONG m_lCTSTimeOut = 0;
    int m_nDialMode = 0;
    LONG m_lDialTimeOut = 60000;
    LONG m_lDSRTimeOut = 0;
    int m_bEcho = 0;
    int m_nEmulation = 4;
    int m_nEndOfLineMode = 0;
    int m_nHandshaking = 4;
    LONG m_cbInBufferSize = 16384;
    int m_bInputEcho = 1;
    LONG m_lInTimeOut = 0;
    LONG m_lOutTimeOut = 0;
    LONG m_lLookUpTimeOut = 10000;
    char m_szModemOptions[ControlModemOptionsSize] = {};
    int m_bNullDiscard = 0;
    LONG m_cbOutBufferSize = 16384;
    std::wstring m_sParityReplace;
    LONG m_nRows = 25;
    LONG m_nRThreshold = 0;
    int m_bRTSEnable = 1;
    LONG m_nScrollRows = 0;
    std::wstring m_sSettings; // the last value given; none leaves the comm object's own
    LONG m_nSThreshold = 0;
    int m_nXferProtocol = 5;
    int m_nXferStatusDialog = 2;
    int m_nDialStatusDialog = 2;
    int m_bToolbarVisible = 1;
    int m_bStatusbarVisible = 1;
};
