// The version of the module as its file tells it.
#pragma once

#include <string>

// The banner of the log with the module's file version, or nothing if no module of that name is loaded or its
// version can't be read.
std::string VersionBanner();
