// The status bar: the status of the port, and its name.
#pragma once

#include <windows.h>

// Null: there is none.
HWND CreateStatusBar(HWND parent);

// The port's name takes the room that it needs at the right end of this width.
void ShowStatus(HWND bar, int width, const wchar_t* status, const char* port);
