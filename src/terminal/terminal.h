// The way into the terminal for every byte that is to appear, and the way back to the line.
#pragma once

#include "core/comctl.h"

enum Emulation : int {
    Emulation_None = 0,
    Emulation_TTY = 1,
    Emulation_Ansi = 2,
    Emulation_VT52 = 3,
    Emulation_VT100 = 4,
};

enum EndOfLineMode : int {
    EndOfLineMode_NextLine = 0,
    EndOfLineMode_DoNothing = 1,
    EndOfLineMode_WrapLine = 2,
    EndOfLineMode_WrapScreen = 3,
};

// The object may be gone after this: a reply to the line can raise an event.
void WriteTerminal(COMCTL& record, const char* bytes, int count);

void SwitchEmulation(COMCTL& record, int nEmulation);

// Sends bytes to the line. False if the port is closed or its buffer has no room. The object may be gone.
bool TerminalReply(COMCTL& record, const char* bytes, int count);
