/* Tarn Link Objects: serial communications for Windows programs.
 *
 * Every function takes the window handle of a comm object: one port, one terminal screen, one transfer at a
 * time, one set of look-up strings. Make one with CreateCommObject, give it a port and settings, open it:
 *
 *     HWND line = CreateCommObject(NULL);
 *     char error[TARN_ERROR_TEXT_SIZE];
 *     SetCommPort(line, "COM1");
 *     SetSettings(line, "9600,n,8,1");
 *     if (!SetPortOpen(line, 1, error))
 *         puts(error);
 *
 * Errors. A null handle, a handle of something else and the handle of an object that was destroyed are met
 * with silence: the function does nothing and returns 0, NULL or an empty string. A getter therefore can't
 * be told from the getter of a field that is 0. No function raises an exception or changes memory that it
 * was not given; a null pointer where text or a buffer is expected counts as "nothing to do".
 *
 * Threads. An object belongs to the thread that made it, and so do all calls on it. That thread must run a
 * message loop or call one of the waiting functions, since all that the object does by itself arrives there
 * as messages. From other threads only the log functions and calls on dead handles are safe. Objects of
 * different threads don't disturb each other.
 *
 * Events. They reach the host on the object's own thread, inside the call that found their cause: to the
 * handler of SetEventHandler, else as WM_COMMAND to the window of SetEventWindow or to the parent (wParam the
 * control's identifier, low word of lParam the low 16 bits of the object's handle, high word the code), else
 * to the control that owns the object. A host may close the port or destroy the object inside an event.
 *
 * Waits. Functions that wait (ComPause, WaitForInput, FlushInputBuffer, FlushOutputBuffer, GetLineInput,
 * InputUntilLookUp, DiscardUntilLookUp, WaitUntilTransferIsFinished, those that talk to a modem, and those
 * for BASIC that do the same) run the thread's messages meanwhile, so events come during them. GetBusy tells
 * that a wait runs; GetInput, InputUntilLookUp and DestroyCommObject refuse to work then.
 *
 * Units. Times are milliseconds, sizes bytes. Booleans are 32-bit integers, everything but 0 is true. Text is
 * 8-bit and ends with a NUL. A size that is given with a buffer is the buffer's whole size.
 */
#ifndef TARNCOMM_H
#define TARNCOMM_H

#include <windows.h>

/* The platform's printing header makes a macro of this name. */
#undef SetPort

#define TARNAPI __stdcall

#ifdef TARNCOMM_STATIC
#define TARN_IMPORT
#else
#define TARN_IMPORT __declspec(dllimport)
#endif

#if defined(__GNUC__)
#define TARN_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define TARN_PRINTF(text, first)
#endif

#define TARN_ERROR_TEXT_SIZE 128   /* bytes of the buffer that SetPortOpen fills */
#define TARN_SETTINGS_TEXT_SIZE 32 /* bytes of the buffer that GetSettings fills */
#define TARN_TRANSLATION_SIZE 256  /* bytes of a translation table */
#define TARN_BAD_SETTINGS 380      /* SetSettings could not read its text */

/* Event codes. */
#define TARN_EVENT_SEND 1             /* the output count is at or under the send threshold */
#define TARN_EVENT_RECEIVE 2          /* the input count is at or over the receive threshold */
#define TARN_EVENT_CTS 3              /* clear to send changed */
#define TARN_EVENT_DSR 4              /* data set ready changed */
#define TARN_EVENT_CARRIER 5          /* carrier changed */
#define TARN_EVENT_RING 6             /* the ring indicator turned on */
#define TARN_EVENT_LOOKUP 8           /* a look-up string came in, or the look-up ended without one */
#define TARN_EVENT_TRANSFER 100       /* a step of a transfer: see GetTransferStatus */
#define TARN_ERROR_BREAK 1001         /* a break came in */
#define TARN_ERROR_FRAME 1004         /* a byte without a stop bit */
#define TARN_ERROR_OVERRUN 1006       /* the receiver lost a byte */
#define TARN_ERROR_RECEIVE_FULL 1008  /* the driver's input queue is full */
#define TARN_ERROR_PARITY 1009        /* a byte with the wrong parity */
#define TARN_ERROR_TRANSMIT_FULL 1010 /* the driver's output queue is full */

/* Handshaking, for SetHandshaking. */
#define TARN_HANDSHAKING_NONE 0
#define TARN_HANDSHAKING_XONXOFF 1
#define TARN_HANDSHAKING_HARDWARE 2
#define TARN_HANDSHAKING_BOTH 3
#define TARN_HANDSHAKING_DEFAULT 4 /* neither kind: what the port has by itself */

/* Automatic processing, for SetAutoProcess. */
#define TARN_PROCESS_NONE 0
#define TARN_PROCESS_SERIAL 1 /* input goes to the screen, the look-up and the ZModem start detection */
#define TARN_PROCESS_KEYBOARD 2
#define TARN_PROCESS_BOTH 3

/* SetEmulation */
#define TARN_EMULATION_NONE 0
#define TARN_EMULATION_TTY 1
#define TARN_EMULATION_ANSI 2
#define TARN_EMULATION_VT52 3
#define TARN_EMULATION_VT100 4

/* Colours, foreground or 16 times as much for the background */
#define TARN_COLOR_BLACK 0
#define TARN_COLOR_BLUE 1
#define TARN_COLOR_GREEN 2
#define TARN_COLOR_CYAN 3
#define TARN_COLOR_RED 4
#define TARN_COLOR_MAGENTA 5
#define TARN_COLOR_BROWN 6
#define TARN_COLOR_LIGHT_GRAY 7
#define TARN_COLOR_DARK_GRAY 8
#define TARN_COLOR_LIGHT_BLUE 9
#define TARN_COLOR_LIGHT_GREEN 10
#define TARN_COLOR_LIGHT_CYAN 11
#define TARN_COLOR_LIGHT_RED 12
#define TARN_COLOR_LIGHT_MAGENTA 13
#define TARN_COLOR_YELLOW 14
#define TARN_COLOR_WHITE 15

/* SetColorFilter */
#define TARN_COLOR_FILTER_FULL 0
#define TARN_COLOR_FILTER_GRAY 1
#define TARN_COLOR_FILTER_BW 2

/* SetEndOfLineMode */
#define TARN_END_OF_LINE_NEXT_LINE 0
#define TARN_END_OF_LINE_DO_NOTHING 1
#define TARN_END_OF_LINE_WRAP_LINE 2
#define TARN_END_OF_LINE_WRAP_SCREEN 3

/* SetAutoScroll */
#define TARN_AUTO_SCROLL_NONE 0
#define TARN_AUTO_SCROLL_ROW 1
#define TARN_AUTO_SCROLL_COLUMN 2
#define TARN_AUTO_SCROLL_BOTH 3
#define TARN_AUTO_SCROLL_KEYBOARD 4 /* rows always, columns when a key is pressed; the default */

/* SetAutoSize */
#define TARN_AUTO_SIZE_NONE 0
#define TARN_AUTO_SIZE_TERMINAL 1
#define TARN_AUTO_SIZE_PARENT 2

/* SetCaptureMode */
#define TARN_CAPTURE_STANDARD 0 /* text without its codes */
#define TARN_CAPTURE_BINARY 1   /* everything as it came */
#define TARN_CAPTURE_VISIBLE 2  /* rows, as they leave the screen */

#ifdef __cplusplus
struct COMCTL;
extern "C" {
#else
typedef struct COMCTL COMCTL;
#endif

/* What SetEventHandler and SetIdleLoop take. object: the comm object; id: its control identifier; code: an
 * event code. */
typedef void(TARNAPI* TarnEventHandler)(HWND object, int id, int code);
typedef void(TARNAPI* TarnIdleHandler)(void);

/* ---- Life ---------------------------------------------------------------------------------------------- */

/* Registers the window class and starts the report file; the module does it by itself when it is loaded.
 * Returns 0 if the class can't be registered. */
TARN_IMPORT int TARNAPI InitTarnCommObjects(void);

/* Makes a comm object: a child of hParent, or a window of its own if that is NULL. It is named "Comm1",
 * "Comm2" and so on in the log. Returns NULL if memory or window handles are out. */
TARN_IMPORT HWND TARNAPI CreateCommObject(HWND hParent);

/* The same, always as a child, with a window title. */
TARN_IMPORT HWND TARNAPI CreateCommObjectName(HWND hParent, const char* szName);

/* Closes the port and destroys the object. Returns 0 if it is dead already or one of its waits runs. Does not
 * send what still waits for the line: see FlushOutputBuffer. */
TARN_IMPORT int TARNAPI DestroyCommObject(HWND hWnd);

/* ---- Port ---------------------------------------------------------------------------------------------- */

/* The name of the device, such as "COM1", 255 characters at the most. Ignored while the port is open.
 * SetPort and GetPort are other names of the same functions. GetCommPort returns the object's own text,
 * which lives as long as the object. */
TARN_IMPORT void TARNAPI SetCommPort(HWND hWnd, const char* szPort);
TARN_IMPORT const char* TARNAPI GetCommPort(HWND hWnd);
TARN_IMPORT void TARNAPI SetPort(HWND hWnd, const char* szPort);
TARN_IMPORT const char* TARNAPI GetPort(HWND hWnd);

/* Opens (bOpen not 0) or closes the port. szError may be NULL; otherwise it is a buffer of
 * TARN_ERROR_TEXT_SIZE bytes that is emptied and takes the reason of a failure: "Port not found", "Port
 * unavailable" or the system's own text. Returns 1 on success, also if the port was in that state already.
 * Closing throws away what waits in the device; what still waits in the object goes out after the next
 * opening. It takes 3 seconds at the most, whatever the device does. A port is also unavailable while a
 * transfer is held up inside the driver of the one before. */
TARN_IMPORT int TARNAPI SetPortOpen(HWND hWnd, int bOpen, char* szError);
TARN_IMPORT int TARNAPI GetPortOpen(HWND hWnd);

/* Attaches a device handle that was opened elsewhere, for overlapped use; the object closes it. NULL and
 * INVALID_HANDLE_VALUE close the present one. Another handle takes its place without closing it, not even one
 * that SetPortOpen opened: close that first, or keep what GetCommID gave. Nothing changes while a transfer is
 * held up inside the driver for more than 2 seconds. GetCommID returns NULL before the first opening and
 * INVALID_HANDLE_VALUE after a close. */
TARN_IMPORT void TARNAPI SetCommID(HWND hWnd, HANDLE hComm);
TARN_IMPORT HANDLE TARNAPI GetCommID(HWND hWnd);

/* Speed, parity, data bits and stop bits, like "9600,n,8,1": speed in bits per second (0 or none leaves the
 * driver's), parity n, o, e, m or s, data bits 4 to 8, stop bits 1, 1.5 or 2. Commas may be left out, case
 * does not matter, an absent field means the driver's default, and only the first 19 characters count.
 * Returns 0, or TARN_BAD_SETTINGS with nothing changed. What the device refuses is not reported. */
TARN_IMPORT int TARNAPI SetSettings(HWND hWnd, const char* szSettings);

/* Writes the settings in the same form (speed 0 as empty text) into a buffer of TARN_SETTINGS_TEXT_SIZE bytes
 * and returns the length of the text. GetSettingsBaud returns the speed alone, in bits per second. */
TARN_IMPORT int TARNAPI GetSettings(HWND hWnd, char* szBuffer);
TARN_IMPORT LONG TARNAPI GetSettingsBaud(HWND hWnd);

/* Modal dialog for the settings, from dialog template 101 of this module. There is none: returns -1. */
TARN_IMPORT int TARNAPI PortSettingsDialog(HWND hWnd, HWND hParent);
TARN_IMPORT INT_PTR TARNAPI PortSettingsDialogProc(HWND hDialog, UINT message, WPARAM wParam, LPARAM lParam);

/* Signals: data terminal ready, request to send, break, clear to send, data set ready, carrier; 0 is off and
 * everything else on. The setters store what is wanted and apply it to an open port. GetDTR and GetRTS return
 * what was stored; GetCTS, GetDSR and GetCarrier ask the line, and are 0 while the port is closed. SetBreak
 * starts and ends a break; GetBreak tells whether the device reports incoming breaks, not whether one is
 * being sent. */
TARN_IMPORT void TARNAPI SetDTR(HWND hWnd, int bDTR);
TARN_IMPORT int TARNAPI GetDTR(HWND hWnd);
TARN_IMPORT void TARNAPI SetRTS(HWND hWnd, int bRTS);
TARN_IMPORT int TARNAPI GetRTS(HWND hWnd);
TARN_IMPORT void TARNAPI SetBreak(HWND hWnd, int bBreak);
TARN_IMPORT int TARNAPI GetBreak(HWND hWnd);
TARN_IMPORT int TARNAPI GetCTS(HWND hWnd);
TARN_IMPORT int TARNAPI GetDSR(HWND hWnd);
TARN_IMPORT int TARNAPI GetCarrier(HWND hWnd);

/* The code of the error event that is being delivered; 0 outside its handler. Asks the device for new errors
 * if there is none. */
TARN_IMPORT int TARNAPI GetLastCommError(HWND hWnd);

/* The code of the last event, whatever its kind. */
TARN_IMPORT int TARNAPI GetLastCommEvent(HWND hWnd);

/* Sizes of the driver's queues, set while the port is closed; ignored otherwise. A quarter of the input
 * queue, 8192 at the most, is also the limit at which XOn and XOff are sent. */
TARN_IMPORT void TARNAPI SetInBufferSize(HWND hWnd, int cbInBuffer);
TARN_IMPORT int TARNAPI GetInBufferSize(HWND hWnd);
TARN_IMPORT void TARNAPI SetOutBufferSize(HWND hWnd, int cbOutBuffer);
TARN_IMPORT int TARNAPI GetOutBufferSize(HWND hWnd);

/* TARN_HANDSHAKING_...; applied at once to an open port. */
TARN_IMPORT void TARNAPI SetHandshaking(HWND hWnd, int nHandshaking);
TARN_IMPORT int TARNAPI GetHandshaking(HWND hWnd);

/* The character that the driver puts for a byte with wrong parity, -1 (or anything negative) for none. */
TARN_IMPORT void TARNAPI SetParityReplace(HWND hWnd, int nParityReplace);
TARN_IMPORT int TARNAPI GetParityReplace(HWND hWnd);

/* Whether the driver drops NUL bytes. SetDiscardNulls applies it at once, SetNullDiscard at the next change
 * of the device's state. */
TARN_IMPORT void TARNAPI SetDiscardNulls(HWND hWnd, int bDiscard);
TARN_IMPORT int TARNAPI GetDiscardNulls(HWND hWnd);
TARN_IMPORT void TARNAPI SetNullDiscard(HWND hWnd, int bDiscard);
TARN_IMPORT int TARNAPI GetNullDiscard(HWND hWnd);

/* Kept for the host; the device's state is written anew at each change. */
TARN_IMPORT void TARNAPI SetCarrierTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetCarrierTimeOut(HWND hWnd);
TARN_IMPORT void TARNAPI SetCTSTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetCTSTimeOut(HWND hWnd);
TARN_IMPORT void TARNAPI SetDSRTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetDSRTimeOut(HWND hWnd);

/* SetInputDriverTimeOut sets what GetDriverInputTimeOut returns. SetDriverInputTimeOut sets what
 * GetInputTimeOut returns, the limit of GetLineInput. */
TARN_IMPORT void TARNAPI SetInputDriverTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetDriverInputTimeOut(HWND hWnd);
TARN_IMPORT void TARNAPI SetDriverInputTimeOut(HWND hWnd, LONG lTimeOut);

/* ---- Data ---------------------------------------------------------------------------------------------- */

/* Queues a block for the line and returns at once: 1 if the whole block was taken, 0 if nothing was (closed
 * port, or fewer free bytes in the 16384-byte queue than the block needs). With SetEcho the block is shown on
 * the terminal first, whatever becomes of it. */
TARN_IMPORT int TARNAPI Output(HWND hWnd, const void* lpBytes, int cbBytes);

/* Writes to the device beside the queue. Waits for the write before to end. Returns the bytes that were
 * written at once, 0 for a write that is still under way or failed; the reason of a failure is in the log. */
TARN_IMPORT DWORD TARNAPI ComOutput(HWND hWnd, const void* lpBytes, DWORD cbBytes);

/* Reads what is there, without waiting. Returns the count of bytes; 0 also while a wait runs (GetBusy) and
 * during a transfer. */
TARN_IMPORT int TARNAPI GetInput(HWND hWnd, void* lpBuffer, int cbBuffer);

/* Reads a line: up to a CR, which is dropped like every LF. Ends without a CR when cbBuffer characters are in
 * or the time of SetInputTimeOut has passed, counted from the call (0: only what is there now). Returns the
 * length. A shorter line has a NUL behind it; a line of cbBuffer characters has none. */
TARN_IMPORT int TARNAPI GetLineInput(HWND hWnd, char* lpBuffer, int cbBuffer);

/* Bytes that wait to be read; bytes that wait to be sent, in the object and in the driver. 0 if closed. */
TARN_IMPORT int TARNAPI GetInBufferCount(HWND hWnd);
TARN_IMPORT int TARNAPI GetOutBufferCount(HWND hWnd);

/* Throw away the driver's queue. What waits in the object's own output queue still goes out. */
TARN_IMPORT void TARNAPI ClearInputBuffer(HWND hWnd);
TARN_IMPORT void TARNAPI ClearOutputBuffer(HWND hWnd);

/* Wait until the input was read by somebody, or the output was sent; lTimeOut ms at the most. Return 1 if the
 * count reached 0. */
TARN_IMPORT int TARNAPI FlushInputBuffer(HWND hWnd, LONG lTimeOut);
TARN_IMPORT int TARNAPI FlushOutputBuffer(HWND hWnd, LONG lTimeOut);

/* Waits lTime ms while the thread's messages run. */
TARN_IMPORT void TARNAPI ComPause(HWND hWnd, LONG lTime);

/* Waits for input, lTimeOut ms at the most. Returns 1 if there is some. */
TARN_IMPORT int TARNAPI WaitForInput(HWND hWnd, LONG lTimeOut);

/* 256 bytes: the character that the terminal shows for each byte. */
TARN_IMPORT void TARNAPI GetTranslationTable(HWND hWnd, void* lpTable);
TARN_IMPORT void TARNAPI SetTranslationTable(HWND hWnd, const void* lpTable);

/* Whether a wait of this object runs. */
TARN_IMPORT int TARNAPI GetBusy(HWND hWnd);

/* The system's tick count lTime ms from now, or all ones where that would wrap. */
TARN_IMPORT DWORD TARNAPI CreateTimer(DWORD lTime);

/* ---- Events and waits ---------------------------------------------------------------------------------- */

/* Where events go: to a function, to a window as WM_COMMAND, else to the parent or the control that owns the
 * object. The handler wins over the window; NULL takes either away. "Events" above tells what they carry. */
TARN_IMPORT void TARNAPI SetEventHandler(HWND hWnd, TarnEventHandler lpfnEventHandler);
TARN_IMPORT void TARNAPI SetEventWindow(HWND hWnd, HWND hEventWindow);

/* Called by each turn of a wait in place of the thread's message loop. */
TARN_IMPORT void TARNAPI SetIdleLoop(HWND hWnd, TarnIdleHandler lpfnIdleLoop);

/* Receive fires at each tick while nThreshold bytes or more are unread, Send while nThreshold bytes or fewer
 * are unsent; 0 turns the event off, negative values are ignored. */
TARN_IMPORT void TARNAPI SetRThreshold(HWND hWnd, int nThreshold);
TARN_IMPORT int TARNAPI GetRThreshold(HWND hWnd);
TARN_IMPORT void TARNAPI SetSThreshold(HWND hWnd, int nThreshold);
TARN_IMPORT int TARNAPI GetSThreshold(HWND hWnd);

/* What the object does with input by itself: TARN_PROCESS_... . Serial processing sets the receive threshold
 * to 1 while the port is open. */
TARN_IMPORT void TARNAPI SetAutoProcess(HWND hWnd, int nAutoProcess);
TARN_IMPORT int TARNAPI GetAutoProcess(HWND hWnd);

/* The time between ticks. 0, the default, ticks when a byte comes. Read when the port opens; a timer that
 * runs is never changed, not even by closing the port. */
TARN_IMPORT void TARNAPI SetInterval(HWND hWnd, LONG lInterval);
TARN_IMPORT LONG TARNAPI GetInterval(HWND hWnd);

/* Not 0: every wait of the object ends, and none begins. */
TARN_IMPORT void TARNAPI SetShutDown(HWND hWnd, int bShutDown);
TARN_IMPORT int TARNAPI GetShutDown(HWND hWnd);

/* ---- Look-up ------------------------------------------------------------------------------------------- */

/* The strings that automatic serial processing looks for, separated by cSeparator. Event 8 tells that one has
 * come in, that the collection is full or that the time is over. Case does not matter; the first string that
 * matches wins. Replaces the strings before and starts anew. */
TARN_IMPORT void TARNAPI SetLookUpText(HWND hWnd, const char* szText, char cSeparator);

/* Kept for hosts that pass it to SetLookUpText. */
TARN_IMPORT void TARNAPI SetLookUpSeparator(HWND hWnd, char cSeparator);
TARN_IMPORT char TARNAPI GetLookUpSeparator(HWND hWnd);

/* The time limit of both kinds of look-up; 0 is no limit for the automatic kind and a single try for
 * InputUntilLookUp. Starts the automatic look-up anew. */
TARN_IMPORT void TARNAPI SetLookUpTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetLookUpTimeOut(HWND hWnd);

/* How many bytes of input the automatic look-up collects for its event; 0 is none. Starts it anew. */
TARN_IMPORT void TARNAPI SetLookUpInputLen(HWND hWnd, int cbInput);

/* Reads until one of the strings of lpszList (each NUL-terminated, 49 at the most, an empty one ends the
 * list) has come in. What was read, the found string included, goes to lpOutput, a buffer of cbOutput bytes
 * with the closing NUL; a full buffer ends the look-up. lpOutput may be NULL. Returns the index of the
 * string, or -1 for time-out, full buffer, empty list, SetShutDown, or a wait that runs already; 0 for a dead
 * object. */
TARN_IMPORT int TARNAPI InputUntilLookUp(HWND hWnd, const char* lpszList, char* lpOutput, int cbOutput);
TARN_IMPORT int TARNAPI DiscardUntilLookUp(HWND hWnd, const char* lpszList);

/* The automatic look-up piece by piece, on the object's record: add one string (up to the separator), empty
 * the table, feed one byte (a NUL only gives it a turn), find the first string that the text before lpEnd
 * ends with. AddLookUpString and ClearLookUpStrings return 1, or 0 for a dead record; LookUpChar returns 0,
 * MatchLookUpString an index or -1. */
TARN_IMPORT int TARNAPI AddLookUpString(COMCTL* lpComCtl, const char* szText, char cSeparator);
TARN_IMPORT int TARNAPI ClearLookUpStrings(COMCTL* lpComCtl);
TARN_IMPORT int TARNAPI LookUpChar(COMCTL* lpComCtl, char c);
TARN_IMPORT int TARNAPI MatchLookUpString(COMCTL* lpComCtl, const char* lpEnd, int cbAvailable);

/* ---- Terminal ------------------------------------------------------------------------------------------ */

/* The screen is nRows by nColumns cells, each a character and a colour; over it lie nScrollRows rows of
 * scrollback. Rows and columns count from 0, rows of the scrollback are negative, -1 the newest. A colour is
 * one byte: foreground in the low nibble, background in the high one, each one of TARN_COLOR_... . There are
 * cells only while an emulation is on, and from the first one on. */

/* TARN_EMULATION_...; 0, the default, shows an icon in place of the screen. A change between emulations
 * leaves the screen and an open sequence as they are. docs/terminal.md lists the codes of each. */
TARN_IMPORT void TARNAPI SetEmulation(HWND hWnd, int nEmulation);
TARN_IMPORT int TARNAPI GetEmulation(HWND hWnd);

/* The screen's size, 80 by 25 at first; what fits of the text is kept. A count below 1, a product of 65535 or
 * more, and a size for which there is no memory are ignored. Any call ends the selection. */
TARN_IMPORT void TARNAPI SetRows(HWND hWnd, int nRows);
TARN_IMPORT int TARNAPI GetRows(HWND hWnd);
TARN_IMPORT void TARNAPI SetColumns(HWND hWnd, int nColumns);
TARN_IMPORT int TARNAPI GetColumns(HWND hWnd);

/* Rows of scrollback, 0 at first. A change empties it. Returns 0, or -1 when memory is out. */
TARN_IMPORT int TARNAPI SetScrollRows(HWND hWnd, int nScrollRows);
TARN_IMPORT int TARNAPI GetScrollRows(HWND hWnd);

/* The cursor. A value outside of the screen is ignored. */
TARN_IMPORT void TARNAPI SetCursorRow(HWND hWnd, int nRow);
TARN_IMPORT int TARNAPI GetCursorRow(HWND hWnd);
TARN_IMPORT void TARNAPI SetCursorColumn(HWND hWnd, int nColumn);
TARN_IMPORT int TARNAPI GetCursorColumn(HWND hWnd);

/* The colour of what is printed or blanked from now on, 0x1F at first. */
TARN_IMPORT void TARNAPI SetColor(HWND hWnd, int nColor);
TARN_IMPORT int TARNAPI GetColor(HWND hWnd);

/* How colours are shown: TARN_COLOR_FILTER_... . */
TARN_IMPORT void TARNAPI SetColorFilter(HWND hWnd, int nColorFilter);
TARN_IMPORT int TARNAPI GetColorFilter(HWND hWnd);

/* Backspace: 0 erases, 1, the default, moves only. What text does at the end of a row: 0 goes on in the next
 * row with the next character, 1 overwrites the last cell, 2 goes on in the same row, 3 in the next one or,
 * from the last, the first. */
TARN_IMPORT void TARNAPI SetBackspace(HWND hWnd, int nBackspace);
TARN_IMPORT int TARNAPI GetBackspace(HWND hWnd);
TARN_IMPORT void TARNAPI SetEndOfLineMode(HWND hWnd, int nEndOfLineMode);
TARN_IMPORT int TARNAPI GetEndOfLineMode(HWND hWnd);

/* Shows text as if the line had brought it, codes and all: with its NUL, or, after the screen was moved to
 * the scrollback and cleared, cbText bytes. */
TARN_IMPORT void TARNAPI TerminalPrintString(HWND hWnd, const char* szText);
TARN_IMPORT void TARNAPI SetContents(HWND hWnd, const char* lpText, int cbText);

/* The text of the screen, or of the scrollback from its first row that is not blank: rows without trailing
 * spaces, each with CR and LF. lpBuffer gets the whole rows that fit into cbBuffer bytes (65535 at the most)
 * with a NUL; NULL only measures. Return the length without the NUL; the length of more than 65535 bytes is
 * its remainder by 65536. */
TARN_IMPORT int TARNAPI GetContents(HWND hWnd, char* lpBuffer, int cbBuffer);
TARN_IMPORT int TARNAPI GetContentsLength(HWND hWnd);
TARN_IMPORT int TARNAPI GetScrollContents(HWND hWnd, char* lpBuffer, int cbBuffer);
TARN_IMPORT int TARNAPI GetScrollContentsLength(HWND hWnd);

/* Points into the screen's characters, row after row without any mark between them. The place is not tested,
 * and the pointer is good until the next text or change of size. An empty string while there is no screen. */
TARN_IMPORT const char* TARNAPI GetTextAt(HWND hWnd, int nColumn, int nRow);

/* The selection, counted in cells from the screen's first one. Setting the start empties it; both setters
 * return 0, or -1 for a place outside of the screen. The length over several rows counts a row too many, as
 * it always has. GetSelectionText writes rows without trailing spaces, CR and LF between them, and a NUL, at
 * most cbBuffer bytes, and returns the length without the NUL. CopySelectionToClipboard returns 1, or 0 if
 * the clipboard is not to be had. */
TARN_IMPORT int TARNAPI SetSelectionStart(HWND hWnd, int nStart);
TARN_IMPORT int TARNAPI GetSelectionStart(HWND hWnd);
TARN_IMPORT int TARNAPI SetSelectionLength(HWND hWnd, int nLength);
TARN_IMPORT int TARNAPI GetSelectionLength(HWND hWnd);
TARN_IMPORT int TARNAPI GetSelectionText(HWND hWnd, char* lpBuffer, int cbBuffer);
TARN_IMPORT int TARNAPI CopySelectionToClipboard(HWND hWnd);

/* How the view follows the cursor: TARN_AUTO_SCROLL_... . The window's size: TARN_AUTO_SIZE_...; hMeasured,
 * if it isn't NULL, is measured and sized in place of the object's window. */
TARN_IMPORT void TARNAPI SetAutoScroll(HWND hWnd, int nAutoScroll);
TARN_IMPORT int TARNAPI GetAutoScroll(HWND hWnd);
TARN_IMPORT void TARNAPI SetAutoSize(HWND hWnd, int nAutoSize, HWND hMeasured);
TARN_IMPORT int TARNAPI GetAutoSize(HWND hWnd);

/* Scroll bar controls of the host in place of the window's own; NULL goes back to those. The host hands
 * their messages to the object's window. */
TARN_IMPORT void TARNAPI SetHScrollBar(HWND hWnd, HWND hScrollBar);
TARN_IMPORT void TARNAPI SetVScrollBar(HWND hWnd, HWND hScrollBar);

/* Paints nCount rows from nFirst on, whole rows whatever the columns are. */
TARN_IMPORT void TARNAPI PaintCommWindow(HWND hWnd, HDC dc, int nColumn, int nFirst, int nColumns,
                                         int nCount);

/* Capture to a file: TARN_CAPTURE_... tells what reaches it. SetCaptureFilename ends a capture and begins one
 * that appends to the named file; NULL or an empty name only ends. Returns 1, or 0 if the file can't be
 * opened. A write that fails, on a full disk, loses its bytes and changes nothing else. */
TARN_IMPORT void TARNAPI SetCaptureMode(HWND hWnd, int nCaptureMode);
TARN_IMPORT int TARNAPI GetCaptureMode(HWND hWnd);
TARN_IMPORT int TARNAPI SetCaptureFilename(HWND hWnd, const char* szPath);

/* ---- Log ----------------------------------------------------------------------------------------------- */

/* Appends a message to "wiretap.txt" in the Windows folder: time, text, data as script expressions of up to
 * 80 columns. hWnd may be NULL. nClass says what kind of message it is and does not change it. lpData may be
 * NULL; with a pointer and no bytes an empty string is shown. May be called on any thread; of two messages at
 * the same moment one is lost. Once the file can't be opened, the log is silent until the module is loaded
 * again. */
TARN_IMPORT void TARNAPI WireTapMsg(HWND hWnd, int nClass, const char* szText, const void* lpData,
                                    DWORD cbData);

/* The same for a wide string with its NUL, converted with the default code page. */
TARN_IMPORT void TARNAPI WireTapMsgW(HWND hWnd, int nClass, const char* szText, const wchar_t* szData);

/* Messages of the transfer, written while SetWireTapTransfer is on; formatted, 1023 characters at the most.
 */
TARN_IMPORT void __cdecl WireTapTransfer(HWND hWnd, const char* szFormat, ...) TARN_PRINTF(2, 3);
TARN_IMPORT void TARNAPI WireTapTransferData(HWND hWnd, const char* szText, const void* lpData, DWORD cbData);

/* What the log shows: bytes read, bytes sent, the transfer's messages. Return 1, or 0 for a dead object. */
TARN_IMPORT int TARNAPI SetWireTapInput(HWND hWnd, int bWireTapInput);
TARN_IMPORT int TARNAPI SetWireTapOutput(HWND hWnd, int bWireTapOutput);
TARN_IMPORT int TARNAPI SetWireTapTransfer(HWND hWnd, int bWireTapTransfer);

/* ---- File transfer ---------------------------------------------------------------------------------------
 */

/* A transfer is started by Upload or Download and runs on a thread of the object's own, file after file,
 * while the host's thread serves messages. Until it has ended the object reads no input and raises no other
 * events. Each step comes as the event TARN_EVENT_TRANSFER; GetTransferStatus tells which:
 *
 * - TARN_TRANSFER_PREPARE: a file begins; its names may be read and, here only, changed by SetDestFilename.
 *
 * - TARN_TRANSFER_STARTING: the names are settled.
 *
 * - TARN_TRANSFER_TRANSFERING: GetTransferFileSize or GetTransferBytesTransferred have changed.
 *
 * - TARN_TRANSFER_END_OF_FILE: the file is whole; its names can be read for the last time.
 *
 * - TARN_TRANSFER_FILE_ABORT: the file was skipped or lost; others may follow.
 *
 * - TARN_TRANSFER_SUCCESS, TARN_TRANSFER_FAILURE: the transfer has ended, and the next may be started. A lost
 *   file alone makes no failure of a ZModem download.
 *
 * A transfer has the line's state changed for its time: 8 data bits without parity (but for Kermit), and no
 * XOn and XOff, replacement of characters or discarding of NULs. SetSettings, SetHandshaking,
 * SetParityReplace, SetDiscardNulls, SetDTR and the time-outs of the line write the whole state anew, of
 * which XOn and XOff alone stay off: leave them until the end where the object's own state would spoil the
 * data.
 *
 * The protocols, by origin: XModem, XModem CRC and 1K, YModem and YModem-G as Chuck Forsberg wrote them down
 * in 1985, ZModem after his description of 1988, Kermit after Frank da Cruz, 1987 (no long packets, no
 * windows).
 *
 * Names from the line. The other side chooses the name of a file that is received. A name without "\" goes
 * into the folder of SetXferPath; a name with one is taken as it stands, and so is "/" in it. The sender of a
 * name with ".." in it or "/" or "\" in front is sent a cancel (Kermit looks at no name), but the file still
 * begins: the host has the last word. At TARN_TRANSFER_PREPARE, GetSourceFilename gives the offered name,
 * joined to the folder; a host that doesn't trust the far end takes its last part, or a name of its own, and
 * sets it by SetDestFilename, or calls AbortTransfer. samples/flat/transfer.cpp does so. */

/* Protocols, for SetProtocol. Any other number fails. */
#define TARN_PROTOCOL_XMODEM 0 /* 128-byte blocks with a checksum */
#define TARN_PROTOCOL_XMODEM_CRC 1
#define TARN_PROTOCOL_XMODEM_1K 2
#define TARN_PROTOCOL_YMODEM 3
#define TARN_PROTOCOL_YMODEM_G 4 /* sends without waiting; receives as YModem */
#define TARN_PROTOCOL_ZMODEM 5
#define TARN_PROTOCOL_KERMIT                                                                                 \
    6 /* keeps the port's data bits and parity; the others set 8 and none meanwhile */

/* What GetTransferStatus gives. */
#define TARN_TRANSFER_FAILURE (-1)
#define TARN_TRANSFER_SUCCESS 0 /* also before the first transfer */
#define TARN_TRANSFER_WAIT_FOR_FILE 1
#define TARN_TRANSFER_PREPARE 2
#define TARN_TRANSFER_STARTING 3
#define TARN_TRANSFER_TRANSFERING 4
#define TARN_TRANSFER_FILE_ABORT 5
#define TARN_TRANSFER_END_OF_FILE 7

/* Status dialog, for SetTransferDialogType. */
#define TARN_DIALOG_NONE 0
#define TARN_DIALOG_FREE 1  /* the dialog's owner stays usable */
#define TARN_DIALOG_LOCKS 2 /* the owner is disabled until the transfer has ended */

/* Set before a transfer. The owner of the dialog is the object's parent unless another is given. Resume: 1
 * lets a ZModem receive go on where a part of the file is there already, 0 replaces the file. */
TARN_IMPORT void TARNAPI SetProtocol(HWND hWnd, int nProtocol);
TARN_IMPORT int TARNAPI GetProtocol(HWND hWnd);
TARN_IMPORT void TARNAPI SetTransferDialogType(HWND hWnd, int nType);
TARN_IMPORT int TARNAPI GetTransferDialogType(HWND hWnd);
TARN_IMPORT void TARNAPI SetDialogParent(HWND hWnd, HWND hParent);
TARN_IMPORT HWND TARNAPI GetDialogParent(HWND hWnd);
TARN_IMPORT void TARNAPI SetResumeMethod(HWND hWnd, int nResumeMethod);
TARN_IMPORT int TARNAPI GetResumeMethod(HWND hWnd);

/* The folder for names without "\", for both directions; at most 255 characters. */
TARN_IMPORT void TARNAPI SetXferPath(HWND hWnd, const char* szPath);

/* Queues a file and starts sending, or lets the upload that runs take it too. Returns 1, or 0 when the file
 * can't be read, a download or the thread of StartTransfer runs, the upload that runs has found no further
 * file and is saying goodbye (its last event is the time to start the next), or there is no thread or memory
 * to be had. */
TARN_IMPORT int TARNAPI Upload(HWND hWnd, const char* szName);

/* Starts receiving, or adds a name to the download that runs. szName is the name that the next file gets;
 * NULL or "" takes the sender's, and UNTITLED.000 and so on where a protocol has none. Returns 1, or 0 when
 * an upload or the thread of StartTransfer runs, or there is no thread or memory to be had. */
TARN_IMPORT int TARNAPI Download(HWND hWnd, const char* szName);

/* Both end the whole transfer, files that wait in the queue included. The end comes as an event. */
TARN_IMPORT void TARNAPI AbortTransfer(HWND hWnd);
TARN_IMPORT void TARNAPI AbortCurrentFile(HWND hWnd);

/* Serves messages until the transfer has ended. Without a limit of its own: the protocols have theirs. */
TARN_IMPORT void TARNAPI WaitUntilTransferIsFinished(HWND hWnd);

/* 0 none, 1 upload, 2 download. */
TARN_IMPORT int TARNAPI GetTransferType(HWND hWnd);
TARN_IMPORT int TARNAPI GetTransferStatus(HWND hWnd);

/* Of the current file, in bytes. The size is not known to XModem receives, which leave the one before. */
TARN_IMPORT LONG TARNAPI GetTransferFileSize(HWND hWnd);
TARN_IMPORT LONG TARNAPI GetTransferBytesTransferred(HWND hWnd);

/* The current file's names: where it comes from and where it goes to. The text is cut to the buffer and ends
 * with a NUL; the result is its length. The lengths are those of the whole names. */
TARN_IMPORT int TARNAPI GetSourceFilename(HWND hWnd, char* szName, int cbName);
TARN_IMPORT int TARNAPI GetSourceFilenameLength(HWND hWnd);
TARN_IMPORT int TARNAPI GetDestFilename(HWND hWnd, char* szName, int cbName);
TARN_IMPORT int TARNAPI GetDestFilenameLength(HWND hWnd);

/* At TARN_TRANSFER_PREPARE: another name for the file, to be received as or to be told to the receiver, which
 * Kermit doesn't. */
TARN_IMPORT void TARNAPI SetDestFilename(HWND hWnd, const char* szName);

/* Kept for programs that call them: both return 0 and write nothing. GetSourceFilename and GetDestFilename
 * give the names. */
TARN_IMPORT int TARNAPI GetTransferFilename(HWND hWnd, char* szName, int cbName);
TARN_IMPORT int TARNAPI GetTransferFilenameLength(HWND hWnd);

/* The thread of a transfer without its queue and type, as Upload and Download start it. It ends in an event
 * like any other; until then both return 0. The handle is the caller's to close; NULL for a dead object and
 * while a transfer's thread runs. */
TARN_IMPORT HANDLE TARNAPI StartTransfer(HWND hWnd);

/* For code that runs inside a transfer: whether its time is up (a value of CreateTimer) or it has to end. */
struct TRANSFER;
TARN_IMPORT int TARNAPI TimerExpired(struct TRANSFER* lpTransfer, DWORD dwDeadline);

/* Dialog procedure of the transfer's status dialog, for a program that shows a form of its own with the same
 * items; the dialog's user word is the transfer. */
TARN_IMPORT INT_PTR TARNAPI DlgProc(HWND hDialog, UINT message, WPARAM wParam, LPARAM lParam);

/* ---- Modem --------------------------------------------------------------------------------------------- */

/* A modem at the open port, driven by the commands that Dennis Hayes's Smartmodem of 1981 began with ("AT").
 * Those that talk to it wait, for its words and between commands. A wait that runs already (GetBusy) makes
 * them find no word, and so does a transfer, into whose line they would speak. SetShutDown ends the waits:
 * what is still to be sent goes out without its pauses. An object that is destroyed meanwhile ends them.
 * Automatic processing of serial input reads the same line and may take a word of the modem: turn it off. */

/* How the modem is driven: seven fields, each closed by a tab but the last: title, set-up, tone prefix, pulse
 * prefix, answer set-up, hang-up, line speed (kept, not read). Up to TARN_MODEM_OPTIONS_SIZE - 2 characters
 * are taken. Every character outside of 32 to 127 ends a field as a tab does, and behind an empty field the
 * functions below find no other. "Hayes
 * Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400" suits most modems; a new object
 * has no options. */
#define TARN_MODEM_OPTIONS_SIZE 200
TARN_IMPORT void TARNAPI SetModemOptions(HWND hWnd, const char* szOptions);

/* Writes the fields with a tab behind each and no NUL at the end, TARN_MODEM_OPTIONS_SIZE bytes at the most.
 * Returns the count of bytes; without options it is 1, a tab. */
TARN_IMPORT int TARNAPI GetModemOptions(HWND hWnd, char* lpBuffer);

/* Add the known modems to a list box or a combo box: "Hayes Compatible", then the names in MODEM.LST, whose
 * items have their places in that file, from 1, as item data; the item that begins with the title of the
 * options is selected. MODEM.LST is taken from the folder of this module, of the program, of Windows or of
 * the system: a line of up to 199 characters for each modem, ended by CR LF, its fields as in
 * SetModemOptions; an empty line ends the list. Return 1, or 0 if there is no such file. */
TARN_IMPORT int TARNAPI FillListWithModemNames(HWND hWnd, HWND hListBox);
TARN_IMPORT int TARNAPI FillComboWithModemNames(HWND hWnd, HWND hComboBox);

/* Sends a command 200 ms after the call. "^" and a character is a control character, so "^M" is a carriage
 * return; "~" is a pause of a second. A closed port ends the sending, not the pauses. Returns 1 if the
 * port was open for every byte; bytes that a full output queue refuses are lost unnoticed. */
TARN_IMPORT int TARNAPI OutputModem(HWND hWnd, const char* szCommand);

/* Waits up to 8 seconds for "OK" or "ERROR". Returns 1 for "OK". */
TARN_IMPORT int TARNAPI WaitForOk(HWND hWnd);

/* Sends "AT" and waits for "OK": is there a modem? InitModem hangs up and sets the modem up by the set-up
 * field; InitModemForAnswer sends the answer set-up too, after which the modem answers calls by itself. Each
 * returns 1 when the modem said "OK". */
TARN_IMPORT int TARNAPI CheckModem(HWND hWnd);
TARN_IMPORT int TARNAPI InitModem(HWND hWnd);
TARN_IMPORT int TARNAPI InitModemForAnswer(HWND hWnd);

/* Throws away what waits in the driver's queues, sends the prefix of the dial mode, the number as it stands
 * and a carriage return, and waits for the modem's word, SetDialTimeOut ms at the most. Returns
 * TARN_DIAL_...; the speed that the modem tells behind "CONNECT" is left in the input. 0 for a dead object,
 * too. */
#define TARN_DIAL_CONNECTED 0    /* "CONNECT" */
#define TARN_DIAL_NO_CARRIER 1   /* "NO CARRIER" */
#define TARN_DIAL_NO_DIAL_TONE 2 /* "NO DIALTONE" */
#define TARN_DIAL_BUSY 3         /* "BUSY" */
#define TARN_DIAL_TIMED_OUT 4    /* none of them in time; the modem was stopped */
#define TARN_DIAL_CANCELLED 5    /* by HangUp */
TARN_IMPORT int TARNAPI Dial(HWND hWnd, const char* szNumber);

/* The dial mode, TARN_DIAL_TONE (the default) or TARN_DIAL_PULSE; the limit of a dialing attempt in ms,
 * 30000 at first. */
#define TARN_DIAL_TONE 0
#define TARN_DIAL_PULSE 1
TARN_IMPORT void TARNAPI SetDialMode(HWND hWnd, int nDialMode);
TARN_IMPORT int TARNAPI GetDialMode(HWND hWnd);
TARN_IMPORT void TARNAPI SetDialTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetDialTimeOut(HWND hWnd);

/* Ends a Dial that waits (call it in an event or a message then), or a call: by dropping DTR for 200 ms, and
 * if the carrier stays, by the hang-up command. Returns 1 when the line is down: at once without a carrier,
 * when the carrier has gone, when the modem said "OK" to the command, or when a Dial was told to stop. */
TARN_IMPORT int TARNAPI HangUp(HWND hWnd);

/* As HangUp, but doesn't wait for the answer to the command, drops and raises DTR whatever SetDTR says, and
 * ends no Dial. Returns 1 when there is no carrier. */
TARN_IMPORT int TARNAPI Disconnect(HWND hWnd);

/* ---- For BASIC interpreters ---------------------------------------------------------------------------- */

/* The same work for a language whose strings and buffers are addresses. Each does nothing for a null handle;
 * those that return a number return -1 then, and for a null buffer or list. */

/* Text on the terminal; the screen cleared; the colours, 0 to 15 each. */
TARN_IMPORT void TARNAPI tarnbasPrint(HWND hWnd, const char* szText);
TARN_IMPORT void TARNAPI tarnbasClearScreen(HWND hWnd);
TARN_IMPORT void TARNAPI tarnbasColor(HWND hWnd, int nForeground, int nBackground);

/* Dial. lpResult, 13 bytes or more, takes "" for a call (and for a dead object), "No Dial Tone", "Busy",
 * "Time Out" or "No Carrier". */
TARN_IMPORT void TARNAPI tarnbasDial(HWND hWnd, const char* szNumber, char* lpResult);
TARN_IMPORT void TARNAPI tarnbasHangUp(HWND hWnd);

/* GetInput of up to cbBuffer - 1 bytes, with a NUL behind them. Returns the count of bytes. */
TARN_IMPORT int TARNAPI tarnbasInput(HWND hWnd, char* lpBuffer, int cbBuffer);

/* GetLineInput of up to 4 characters: a longer line comes in pieces. lpBuffer has 5 bytes or more. Returns
 * the length. */
TARN_IMPORT int TARNAPI tarnbasLineInput(HWND hWnd, char* lpBuffer);

/* OutputModem: "^" and "~" have their meaning here too. */
TARN_IMPORT void TARNAPI tarnbasSend(HWND hWnd, const char* szText);

/* DiscardUntilLookUp for a list of up to 1024 bytes whose strings are separated by the first character of
 * szSeparator, lTimeOut ms at the most. The time-out stays, as by SetLookUpTimeOut. Returns the index of the
 * string that came, or -1; 0 for a dead object. */
TARN_IMPORT int TARNAPI tarnbasWaitFor(HWND hWnd, const char* szList, const char* szSeparator, LONG lTimeOut);

/* ---- Settings of the object that other functions read -------------------------------------------------- */

/* Limit of GetLineInput, in ms. */
TARN_IMPORT void TARNAPI SetInputTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetInputTimeOut(HWND hWnd);

/* Kept for the host, in ms. */
TARN_IMPORT void TARNAPI SetOutputTimeOut(HWND hWnd, LONG lTimeOut);
TARN_IMPORT LONG TARNAPI GetOutputTimeOut(HWND hWnd);

/* Show sent bytes on the terminal; show bytes that are read; send bytes that are read back to the line. */
TARN_IMPORT void TARNAPI SetEcho(HWND hWnd, int bEcho);
TARN_IMPORT int TARNAPI GetEcho(HWND hWnd);
TARN_IMPORT void TARNAPI SetInputEcho(HWND hWnd, int bInputEcho);
TARN_IMPORT int TARNAPI GetInputEcho(HWND hWnd);
TARN_IMPORT void TARNAPI SetCommEcho(HWND hWnd, int bCommEcho);
TARN_IMPORT int TARNAPI GetCommEcho(HWND hWnd);

/* React to a ZModem start sequence in the input of automatic processing; on by default. */
TARN_IMPORT void TARNAPI SetAutoZModem(HWND hWnd, int bAutoZModem);
TARN_IMPORT int TARNAPI GetAutoZModem(HWND hWnd);

/* Words that the object keeps for its host and never reads. */
TARN_IMPORT void TARNAPI SetCommLong(HWND hWnd, LONG lValue);
TARN_IMPORT LONG TARNAPI GetCommLong(HWND hWnd);
TARN_IMPORT void TARNAPI SetNotification(HWND hWnd, LONG lValue);
TARN_IMPORT LONG TARNAPI GetNotification(HWND hWnd);

/* Dialog procedure for a program that shows a misuse message of its own: text in control 1003, buttons 1
 * (result 0), 1000 (ignore, result 0) and 1001 (result 1), a frame drawn in control 1005. The text is the
 * dialog's parameter. */
TARN_IMPORT INT_PTR TARNAPI BugTrapDlgProc(HWND hDialog, UINT message, WPARAM wParam, LPARAM lParam);

#ifdef __cplusplus
}
#endif

#if defined(__cplusplus) && !defined(TARNCOMM_STATIC)
/* C++ callers may use one name for both kinds of data. */
inline void WireTapMsg(HWND hWnd, int nClass, const char* szText, const wchar_t* szData) {
    WireTapMsgW(hWnd, nClass, szText, szData);
}

inline void WireTapTransfer(HWND hWnd, const char* szText, const void* lpData, DWORD cbData) {
    WireTapTransferData(hWnd, szText, lpData, cbData);
}

/* Text is an argument of the format, not data: "%s has %u bytes" must not be taken for the form above. */
inline void WireTapTransfer(HWND hWnd, const char* szFormat, const char* szText, DWORD nValue) {
    void(__cdecl* const format)(HWND, const char*, ...) = WireTapTransfer;
    format(hWnd, szFormat, szText, nValue);
}
#endif

#endif
