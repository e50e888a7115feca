// TRANSFER: the record of one running transfer, and the names that go with it. It lives on the worker's
// stack; nobody else holds a pointer to it but the status dialog, whose procedure touches lpComCtl alone.
#pragma once

#include "core/comctl.h"

#include <windows.h>

class WorkerLine;

enum XferProtocol : int {
    Protocol_XModemChecksum = 0,
    Protocol_XModemCRC = 1,
    Protocol_XModem1K = 2,
    Protocol_YModem = 3,
    Protocol_YModemG = 4,
    Protocol_ZModem = 5,
    Protocol_Kermit = 6,
};

enum XferStatus : int {
    TransferStatus_Failure = -1,
    TransferStatus_Success = 0,
    TransferStatus_WaitForFile = 1,
    TransferStatus_Prepare = 2,
    TransferStatus_Starting = 3,
    TransferStatus_Transfering = 4,
    TransferStatus_FileAbort = 5,
    TransferStatus_TransferAborting = 6, // set by nobody
    TransferStatus_EndOfFile = 7,
};

enum XferDirection : int { XferNone = 0, XferUpload = 1, XferDownload = 2 };

// "XModem" ... "Kermit", and "" for a number without a name.
const char* ProtocolName(int nProtocol);

inline constexpr LONG UnknownFileSize = 2000000000; // bytes, where a sender told none

struct TRANSFER {
    LONG lBytesDone = 0; // bytes of the current file, as shown
    int bFileFailed = 0; // a ZModem receive lost a file: the line is cancelled at the end
    int bWireTap = 0;    // the log was on at the start
    HANDLE hStop = nullptr;
    LONG lFileOffset = 0; // bytes received of the current file
    int nProtocol = 0;
    DWORD dwBaud = 0;
    int bFinishing = 0; // the protocol has ended: output goes on flowing under an abort
    HWND hDlg = nullptr;
    HWND hWnd = nullptr;
    UINT uMessage = 0; // registered, sent by nobody
    int nDialogType = 0;
    DCB dcbSaved = {};
    int nDirection = XferNone;
    LONG lFileSize = 0;         // bytes of the current file, or UnknownFileSize
    DWORD dwStartTicks = 0;     // at the start of the file
    DWORD dwMessagesServed = 0; // ticks, when the thread last looked at its messages
    COMCTL* lpComCtl = nullptr;
    WorkerLine* lpLine = nullptr;
    char szObjectName[NameSize] = {}; // for the log
};

// The object's window is gone, or about to be: the worker leaves its thread by unwinding to the entry.
struct WorkerLeaves {};
