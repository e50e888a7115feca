// Capture of what the terminal receives to a file. The three modes differ in where their bytes are taken.
#pragma once

#include "core/comctl.h"

enum CaptureMode : int {
    Capture_Standard = 0, // text, as the emulations leave it
    Capture_Binary = 1,   // everything as it came
    Capture_Visible = 2,  // rows, as they leave the screen
};

inline bool Captures(const COMCTL& record, CaptureMode mode) {
    return record.hCaptureFile != HFILE_ERROR && record.nCaptureMode == mode;
}

// A failed write loses the bytes and changes nothing else.
void WriteCapture(const COMCTL& record, const char* bytes, int count);

// Bytes for the file, if one is open and this is its mode.
inline void Capture(const COMCTL& record, CaptureMode mode, const char* bytes, int count) {
    if (Captures(record, mode))
        WriteCapture(record, bytes, count);
}

// In visible mode: the first rows of the screen go to the file, without trailing spaces; -1 is all of them.
void FlushVisibleRows(const COMCTL& record, int count);

// Ends the present capture and begins one that appends to a file. An empty name only ends. False if the file
// can't be opened.
bool StartCapture(COMCTL& record, const char* szPath);
void EndCapture(COMCTL& record);
