// What a dialog looks like, into a file.
#pragma once

#include <windows.h>

#include <string>

// The picture once it stays the same, with the animation held and nothing that has the focus.
bool Store(HWND hDlg, const std::string& path);
