#include "measure.h"

#include "screen.h"

int TextWidth(HDC dc, const char* text, int count) {
    SIZE size = {};
    GetTextExtentPoint32A(dc, text, count, &size);
    return size.cx;
}

int RowWidth(const COMCTL& record, HDC dc, int row, int columns) {
    if (!RowExists(record, row))
        return Pixels(columns, record.cxChar);
    return TextWidth(dc, TextRow(record, row), std::clamp(columns, 0, record.nColumns));
}
