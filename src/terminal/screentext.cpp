#include "screentext.h"

#include "screen.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int largestText = 65535; // bytes; lengths have 16 bits
constexpr char lineEnd[] = {'\r', '\n'};
constexpr int lineEndLength = sizeof lineEnd;

int RowsAsText(const COMCTL& record, int first, int end, char* buffer, int size) {
    const int limit = std::clamp(size, 0, largestText);
    int total = 0;
    for (int row = first; row < end; ++row) {
        const int length = RowLength(record, row);
        if (buffer) {
            if (total + length + lineEndLength >= limit)
                break;
            std::memcpy(buffer + total, TextRow(record, row), static_cast<size_t>(length));
            std::memcpy(buffer + total + length, lineEnd, lineEndLength);
        }
        total = (total + length + lineEndLength) & largestText;
    }
    if (buffer && limit)
        buffer[total] = '\0';
    return total;
}

} // namespace

int ScreenText(const COMCTL& record, char* buffer, int size) {
    if (!record.lpText) {
        if (buffer && size > 0)
            *buffer = '\0';
        return 0;
    }
    return RowsAsText(record, 0, record.nRows, buffer, size);
}

int ScrollText(const COMCTL& record, char* buffer, int size) {
    if (!record.lpScrollText) {
        if (buffer && size > 0)
            *buffer = '\0';
        return 0;
    }
    int first = -record.nScrollRows;
    while (first < 0 && !RowLength(record, first))
        ++first;
    return RowsAsText(record, first, 0, buffer, size);
}
