// The VT100 emulation: control sequences as ANSI has them, character sets, and codes of one byte.
#include "codes.h"
#include "core/ascii.h"
#include "emulations.h"
#include "picture.h"
#include "screen.h"
#include "sequence.h"
#include "stream.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr char csi8 = '\x9B'; // ESC and "[" in one byte
constexpr std::string_view threeByteCodes = "#()";
constexpr char selectG0 = '(';
constexpr char lineDrawing = '0';

void Save(COMCTL& record) {
    KeepCursor(record);
    record.nSavedColor = record.nColor;
}

void Restore(COMCTL& record) {
    RestoreSavedCursor(record);
    record.nColor = record.nSavedColor;
}

void SetKeypadNumeric(COMCTL& record) {
    record.bKeypadNumeric = 1;
}

void ClearKeypadNumeric(COMCTL& record) {
    record.bKeypadNumeric = 0;
}

void Index(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorRow = std::max(record.nCursorRow - 1, 0);
    record.nCursorColumn = 0;
}

void NextLine(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorRow = std::min(record.nCursorRow + 1, record.nRows - 1);
    record.nCursorColumn = 0;
}

// Moves the rows down; the first one stays as it is, so that its text stands twice.
void ScrollDown(COMCTL& record) {
    const size_t columns = static_cast<size_t>(record.nColumns);
    const size_t moved = static_cast<size_t>(record.nRows - 1) * columns;
    if (record.nRows > 1) {
        std::memmove(record.lpText.Row(1), record.lpText.Data(), moved);
        std::memmove(record.lpColor.Row(1), record.lpColor.Data(), moved);
    }
    BlankCells(record, (record.nRows - 1) * record.nColumns, record.nRows * record.nColumns);
}

// The picture goes up although the rows go down, and a region scrolls forward: kept so, see the tests.
void ReverseScroll(COMCTL& record) {
    ServeRepaint(record);
    PushHistory(record, 1);
    if (HasRegion(record)) {
        ScrollRegion(record);
        return;
    }
    ScrollDown(record);
    ScrollPictureUp(record);
}

constexpr CodeRow rows[] = {
    {'7', "DECSC", "save cursor and colour", Save},
    {'8', "DECRC", "restore cursor and colour", Restore},
    {'=', "DECKPAM", "the keypad sends its digits", SetKeypadNumeric},
    {'>', "DECKPNM", "the keypad sends codes", ClearKeypadNumeric},
    {'D', "IND", "up a row, to the first at most, and to the first column; nothing scrolls", Index},
    {'E', "NEL", "down a row, to the last at most, and to the first column; nothing scrolls", NextLine},
    {'M', "RI",
     "scrolls, wherever the cursor is: without a region all but the first row move down, in a region "
     "the rows move up",
     ReverseScroll},
};

void RunCode(COMCTL& record) {
    const CodeRow* row = FindCode(rows, record.szEscape[1]);
    record.nEscape = 0;
    if (row)
        row->act(record);
}

void RunThreeByteCode(COMCTL& record) {
    if (record.szEscape[1] == selectG0)
        record.bLineDraw = record.szEscape[2] == lineDrawing;
    record.nEscape = 0;
}

bool IsControlSequence(const COMCTL& record) {
    return record.szEscape[0] == csi8 || record.szEscape[1] == '[';
}

const char* Find(char c, const char* bytes, const char* end) {
    return static_cast<const char*>(std::memchr(bytes, c, static_cast<size_t>(end - bytes)));
}

// The next of the two introducers; where the next ESC stands is kept from call to call, so that no byte is
// looked at over and over.
class IntroducerFinder {
  public:
    const char* Next(const char* bytes, int count) {
        const char* end = bytes + count;
        if (!escape_ || escape_ < bytes)
            escape_ = OrEnd(Find(ascii::ESC, bytes, end), end);
        const char* found = OrEnd(Find(csi8, bytes, escape_), escape_);
        return found == end ? nullptr : found;
    }

  private:
    static const char* OrEnd(const char* found, const char* end) { return found ? found : end; }

    const char* escape_ = nullptr;
};

// False: the object is gone.
bool GoOnWithSequence(COMCTL& record, const char*& bytes, int& count) {
    if (!CollectUntil(record, bytes, count, 2))
        return true;
    if (IsControlSequence(record))
        return !count || CollectSequence(record, bytes, count);
    if (threeByteCodes.find(record.szEscape[1]) == std::string_view::npos)
        RunCode(record);
    else if (CollectUntil(record, bytes, count, 3))
        RunThreeByteCode(record);
    return true;
}

} // namespace

std::span<const CodeRow> Vt100Codes() {
    return rows;
}

bool Vt100Write(COMCTL& record, const char* bytes, int count) {
    auto find = [introducers = IntroducerFinder()](const char* from, int length) mutable {
        return introducers.Next(from, length);
    };
    return SplitStream(record, bytes, count, find, GoOnWithSequence);
}
