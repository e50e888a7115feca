// The versions of the interface that this service speaks.
#pragma once

#include <windows.h>

inline constexpr DWORD lowestVersion = 0x10003;
inline constexpr DWORD highestVersion = 0x20000;

inline bool IsVersion(DWORD version) {
    return version >= lowestVersion && version <= highestVersion;
}
