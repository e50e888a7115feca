// The characters of screen and scrollback as text: rows without their trailing spaces, each with CR and LF.
#pragma once

#include "core/comctl.h"

// Without a buffer the length alone is measured, in 16 bits. A buffer is filled with whole rows and a NUL.
int ScreenText(const COMCTL& record, char* buffer, int size);

// The same for the scrollback, from its first row that holds more than spaces.
int ScrollText(const COMCTL& record, char* buffer, int size);
