#include "logpath.h"

#include <windows.h>

#include <cstdio>

LogPath PathInWindowsFolder(const char* szFile) {
    LogPath folder = {};
    const UINT length = GetWindowsDirectoryA(folder.data(), LogPathSize);
    if (!length || length >= LogPathSize)
        return {};
    LogPath path = {};
    const int needed = std::snprintf(path.data(), LogPathSize, "%s\\%s", folder.data(), szFile);
    return needed > 0 && static_cast<size_t>(needed) < LogPathSize ? path : LogPath{};
}
