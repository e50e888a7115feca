// The WireTap log: one text file for the whole process, "wiretap.txt" in the Windows folder.
//
// Any thread may log. No lock is taken: a message that comes while another is being written is dropped, for
// the log must never block or fail the line. The file is opened and closed for each message, so that nothing
// is lost in a crash and other programs can read it. Errors are reported to nobody.
//
// A message for a window that is no comm object of ours, or a file that can't be opened, silences the log for
// the rest of the process.
#pragma once

#include "core/comctl.h"
#include "TarnComm.h" // WireTapMsg, WireTapTransfer, the switches

// Told by the callers, used by nobody.
enum WireTapClass : int {
    WireTapText = 0,    // device state, transfer text, run-time reports
    WireTapTrace = 1,   // properties and methods of the control
    WireTapData = 2,    // bytes that crossed the line
    WireTapEvent = 4,   // events of the control
    WireTapWarning = 5, // transfer warnings
};

inline constexpr int WireTapTextSize =
    1024; // characters of a formatted transfer text, with the NUL; more is cut

// "Comm1 reads 5 bytes: " and the bytes. The caller has tested the object's switch and that there are bytes.
void LogData(const COMCTL& record, const char* szVerb, const void* lpBytes, DWORD cbBytes);

// The same for threads that must not read the record: hWnd and szName are the object's.
void LogData(HWND hWnd, const char* szName, const char* szVerb, const void* lpBytes, DWORD cbBytes);

// A text of no object in particular. It is logged whatever the switches say.
void LogText(const char* szText);

// Puts the log's module-wide state back to where it is when the module is loaded. No other thread may log
// meanwhile.
void ResetWireTap();
