#include "terminal.h"

#include "capture.h"
#include "core/live.h"
#include "core/output.h"
#include "core/portstatus.h"
#include "emulations.h"
#include "picture.h"
#include "screen.h"
#include "sizing.h"
#include "view.h"

namespace {

constexpr int mostDirtyRows = 5; // more are painted at once

// False: the object is gone.
bool Emulate(COMCTL& record, const char* bytes, int count) {
    switch (record.nEmulation) {
    case Emulation_TTY:
        TerminalPrint(record, bytes, count);
        return true;
    case Emulation_Ansi:
        return AnsiWrite(record, bytes, count);
    case Emulation_VT52:
        return Vt52Write(record, bytes, count);
    default:
        // Also for no emulation: a screen that was switched off is kept up to date, unseen.
        return Vt100Write(record, bytes, count);
    }
}

} // namespace

void WriteTerminal(COMCTL& record, const char* bytes, int count) {
    if (count <= 0)
        return;
    Capture(record, Capture_Binary, bytes, count);
    if (!Emulate(record, bytes, count))
        return;
    MarkDirtyRow(record);
    AutoScrollTerminal(record, ViewTrigger::Printing);
    if (record.nDirtyFirst + mostDirtyRows < record.nDirtyLast)
        FlushFrame(record);
}

void SwitchEmulation(COMCTL& record, int nEmulation) {
    const int before = record.nEmulation;
    if (nEmulation == before)
        return;
    record.nEmulation = nEmulation;
    if (nEmulation && before)
        return;
    if (nEmulation) {
        RestoreSize(record);
        ResizeTerminal(record, record.nColumns, record.nRows);
        RepaintAll(record, Erase::No);
    } else {
        SizeToIcon(record);
        UpdateScrollBars(record);
        RepaintAll(record, Erase::Yes);
    }
}

bool TerminalReply(COMCTL& record, const char* bytes, int count) {
    if (!record.bPortOpen || count <= 0)
        return false;
    const bool sent = WriteToRing(record, bytes, count);
    if (sent)
        TakeFreshCount(record);
    else
        ReadLineStatus(record);
    return sent;
}
