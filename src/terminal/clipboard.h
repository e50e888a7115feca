// The selection on the clipboard, as plain text.
#pragma once

#include "core/comctl.h"

// False: memory is out, or the clipboard is somebody else's at the moment.
bool CopySelection(COMCTL& record);
