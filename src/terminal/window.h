// The terminal's share of the window procedure.
#pragma once

#include "core/comctl.h"

#include <optional>

// The answer to a message that is the terminal's, or nothing. The object may be gone afterwards.
std::optional<LRESULT> AnswerTerminal(COMCTL& record, UINT message, WPARAM wParam, LPARAM lParam);

// At creation and destruction of the object.
void OpenTerminal(COMCTL& record);
void CloseTerminal(COMCTL& record);
