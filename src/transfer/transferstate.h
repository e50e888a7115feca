// The driver's state block during and after a transfer.
#pragma once

#include <windows.h>

struct TransferState {
    DCB meanwhile;
    DCB afterwards;
};

// Eight bits without parity but for Kermit, no software flow control, no character in place of bad ones. What
// comes back is the state before, except that NULs are no longer discarded; kept so, see the tests.
TransferState StatesOfTransfer(const DCB& before, int nProtocol);
