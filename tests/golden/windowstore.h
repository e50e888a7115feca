// What a window looks like, into a file.
#pragma once

#include <windows.h>

#include <string>

// The window's client area and its children as they are on the display, once they stay the same, with nothing
// that has the focus.
bool StoreWhenStill(HWND window, const std::string& path);
