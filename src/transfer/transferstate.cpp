#include "transferstate.h"

#include "transfer.h"

TransferState StatesOfTransfer(const DCB& before, int nProtocol) {
    TransferState states = {before, before};
    states.afterwards.fNull = FALSE;
    DCB& meanwhile = states.meanwhile;
    meanwhile.fNull = FALSE;
    meanwhile.fErrorChar = FALSE;
    if (nProtocol != Protocol_Kermit) {
        meanwhile.ByteSize = 8;
        meanwhile.Parity = NOPARITY;
    }
    meanwhile.fInX = FALSE;
    meanwhile.fOutX = FALSE;
    return states;
}
