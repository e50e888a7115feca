// The driver's state block: filled from the record, and shown in the log. Calls no device.
#pragma once

#include "comctl.h"

#include <string>

void FillStateBlock(DCB& block, const COMCTL& record, bool applySpeed);

// One line a field.
std::string StateBlockText(const DCB& block);
