// Which part of screen and scrollback the window shows, its scroll bars, and how it follows the cursor.
#pragma once

#include "core/comctl.h"

// Why the view may have to move.
enum class ViewTrigger : int { Printing = 0, Key = 1, BackToScreen = 2 };

void AutoScrollTerminal(COMCTL& record, ViewTrigger trigger);
void UpdateScrollBars(COMCTL& record);
void ScrollTo(COMCTL& record, int left, int top);

// WM_VSCROLL and WM_HSCROLL: a scroll bar code (SB_LINEUP ...) and the thumb's position.
void ScrollVertically(COMCTL& record, int code, int position);
void ScrollHorizontally(COMCTL& record, int code, int position);
