// The tick: what an open object does when its timer fires or its monitor has seen the line move.
#pragma once

#include "comctl.h"

// Runs on the window's thread. The object may be gone afterwards. Returns what the monitor wants to know: the
// bytes left unread, or TickFoundNothing.
LRESULT Tick(HWND hWnd);
