// Kermit's sender: one step for each state, until the transfer is complete or has failed.
#pragma once

#include "kermitstate.h"

// True: complete.
bool SendSwitcher(KermitState& kermit);
