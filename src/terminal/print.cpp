// The print routine, in which every emulation ends.
#include "capture.h"
#include "core/ascii.h"
#include "emulations.h"
#include "printrows.h"
#include "screen.h"
#include "terminal.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr int tabWidth = 8;

void NextRow(COMCTL& record) {
    if (record.nCursorRow + 1 < record.nRows)
        ++record.nCursorRow;
    else
        ScrollScreen(record);
}

void BackSpace(COMCTL& record) {
    if (record.nCursorColumn > 0) {
        --record.nCursorColumn;
        if (!record.nBackspace && CursorIsOnScreen(record))
            record.lpText.Data()[CursorCell(record)] = ascii::SP;
    }
    record.bWrapPending = 0;
}

void Tab(COMCTL& record) {
    const int stop = (record.nCursorColumn / tabWidth + 1) * tabWidth;
    record.nCursorColumn = std::min(stop, record.nColumns - 1);
    record.bWrapPending = 0;
}

// Text scrolls one row above the bottom of a region.
void LineFeed(COMCTL& record) {
    MarkDirtyRow(record);
    const int end = record.nScrollBottom ? std::min(record.nScrollBottom, record.nRows) : record.nRows;
    if (record.nCursorRow + 1 < end)
        ++record.nCursorRow;
    else
        ScrollScreen(record);
    record.bWrapPending = 0;
}

void FormFeed(COMCTL& record) {
    ClearScreen(record);
}

void CarriageReturn(COMCTL& record) {
    record.nCursorColumn = 0;
    record.bWrapPending = 0;
}

void ShiftOut(COMCTL& record) {
    if (record.nEmulation == Emulation_VT100)
        record.bLineDraw = 1;
}

void ShiftIn(COMCTL& record) {
    record.bLineDraw = 0;
}

void Drop(COMCTL&) {}

using Control = void (*)(COMCTL& record);

constexpr ControlRow controlRows[] = {
    {ascii::BEL, "BEL", "dropped", Drop},
    {ascii::BS, "BS",
     "left a column, to the first at most; the cell is blanked if the backspace is a destructive one",
     BackSpace},
    {ascii::HT, "HT", "to the next multiple of 8, to the last column at most", Tab},
    {ascii::LF, "LF", "down a row; on the last one, or one above the bottom of a region, scrolls", LineFeed},
    {ascii::FF, "FF", "the screen goes into the scrollback, what is left is blank; cursor to the first place",
     FormFeed},
    {ascii::CR, "CR", "to the first column", CarriageReturn},
    {ascii::SO, "SO", "line drawing on, under VT100 alone", ShiftOut},
    {ascii::SI, "SI", "line drawing off", ShiftIn},
};

constexpr auto controls = [] {
    std::array<Control, 256> table{};
    for (const ControlRow& row : controlRows)
        table[static_cast<BYTE>(row.code)] = row.act;
    return table;
}();

constexpr LineDrawRow lineDrawRows[] = {
    {'a', 177, "shade"},
    {'j', 217, "corner, lower right"},
    {'k', 191, "corner, upper right"},
    {'l', 218, "corner, upper left"},
    {'m', 192, "corner, lower left"},
    {'n', 197, "cross"},
    {'q', 196, "horizontal line"},
    {'t', 195, "tee, to the right"},
    {'u', 180, "tee, to the left"},
    {'v', 193, "tee, upwards"},
    {'w', 194, "tee, downwards"},
    {'x', 179, "vertical line"},
    {'y', '<', "less, for less or equal"},
    {'z', '>', "greater, for greater or equal"},
};

constexpr auto isControl = [] {
    std::array<bool, 256> table{};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = controls[i];
    return table;
}();

constexpr auto asTheyAre = [] {
    std::array<BYTE, 256> table{};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<BYTE>(i);
    return table;
}();

constexpr auto lineDraw = [] {
    auto table = asTheyAre;
    for (const LineDrawRow& row : lineDrawRows)
        table[static_cast<BYTE>(row.code)] = row.glyph;
    return table;
}();

// What the print routine leaves out even where the map gives it.
bool IsDropped(BYTE glyph) {
    return glyph == ascii::NUL || glyph == ascii::BEL;
}

int NextRowAround(const COMCTL& record) {
    return record.nCursorRow == record.nRows - 1 ? 0 : record.nCursorRow + 1;
}

void EndRow(COMCTL& record) {
    MarkDirtyRow(record);
    switch (record.nEndOfLineMode) {
    case EndOfLineMode_NextLine:
        record.bWrapPending = 1;
        record.nCursorColumn = std::max(record.nColumns - 1, 0);
        break;
    case EndOfLineMode_DoNothing:
        record.nCursorColumn = record.nColumns - 1;
        break;
    case EndOfLineMode_WrapLine:
        if (record.nCursorRow == record.nRows - 1)
            record.nCursorRow = 0;
        record.nCursorColumn = 0;
        break;
    case EndOfLineMode_WrapScreen:
        record.nCursorRow = NextRowAround(record);
        record.nCursorColumn = 0;
        break;
    }
}

BYTE PrintAttribute(const COMCTL& record) {
    const auto color = static_cast<BYTE>(record.nColor);
    return record.bReverse ? static_cast<BYTE>(color << 4 | color >> 4) : color;
}

// Stores glyphs from the cursor to the row's end at the most. Returns the bytes used; the first of them is no
// control character.
int PrintInRow(COMCTL& record, const char* bytes, int count) {
    const BYTE* map = record.abCharMap;
    const BYTE* draw = record.bLineDraw ? lineDraw.data() : asTheyAre.data();
    const int start = CursorCell(record);
    char* const text = record.lpText.Data() + start;
    char* const end = text + (record.nColumns - record.nCursorColumn);
    char* place = text;
    const char* next = bytes;
    for (const char* last = bytes + count; next != last && place != end; ++next) {
        const auto byte = static_cast<BYTE>(*next);
        if (isControl[byte])
            break;
        const BYTE glyph = map[draw[byte]];
        if (!IsDropped(glyph))
            *place++ = static_cast<char>(glyph);
    }
    const auto stored = static_cast<int>(place - text);
    const auto used = static_cast<int>(next - bytes);
    if (stored) {
        std::memset(record.lpColor.Data() + start, PrintAttribute(record), static_cast<size_t>(stored));
        record.nCursorColumn += stored;
        MarkDirtyRow(record);
    }
    return used;
}

bool WouldPrint(const COMCTL& record, BYTE byte) {
    return !IsDropped(record.abCharMap[record.bLineDraw ? lineDraw[byte] : byte]);
}

// Returns the bytes used, one at least.
int PrintText(COMCTL& record, const char* bytes, int count) {
    if (!WouldPrint(record, static_cast<BYTE>(*bytes)))
        return 1;
    if (record.bWrapPending) {
        NextRow(record);
        record.nCursorColumn = 0;
        record.bWrapPending = 0;
    }
    const int used = CursorIsOnScreen(record) ? PrintInRow(record, bytes, count) : 1;
    if (record.nCursorColumn >= record.nColumns)
        EndRow(record);
    return used;
}

} // namespace

std::span<const ControlRow> PrintControls() {
    return controlRows;
}

std::span<const LineDrawRow> LineDrawGlyphs() {
    return lineDrawRows;
}

void TerminalPrint(COMCTL& record, const char* bytes, int count) {
    if (!record.lpText || count <= 0)
        return;
    Capture(record, Capture_Standard, bytes, count);
    for (int i = 0; i < count;) {
        if (const Control act = controls[static_cast<BYTE>(bytes[i])]) {
            act(record);
            ++i;
        } else {
            i += PrintText(record, bytes + i, count - i);
        }
    }
}
