// The record's defaults, and the functions that only store and read a field.
#include "core/comctl.h"
#include "core/live.h"
#include "support/host.h"

#include <gtest/gtest.h>

namespace {

TEST(Defaults, OfANewObject) {
    const host::CommObject object;
    SetEventHandler(object, nullptr);
    const COMCTL& r = *RecordOf(object);
    struct Row {
        const char* field;
        long long value;
        long long expected;
    };
    const auto word = [](const auto pointer) {
        return static_cast<long long>(reinterpret_cast<LONG_PTR>(pointer));
    };
    const long long window = word(object.Handle());
    const Row rows[] = {
        {"hWnd", word(r.hWnd), window},
        {"lCarrierTimeOut", r.lCarrierTimeOut, 0},
        {"hComm", word(r.hComm), 0},
        {"nLastEvent", r.nLastEvent, 0},
        {"bValid", r.bValid, 1},
        {"lCTSTimeOut", r.lCTSTimeOut, 0},
        {"lDSRTimeOut", r.lDSRTimeOut, 0},
        {"bDTR", r.bDTR, -1},
        {"nHandshaking", r.nHandshaking, 0},
        {"cbInBuffer", r.cbInBuffer, 2048},
        {"lInterval", r.lInterval, 0},
        {"lInputTimeOut", r.lInputTimeOut, 0},
        {"lOutputTimeOut", r.lOutputTimeOut, 0},
        {"lDriverInputTimeOut", r.lDriverInputTimeOut, 0},
        {"bNullDiscard", r.bNullDiscard, 0},
        {"cbOutBuffer", r.cbOutBuffer, 2048},
        {"nParityReplace", r.nParityReplace, -1},
        {"bPortOpen", r.bPortOpen, 0},
        {"nRThreshold", r.nRThreshold, 0},
        {"bRTS", r.bRTS, -1},
        {"nSThreshold", r.nSThreshold, 0},
        {"bAutoZModem", r.bAutoZModem, 1},
        {"lBaud", r.lBaud, 9600},
        {"nParity", r.nParity, 0},
        {"nDataBits", r.nDataBits, 8},
        {"nStopBits", r.nStopBits, 0},
        {"nBusy", r.nBusy, 0},
        {"bReceiveFlag", r.bReceiveFlag, 0},
        {"bSendFlag", r.bSendFlag, 1},
        {"idTimer", static_cast<long long>(r.idTimer), 0},
        {"bInputPolled", r.bInputPolled, 0},
        {"nColumns", r.nColumns, 80},
        {"nRows", r.nRows, 25},
        {"nCursorColumn", r.nCursorColumn, 0},
        {"nCursorRow", r.nCursorRow, 0},
        {"nSavedColumn", r.nSavedColumn, 0},
        {"nSavedRow", r.nSavedRow, 0},
        {"nSavedColor", r.nSavedColor, 7},
        {"nPageRows", r.nPageRows, 0},
        {"nVisibleRows", r.nVisibleRows, 0},
        {"nPageColumns", r.nPageColumns, 0},
        {"nVisibleColumns", r.nVisibleColumns, 0},
        {"nTopRow", r.nTopRow, 0},
        {"nLeftColumn", r.nLeftColumn, 0},
        {"hFont", word(r.hFont), word(GetStockObject(SYSTEM_FONT))},
        {"nColor", r.nColor, 31},
        {"bReverse", r.bReverse, 0},
        {"bBlink", r.bBlink, 0},
        {"bWrapPending", r.bWrapPending, 0},
        {"nEmulation", r.nEmulation, 0},
        {"nAutoScroll", r.nAutoScroll, 4},
        {"nAutoProcess", r.nAutoProcess, 0},
        {"bEcho", r.bEcho, 0},
        {"nAutoSize", r.nAutoSize, 0},
        {"cxWindow", r.cxWindow, 0},
        {"cyWindow", r.cyWindow, 0},
        {"bCaret", r.bCaret, 0},
        {"nCaptureMode", r.nCaptureMode, 0},
        {"hCaptureFile", r.hCaptureFile, -1},
        {"lpScrollText", word(r.lpScrollText.Data()), 0},
        {"lpScrollColor", word(r.lpScrollColor.Data()), 0},
        {"nScrollRows", r.nScrollRows, 0},
        {"nColorFilter", r.nColorFilter, 0},
        {"chLookUpSeparator", r.chLookUpSeparator, 0},
        {"szEscape", r.szEscape[0], 0},
        {"nEscape", r.nEscape, 0},
        {"lTransferFileSize", r.lTransferFileSize, 0},
        {"lBytesTransferred", r.lBytesTransferred, 0},
        {"cFiles", r.cFiles, 0},
        {"lpFileList", static_cast<long long>(r.lpFileList.size()), 0},
        {"nTransferType", r.nTransferType, 0},
        {"nProtocol", r.nProtocol, 0},
        {"nTransferDialogType", r.nTransferDialogType, 0},
        {"nSelStartRow", r.nSelStartRow, 0},
        {"nSelStartColumn", r.nSelStartColumn, 0},
        {"nSelEndRow", r.nSelEndRow, 0},
        {"nSelEndColumn", r.nSelEndColumn, 0},
        {"nSelAnchorRow", r.nSelAnchorRow, 0},
        {"nSelAnchorColumn", r.nSelAnchorColumn, 0},
        {"nTransferStatus", r.nTransferStatus, 0},
        {"bAbortTransfer", r.bAbortTransfer, 0},
        {"nBackspace", r.nBackspace, 1},
        {"lNotification", r.lNotification, 0},
        {"bInputEcho", r.bInputEcho, 0},
        {"bCommEcho", r.bCommEcho, 0},
        {"lpfnEventHandler", r.lpfnEventHandler != nullptr, 0},
        {"lpfnIdleLoop", r.lpfnIdleLoop != nullptr, 0},
        {"hDialogParent", word(r.hDialogParent.load()), 0},
        {"lDialTimeOut", r.lDialTimeOut, 30000},
        {"bShutDown", r.bShutDown, 0},
        {"nDialMode", r.nDialMode, 0},
        {"hFocusWindow", word(r.hFocusWindow), 0},
        {"bLineDraw", r.bLineDraw, 0},
        {"nVScrollBarKind", r.nVScrollBarKind, 1},
        {"nHScrollBarKind", r.nHScrollBarKind, 0},
        {"hVScrollBar", word(r.hVScrollBar), window},
        {"hHScrollBar", word(r.hHScrollBar), window},
        {"hEventWindow", word(r.hEventWindow), 0},
        {"nDirtyFirst", r.nDirtyFirst, 0},
        {"nDirtyLast", r.nDirtyLast, 25},
        {"bRepaintPosted", r.bRepaintPosted, 0},
        {"bKeypadNumeric", r.bKeypadNumeric, 1},
        {"nPendingError", r.nPendingError, 0},
        {"nScrollTop", r.nScrollTop, 0},
        {"nScrollBottom", r.nScrollBottom, 0},
        {"nEndOfLineMode", r.nEndOfLineMode, 0},
        {"nAutoZModemMatch", r.nAutoZModemMatch, 0},
        {"bKeyCapture", r.bKeyCapture, 0},
        {"nLastKey", r.nLastKey, -1},
        {"bOriginMode", r.bOriginMode, 0},
        {"nPortSetState", r.nPortSetState, 0},
        {"dwModemStat", r.dwModemStat, 0},
        {"hLibrary", word(r.hLibrary), 0},
        {"lCommLong", r.lCommLong, 0},
        {"bDialing", r.bDialing, 0},
        {"bDialCancel", r.bDialCancel, 0},
        {"hTransferThread", word(r.hTransferThread.get()), -1},
        {"hTransferStop", word(r.hTransferStop.get()), 0},
        {"bWireTapInput", r.bWireTapInput, 0},
        {"bWireTapOutput", r.bWireTapOutput, 0},
        {"bWireTapTransfer", r.bWireTapTransfer, 0},
        {"szSourceFilename", r.szSourceFilename[0], 0},
        {"szDestFilename", r.szDestFilename[0], 0},
        {"szTransferStatus", r.szTransferStatus[0], 0},
        {"achModemOptions", r.achModemOptions[0], 0},
        {"szXferPath", r.szXferPath[0], 0},
        {"szPort", r.szPort[0], 0},
        {"LookUpStrings", static_cast<long long>(r.LookUpStrings.size()), 0},
        {"lpControl", word(r.lpControl), 0},
        {"lpLookUpWindow", word(r.lpLookUpWindow.get()), 0},
        {"cbLookUpWindow", r.cbLookUpWindow, 0},
        {"cbLookUpInput", r.cbLookUpInput, 0},
        {"cbLookUpInputLen", r.cbLookUpInputLen, 0},
        {"lpLookUpInput", word(r.lpLookUpInput.get()), 0},
        {"nLookUpMatch", r.nLookUpMatch, -1},
        {"dwLookUpStart", r.dwLookUpStart, 0},
        {"lLookUpTimeOut", r.lLookUpTimeOut, 10000},
        {"bSoftParity", r.bSoftParity, 0},
        {"lpMonitorThread", word(r.lpMonitorThread.get()), 0},
        {"nResumeMethod", r.nResumeMethod, 0},
        {"osWrite", word(r.osWrite.hEvent), 0},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.value, row.expected) << row.field;
    EXPECT_NE(r.lpOverlappedWrite, nullptr);
    EXPECT_GT(r.cxChar, 0) << "the font was measured";
    EXPECT_GT(r.cyChar, 0);
    for (int i = 0; i < CharMapSize; ++i)
        EXPECT_EQ(r.abCharMap[i], i);
    EXPECT_EQ(sizeof r.szEscape, 23u);
    EXPECT_EQ(sizeof r.szSourceFilename, 513u);
    EXPECT_EQ(sizeof r.szPort, 256u);
    EXPECT_EQ(sizeof r.achModemOptions, 200u);
}

struct PairRow {
    const char* name;
    int (*write)(HWND, int);
};

template <auto Set, auto Get>
int WriteAndRead(HWND object, int value) {
    Set(object, value);
    return static_cast<int>(Get(object));
}

#define PAIR(Name)                                                                                           \
    { #Name, WriteAndRead < Set##Name, Get##Name> }
const PairRow pairs[] = {
    PAIR(AutoZModem),    PAIR(Backspace),          PAIR(CommEcho),
    PAIR(CommLong),      PAIR(DialMode),           PAIR(DialTimeOut),
    PAIR(Echo),          PAIR(EndOfLineMode),      PAIR(InputEcho),
    PAIR(InputTimeOut),  PAIR(Notification),       PAIR(NullDiscard),
    PAIR(OutputTimeOut), PAIR(Protocol),           PAIR(ResumeMethod),
    PAIR(ShutDown),      PAIR(TransferDialogType), PAIR(CarrierTimeOut),
    PAIR(CTSTimeOut),    PAIR(DSRTimeOut),         PAIR(DiscardNulls),
    PAIR(Handshaking),   PAIR(ParityReplace),      PAIR(DTR),
    PAIR(RTS),           PAIR(AutoProcess),        PAIR(Interval),
    PAIR(CaptureMode),   PAIR(RThreshold),         PAIR(SThreshold),
    PAIR(InBufferSize),  PAIR(OutBufferSize),
};
#undef PAIR

TEST(FieldPair, GetterReadsWhatTheSetterStored) {
    for (const PairRow& row : pairs) {
        const host::CommObject object;
        EXPECT_EQ(row.write(object, 3), 3) << row.name;
        EXPECT_EQ(row.write(object, 0), 0) << row.name;
        EXPECT_EQ(row.write(object, 70000), 70000) << row.name;
    }
}

TEST(FieldPair, DialogParentIsAWindow) {
    const host::CommObject object;
    SetDialogParent(object, GetDesktopWindow());
    EXPECT_EQ(GetDialogParent(object), GetDesktopWindow());
}

TEST(FieldPair, TwoObjectsKeepTheirOwn) {
    const host::CommObject first, second;
    SetCommLong(first, 11);
    SetCommLong(second, 22);
    EXPECT_EQ(GetCommLong(first), 11);
    EXPECT_EQ(GetCommLong(second), 22);
}

TEST(FieldPair, DriverInputTimeOutSettersStayCrossed) {
    const host::CommObject object;
    SetDriverInputTimeOut(object, 111);
    EXPECT_EQ(GetInputTimeOut(object), 111);
    EXPECT_EQ(GetDriverInputTimeOut(object), 0);
    SetInputDriverTimeOut(object, 222);
    EXPECT_EQ(GetDriverInputTimeOut(object), 222);
    EXPECT_EQ(GetInputTimeOut(object), 111);
}

TEST(FieldPair, BothNullDiscardNamesShareOneField) {
    const host::CommObject object;
    SetNullDiscard(object, 5);
    EXPECT_EQ(GetDiscardNulls(object), 5);
    SetDiscardNulls(object, 0);
    EXPECT_EQ(GetNullDiscard(object), 0);
}

TEST(FieldPair, NegativeParityReplaceBecomesNone) {
    const host::CommObject object;
    SetParityReplace(object, 63);
    EXPECT_EQ(GetParityReplace(object), 63);
    SetParityReplace(object, -77);
    EXPECT_EQ(GetParityReplace(object), -1);
}

TEST(FieldPair, NegativeThresholdsAreRefused) {
    const host::CommObject object;
    SetSThreshold(object, 4);
    SetSThreshold(object, -1);
    EXPECT_EQ(GetSThreshold(object), 4);
    SetRThreshold(object, 5);
    SetRThreshold(object, -1);
    EXPECT_EQ(GetRThreshold(object), 5);
}

TEST(FieldPair, TranslationTableIsCopiedInAndOut) {
    const host::CommObject object;
    BYTE table[TARN_TRANSLATION_SIZE] = {};
    GetTranslationTable(object, table);
    EXPECT_EQ(table[200], 200);
    table[200] = 'u';
    SetTranslationTable(object, table);
    BYTE back[TARN_TRANSLATION_SIZE] = {};
    GetTranslationTable(object, back);
    EXPECT_EQ(back[200], 'u');
    EXPECT_EQ(back[201], 201);
}

} // namespace
