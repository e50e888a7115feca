// Between cells and pixels. Widths are those of real text, so that proportional fonts come out right.
#pragma once

#include "core/comctl.h"

#include <algorithm>

// Whether the planes hold this row of screen or scrollback.
inline bool RowExists(const COMCTL& record, int row) {
    return row < 0 ? record.lpScrollText && row >= -record.nScrollRows : record.lpText && row < record.nRows;
}

// A product of cells and their size, held so far inside an int that sums of it stay there too.
inline int Pixels(long long cells, int size) {
    constexpr long long limit = 1 << 29;
    return static_cast<int>(std::clamp(std::clamp(cells, -limit, limit) * size, -limit, limit));
}

// The upper edge of a row, in pixels from the top of the window.
inline int RowTop(const COMCTL& record, int row) {
    return Pixels(static_cast<long long>(row) - record.nTopRow, record.cyChar);
}

int TextWidth(HDC dc, const char* text, int count);

// The width of a row's first characters on a context with the terminal's font.
int RowWidth(const COMCTL& record, HDC dc, int row, int columns);
