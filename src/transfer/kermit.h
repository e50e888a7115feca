// Kermit: stop-and-wait, one-character check, short packets. Origin: Frank da Cruz, "Kermit: A File Transfer
// Protocol", 1987.
#pragma once

#include "transfer.h"

// Both: 0 for success.
int KermitSend(TRANSFER& transfer);
int KermitReceive(TRANSFER& transfer);
