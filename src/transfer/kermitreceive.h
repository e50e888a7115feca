// Kermit's receiver: one step for each packet, until the transfer is complete or has failed.
#pragma once

#include "kermitstate.h"

// True: complete.
bool ReceiveSwitcher(KermitState& kermit);
