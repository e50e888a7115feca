// Where the module's log files lie.
#pragma once

#include <array>
#include <cstddef>

inline constexpr size_t LogPathSize = 200; // characters, with the NUL
using LogPath = std::array<char, LogPathSize>;

// The file in the Windows folder; empty if there is no such folder or the path is too long.
LogPath PathInWindowsFolder(const char* szFile);
