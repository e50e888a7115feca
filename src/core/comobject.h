// The comm object's window: its class, its life, its messages.
#pragma once

#include "comctl.h"

// The window's private messages.
inline constexpr UINT FireEventMessage = WM_USER + 1; // wParam: the event code

// The class is registered once for all objects; an existing one is as good. False: none to be had.
bool RegisterObjectClass(HINSTANCE module);
void UnregisterObjectClass(HINSTANCE module);

// The module that this code lives in.
HINSTANCE ThisModule();
