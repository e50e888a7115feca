// What the troubleshooter looks like, page by page, with a machine and a control that are made up.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

using StorePicture = std::function<bool(HWND hDlg, const std::string& path)>;

// False if one can't be made.
bool PlayTroubleshooter(const StorePicture& store, const std::string& folder);
