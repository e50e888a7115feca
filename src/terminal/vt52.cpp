// The VT52 emulation. A code is three bytes long: ESC, a byte that is never looked at, the letter. So "ESC [
// A", which this terminal's own arrow keys send, moves up as well.
#include "codes.h"
#include "core/ascii.h"
#include "core/live.h"
#include "emulations.h"
#include "replies.h"
#include "screen.h"
#include "sequence.h"
#include "stream.h"
#include "terminal.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int codeLength = 3;
constexpr int addressLength = 5; // with row and column
constexpr char directAddress = 'Y';
constexpr char identify = 'Z';

void Up(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorRow = std::max(record.nCursorRow - 1, 0);
}

void Down(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorRow = std::min(record.nCursorRow + 1, record.nRows - 1);
}

void Right(COMCTL& record) {
    record.nCursorColumn = std::min(record.nCursorColumn + 1, record.nColumns - 1);
}

void Left(COMCTL& record) {
    record.nCursorColumn = std::max(record.nCursorColumn - 1, 0);
}

void Home(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorRow = 0;
    record.nCursorColumn = 0;
}

void EraseToEndOfScreen(COMCTL& record) {
    BlankCells(record, CursorCell(record), record.nRows * record.nColumns);
    RepaintScreen(record);
}

void EraseToEndOfLine(COMCTL& record) {
    MarkDirtyRow(record); // a pending wrap may leave the row before the run ends
    BlankCells(record, CursorCell(record), (record.nCursorRow + 1) * record.nColumns);
}

void Identify(COMCTL& record) {
    TerminalReply(record, replies::CutAttributes, static_cast<int>(sizeof replies::CutAttributes) - 1);
}

constexpr CodeRow rows[] = {
    {'A', "cursor up", "up a row, to the first at most", Up},
    {'B', "cursor down", "down a row, to the last at most", Down},
    {'C', "cursor right", "right a column, to the last at most", Right},
    {'D', "cursor left", "left a column, to the first at most", Left},
    {'H', "cursor to home", "to the first row and column", Home},
    {'I', "reverse line feed", "up a row, to the first at most; nothing scrolls", Up},
    {'J', "erase to end of screen", "from the cursor on", EraseToEndOfScreen},
    {'K', "erase to end of line", "from the cursor on", EraseToEndOfLine},
    // Row and column are read and every value of them leads to the first place: kept so, see the tests.
    {directAddress, "direct cursor address", "two more bytes, then to the first row and column", Home},
    {identify, "identify", "answer ESC [ ? 1 ; 2 ;", Identify},
};

// False: the object is gone.
bool RunCode(COMCTL& record) {
    const CodeRow* row = FindCode(rows, record.szEscape[codeLength - 1]);
    record.nEscape = 0;
    if (!row)
        return true;
    const ObjectWatch watch(record);
    row->act(record);
    return watch.Alive();
}

// True when all bytes of the open code are there.
bool Complete(COMCTL& record, const char*& bytes, int& count) {
    return CollectUntil(record, bytes, count, codeLength) &&
           (record.szEscape[codeLength - 1] != directAddress ||
            CollectUntil(record, bytes, count, addressLength));
}

// False: the object is gone.
bool GoOnWithCode(COMCTL& record, const char*& bytes, int& count) {
    return !Complete(record, bytes, count) || RunCode(record);
}

} // namespace

std::span<const CodeRow> Vt52Codes() {
    return rows;
}

bool Vt52Write(COMCTL& record, const char* bytes, int count) {
    return SplitStream(record, bytes, count, FindEscape, GoOnWithCode);
}
