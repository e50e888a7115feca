// The emulations: each takes bytes in pieces of any size and keeps an open sequence in the record (szEscape,
// nEscape). False: the object is gone.
#pragma once

#include "core/comctl.h"

// Text without sequences; the whole of the TTY emulation.
void TerminalPrint(COMCTL& record, const char* bytes, int count);

bool AnsiWrite(COMCTL& record, const char* bytes, int count);
bool Vt52Write(COMCTL& record, const char* bytes, int count);
bool Vt100Write(COMCTL& record, const char* bytes, int count);
