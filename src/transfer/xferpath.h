// File names of a transfer and the object's folder for them (szXferPath).
#pragma once

#include "core/comctl.h"

#include <string>

// A name without "\" goes into the folder, if there is one; every other name stands as it is, an empty one
// too.
std::string MakeXferPath(const COMCTL& record, const std::string& name);

// szDestFilename: into the folder during a download, as it stands during an upload. Null and "" empty it.
void StoreDestFilename(COMCTL& record, const char* szName);
