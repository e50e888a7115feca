// The version of a module as its file tells it.
#pragma once

#include <array>
#include <optional>
#include <string>

using FileVersion = std::array<int, 4>;

// Nothing: the file has none, or can't be read.
std::optional<FileVersion> VersionOfFile(const char* szFile);

// The banner of the log with the module's file version, or nothing if no module of that name is loaded or its
// version can't be read.
std::string VersionBanner();

// "Version 1.2 Build 4", or nothing without a version; of the file of the module that this code is in,
// whatever that is called.
std::string VersionLine();
std::string VersionLine(const std::optional<FileVersion>& version);
