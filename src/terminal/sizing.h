// The window's size: that of the terminal, of the parent, or of an icon while no emulation is on.
#pragma once

#include "core/comctl.h"

enum AutoSize : int { AutoSize_None = 0, AutoSize_Terminal = 1, AutoSize_Parent = 2 };

// Sizes the window as nAutoSize tells. Measured is another window, whose size and parent stand in for the
// window's own; null is the window itself.
void SizeToTerminal(COMCTL& record, HWND hMeasured = nullptr);

void SizeToIcon(COMCTL& record);
void RestoreSize(COMCTL& record);

// WM_SIZE.
void OnSize(COMCTL& record);

// WM_SETFONT, and the font at creation: measures the characters.
void SetTerminalFont(COMCTL& record, HFONT hFont);
void MeasureFont(COMCTL& record);
