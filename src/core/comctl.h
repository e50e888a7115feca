// COMCTL: the record of one comm object.
//
// The object's window owns it, from its create handler to its destroy handler; it hangs in the window's one
// extra word. Only the window's thread touches it, but for the group of TransferShare, which has its own
// rule. Other threads reach the object by sending its window a message, so the record has no lock. After a
// call that can run the host (an event, a wait) the record may be gone: ask live.h before touching it again.
//
// The initialisers below are the object's defaults.
#pragma once

#include "handle.h"
#include "slidingplane.h"
#include "transfershare.h"

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

class CLookUpItem;
class CMonitorThread;
class COverlappedWrite;
class CTarnCommCtl;
struct ReadCall;

using EventHandler = void(CALLBACK*)(HWND object, int id, int code);
using IdleHandler = void(CALLBACK*)(void);

inline constexpr int NameSize = 256; // object name, port name, with their NUL
inline constexpr int ModemOptionsSize = 200;
inline constexpr int EscapeSize = 23;
inline constexpr int CharMapSize = 256;
inline constexpr int DefaultBufferSize = 2048;
inline constexpr int DefaultLookUpTimeOut = 10000; // ms
inline constexpr int DefaultDialTimeOut = 30000;   // ms

// What the dispatcher has read and hands on byte by byte, each byte to the look-up and then to the ZModem
// start. An event in between may run a tick inside the tick, which goes on from here.
struct OfferedInput {
    std::vector<char> bytes;
    size_t lookedUp = 0;
    size_t searched = 0; // for the start
};

struct COMCTL : TransferShare {
    COMCTL();
    ~COMCTL();
    COMCTL(const COMCTL&) = delete;
    COMCTL& operator=(const COMCTL&) = delete;

    // Window, line and tick
    HWND hWnd = nullptr;
    LONG lCarrierTimeOut = 0; // ms
    HANDLE hComm = nullptr;   // null before the first open, all ones after a close
    int nLastEvent = 0;
    int bValid = 1;       // set at creation, read by nobody
    LONG lCTSTimeOut = 0; // ms
    LONG lDSRTimeOut = 0; // ms
    int bDTR = -1;
    int nHandshaking = 0;               // bit 0 XOn/XOff, bit 1 hardware, 4 the port's default
    int cbInBuffer = DefaultBufferSize; // bytes, driver's input queue
    LONG lInterval = 0;                 // ms, 0 selects the monitor thread
    LONG lInputTimeOut = 0;             // ms, limit of GetLineInput
    LONG lOutputTimeOut = 0;            // ms
    LONG lDriverInputTimeOut = 0;       // ms
    int bNullDiscard = 0;
    int cbOutBuffer = DefaultBufferSize; // bytes, driver's output queue
    int nParityReplace = -1;             // character, -1 is none
    int bPortOpen = 0;
    int nRThreshold = 0; // bytes, 0 is off
    int bRTS = -1;
    int nSThreshold = 0; // bytes, 0 is off
    int bAutoZModem = 1;
    LONG lBaud = 9600; // 0 leaves the driver's speed alone
    int nParity = 0;   // 0 none, 1 odd, 2 even, 3 mark, 4 space, -1 the driver's default
    int nDataBits = 8; // 4 to 8, -1 the driver's default
    int nStopBits = 0; // 0 one, 1 one and a half, 2 two, -1 the driver's default
    int nBusy = 0;     // idle loops running for this object
    int bReceiveFlag = 0;
    int bSendFlag = 1;
    UINT_PTR idTimer = 0;
    int bInputPolled = 0; // written by GetInBufferCount, read by nobody

    // Terminal: size, cursor, cells, window
    int nColumns = 80;
    int nRows = 25;
    int nCursorColumn = 0;
    int nCursorRow = 0;
    int nSavedColumn = 0;
    int nSavedRow = 0;
    int nSavedColor = 7;
    int nPageRows = 0;
    int nVisibleRows = 0;
    int nPageColumns = 0;
    int nVisibleColumns = 0;
    int nTopRow = 0; // negative in the scrollback
    int nLeftColumn = 0;
    int cxChar = 0; // pixels
    int cyChar = 0; // pixels
    HFONT hFont = nullptr;
    int nColor = 31; // background in the high nibble, foreground in the low
    int bReverse = 0;
    int bBlink = 0;
    int bWrapPending = 0;
    SlidingPlane<char> lpText; // the screen; none before an emulation is switched on
    SlidingPlane<BYTE> lpColor;
    int nEmulation = 0; // 0 none, 1 TTY, 2 ANSI, 3 VT52, 4 VT100
    int nAutoScroll = 4;
    int nAutoProcess = 0; // bit 0 serial input, bit 1 keyboard
    int bEcho = 0;
    int nAutoSize = 0;
    int cxWindow = 0; // pixels
    int cyWindow = 0; // pixels
    int bCaret = 0;
    int nCaptureMode = 0; // 0 standard, 1 binary, 2 visible
    HFILE hCaptureFile = HFILE_ERROR;
    SlidingPlane<char> lpScrollText; // the scrollback, its newest row last
    SlidingPlane<BYTE> lpScrollColor;
    int nScrollRows = 0;
    int nColorFilter = 0;
    char chLookUpSeparator = '\0';
    char szEscape[EscapeSize] = {};
    int nEscape = 0;

    // Terminal selection, in cells
    int nSelStartRow = 0;
    int nSelStartColumn = 0;
    int nSelEndRow = 0;
    int nSelEndColumn = 0;
    int nSelAnchorRow = 0;
    int nSelAnchorColumn = 0;

    // Host's hooks, dialing, what the window shows
    int nBackspace = 1;     // 0 destructive, 1 not
    LONG lNotification = 0; // stored only
    int bInputEcho = 0;
    int bCommEcho = 0;
    EventHandler lpfnEventHandler = nullptr;
    IdleHandler lpfnIdleLoop = nullptr;
    LONG lDialTimeOut = DefaultDialTimeOut; // ms
    int bShutDown = 0;                      // every wait loop ends
    int nDialMode = 0;                      // 0 tone, 1 pulse
    HWND hFocusWindow = nullptr;
    int bLineDraw = 0;
    int nVScrollBarKind = 1;
    int nHScrollBarKind = 0;
    HWND hVScrollBar = nullptr;
    HWND hHScrollBar = nullptr;
    HWND hEventWindow = nullptr;
    int nDirtyFirst = 0;
    int nDirtyLast = 0;
    int bRepaintPosted = 0;
    int nPictureScroll = 0; // rows that the picture still has to move up
    DWORD dwLastPaint = 0;  // ticks, when rows were painted last
    int bKeypadNumeric = 1;
    int nPendingError = 0;
    int nScrollTop = 0;
    int nScrollBottom = 0;
    int nEndOfLineMode = 0;   // 0 next line, 1 nothing, 2 wrap line, 3 wrap screen
    int nAutoZModemMatch = 0; // bytes of the start sequence seen
    int bKeyCapture = 0;
    int nLastKey = -1;
    int bOriginMode = 0;   // written, read by nobody
    int nPortSetState = 0; // written 2 by SetCommPort, read by nobody
    DWORD dwModemStat = 0;
    HMODULE hLibrary = nullptr; // freed at destruction, set by nobody
    LONG lCommLong = 0;         // the host's own
    int bDialing = 0;
    int bDialCancel = 0;
    UniqueHandle<AllOnesInvalid> hTransferThread; // of the last transfer, running or not
    EventHandle hTransferStop;                    // ends it
    int bWireTapInput = 0;
    BYTE abCharMap[CharMapSize] = {}; // the identity from creation on
    char achModemOptions[ModemOptionsSize] = {};
    char szName[NameSize] = {};
    char szPort[NameSize] = {};

    // Look-up
    std::vector<std::unique_ptr<CLookUpItem>> LookUpStrings;
    CTarnCommCtl* lpControl = nullptr; // the control that owns this object, if one does
    std::unique_ptr<char[]> lpLookUpWindow;
    int cbLookUpWindow = 0;
    int cbLookUpInput = 0;                 // bytes collected
    int cbLookUpInputLen = 0;              // limit of the collection, 0 is none
    std::unique_ptr<char[]> lpLookUpInput; // one byte longer than the limit
    int nLookUpMatch = -1;
    DWORD dwLookUpStart = 0;                    // ticks
    LONG lLookUpTimeOut = DefaultLookUpTimeOut; // ms, 0 is no limit
    int nLookUpWindowEnd = 0;                   // where in its block the window ends
    bool abLookUpLast[256] = {};                // last characters of the strings, in lower case

    // Line
    int bSoftParity = 0;
    std::unique_ptr<COverlappedWrite> lpOverlappedWrite;
    std::unique_ptr<CMonitorThread> lpMonitorThread;
    OVERLAPPED osWrite = {};              // of the last ComOutput
    std::vector<char> DirectWriteBytes;   // what it writes
    std::unique_ptr<ReadCall> lpReadCall; // kept from read to read; null while one is under way
    OfferedInput Offered;
    int bTransferAlone = 0; // hTransferThread is StartTransfer's, and its end was not told yet
};

using lpComCtl = COMCTL*;
