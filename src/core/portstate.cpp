#include "portstate.h"

#include "diagnostics/wiretap.h"
#include "stateblock.h"

bool RebuildDeviceState(COMCTL& record, Speed speed) {
    if (!record.bPortOpen)
        return false;
    DCB block = {};
    block.DCBlength = sizeof block;
    if (!GetCommState(record.hComm, &block))
        return false;
    LogText(StateBlockText(block).c_str());
    FillStateBlock(block, record, speed == Speed::Apply);
    LogText(StateBlockText(block).c_str());
    return SetCommState(record.hComm, &block) != FALSE;
}
