// What a Kermit transfer says: on the status line, to a debugger, and to the other side.
#pragma once

#include "kermitstate.h"

#include "diagnostics/debugtext.h"

void ShowMessage(KermitState& kermit, const std::string& text);
void ShowErrorPacket(KermitState& kermit, const char* szText);

// On the status line, or to the other side with bSendErrors.
void Error(KermitState& kermit, const std::string& text);
