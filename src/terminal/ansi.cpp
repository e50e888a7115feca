// The ANSI emulation: every ESC begins a control sequence, whatever the byte behind it.
#include "core/ascii.h"
#include "emulations.h"
#include "screen.h"
#include "sequence.h"

#include <cstring>

bool AnsiWrite(COMCTL& record, const char* bytes, int count) {
    if (!record.lpText)
        return true;
    while (count > 0 && record.lpText) { // a code or the host may free the planes
        if (!record.nEscape) {
            const auto* esc =
                static_cast<const char*>(std::memchr(bytes, ascii::ESC, static_cast<size_t>(count)));
            if (!PrintUpTo(record, bytes, count, esc))
                break;
        } else if (!CollectSequence(record, bytes, count)) {
            return false;
        }
    }
    MarkDirtyRow(record);
    return true;
}
