// The libraries of this process, as their files tell about them.
#pragma once

#include "moduleversion.h"

#include <windows.h>

#include <optional>
#include <string>

struct LoadedLibrary {
    std::string path; // empty: it can't be read
    std::optional<FileVersion> version;
    std::optional<SYSTEMTIME> created; // local time
};

// Nothing: no library of that name is loaded.
std::optional<LoadedLibrary> FindLoadedLibrary(const char* szName);

// When the file was made, by the clock of the zone; null: the machine's. Nothing: it can't be read.
std::optional<SYSTEMTIME> LocalCreationOf(const std::string& path,
                                          const TIME_ZONE_INFORMATION* zone = nullptr);
