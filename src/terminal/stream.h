// The loop that all parsers share: text up to an introducer is printed, what is behind it is a sequence.
#pragma once

#include "core/ascii.h"
#include "screen.h"
#include "sequence.h"

#include <cstring>

inline const char* FindEscape(const char* bytes, int count) {
    return static_cast<const char*>(std::memchr(bytes, ascii::ESC, static_cast<size_t>(count)));
}

// Find gives the next introducer in the bytes, or null. GoOn takes bytes into the open sequence and runs it
// when it is complete; false from it means that the object is gone.
template <class Find, class GoOn>
bool SplitStream(COMCTL& record, const char* bytes, int count, Find&& find, GoOn&& goOn) {
    if (!record.lpText)
        return true;
    while (count > 0 && record.lpText) { // a code or the host may free the planes
        if (!record.nEscape) {
            if (!PrintUpTo(record, bytes, count, find(bytes, count)))
                break;
        } else if (!goOn(record, bytes, count)) {
            return false;
        }
    }
    MarkDirtyRow(record);
    return true;
}
