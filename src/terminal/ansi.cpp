// The ANSI emulation: every ESC begins a control sequence, whatever the byte behind it.
#include "emulations.h"
#include "sequence.h"
#include "stream.h"

bool AnsiWrite(COMCTL& record, const char* bytes, int count) {
    return SplitStream(record, bytes, count, FindEscape, CollectSequence);
}
