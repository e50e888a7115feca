#include "sequence.h"

#include "core/ascii.h"
#include "core/live.h"
#include "diagnostics/wiretap.h"
#include "emulations.h"
#include "rendition.h"
#include "replies.h"
#include "screen.h"
#include "terminal.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr char separator = ';';
constexpr char privateMark = '?';
constexpr int wideColumns = 132;
constexpr int narrowColumns = 80;

// Every byte that ends a sequence, whether it has a row or not.
constexpr std::string_view finals = "ABCDEFGHIJKLMPSUXYZ<=>@fmncqsrulh";

enum class ByteKind : BYTE { Inside, Control, Final };

constexpr auto kinds = [] {
    std::array<ByteKind, 256> table{};
    for (size_t i = 0; i < static_cast<size_t>(ascii::SP); ++i)
        table[i] = ByteKind::Control;
    for (const char final : finals)
        table[static_cast<BYTE>(final)] = ByteKind::Final;
    return table;
}();

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

int Count(const COMCTL& record) {
    return SequenceParam(record, 0, 1);
}

int Mode(const COMCTL& record) {
    return SequenceParam(record, 0, 0);
}

// Adds without leaving the range of the numbers.
int Advance(int position, int count, int last) {
    return count > last - position ? last : position + count;
}

int Retreat(int position, int count) {
    return std::max(position - count, 0);
}

void CursorUp(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorRow = Retreat(record.nCursorRow, Count(record));
    record.bWrapPending = 0;
}

void CursorDown(COMCTL& record) {
    MarkDirtyRow(record);
    record.nCursorRow = Advance(record.nCursorRow, Count(record), record.nRows - 1);
    record.bWrapPending = 0;
}

void CursorForward(COMCTL& record) {
    record.nCursorColumn = Advance(record.nCursorColumn, Count(record), record.nColumns - 1);
    record.bWrapPending = 0;
}

void CursorBackward(COMCTL& record) {
    record.nCursorColumn = Retreat(record.nCursorColumn, Count(record));
    record.bWrapPending = 0;
}

void MoveCursor(COMCTL& record, int row, int column) {
    if (row != record.nCursorRow)
        MarkDirtyRow(record);
    record.nCursorRow = row;
    record.nCursorColumn = column;
}

void CursorPosition(COMCTL& record) {
    const int row = std::max(SequenceParam(record, 0, 1), 1) - 1;
    const int column = std::max(SequenceParam(record, 1, 1), 1) - 1;
    if (row < record.nRows && column < record.nColumns)
        MoveCursor(record, row, column);
    record.bWrapPending = 0;
}

void EraseInDisplay(COMCTL& record) {
    switch (Mode(record)) {
    case 1:
        BlankCells(record, 0, CursorCell(record));
        break;
    case 2:
        ClearScreen(record);
        return;
    default:
        BlankCells(record, CursorCell(record), record.nRows * record.nColumns);
        break;
    }
    RepaintScreen(record);
    record.bWrapPending = 0;
}

void EraseInLine(COMCTL& record) {
    const int start = record.nCursorRow * record.nColumns;
    switch (Mode(record)) {
    case 1:
        BlankCells(record, start, CursorCell(record));
        break;
    case 2:
        BlankCells(record, start, start + record.nColumns);
        record.nCursorColumn = 0;
        break;
    default:
        BlankCells(record, CursorCell(record), start + record.nColumns);
        break;
    }
    record.bWrapPending = 0;
}

void SaveCursor(COMCTL& record) {
    KeepCursor(record);
    record.bWrapPending = 0;
}

void RestoreCursor(COMCTL& record) {
    RestoreSavedCursor(record);
    record.bWrapPending = 0;
}

template <size_t Size>
void Reply(COMCTL& record, const char (&text)[Size]) {
    TerminalReply(record, text, static_cast<int>(Size) - 1);
}

void ReportAttributes(COMCTL& record) {
    if (!Mode(record))
        Reply(record, replies::DeviceAttributes);
}

void ReportStatus(COMCTL& record) {
    switch (Mode(record)) {
    case 5:
        Reply(record, replies::Ready);
        return;
    case 6: {
        char text[32];
        const int length = std::snprintf(text, sizeof text, replies::CursorPosition, record.nCursorRow,
                                         record.nCursorColumn);
        TerminalReply(record, text, length);
        return;
    }
    default:
        Reply(record, replies::CutAttributes);
    }
}

void ClearRegion(COMCTL& record) {
    record.nScrollTop = 0;
    record.nScrollBottom = 0;
}

template <int Columns>
void SetWidth(COMCTL& record) {
    ClearRegion(record);
    ResizeTerminal(record, Columns, record.nRows);
}

template <int COMCTL::*Flag, int Value>
void SetFlag(COMCTL& record) {
    record.*Flag = Value;
}

struct ModeRow {
    std::string_view text;
    void (*act)(COMCTL& record);
};

// Only these texts, as they stand: a sequence that names two modes matches nothing.
constexpr ModeRow modeRows[] = {
    {"12h", SetFlag<&COMCTL::bEcho, 0>},
    {"12l", SetFlag<&COMCTL::bEcho, 1>},
    {"?3h", SetWidth<wideColumns>},
    {"?3l", SetWidth<narrowColumns>},
    {"?6h", SetFlag<&COMCTL::bOriginMode, 1>},
    {"?6l", SetFlag<&COMCTL::bOriginMode, 0>},
};

void SetMode(COMCTL& record) {
    const std::string_view text = SequenceText(record);
    for (const ModeRow& row : modeRows)
        if (row.text == text)
            return row.act(record);
}

void SetScrollRegion(COMCTL& record) {
    const int top = SequenceParam(record, 0, 0);
    const int bottom = SequenceParam(record, 1, 0);
    record.bWrapPending = 0;
    if (!top || !bottom)
        return ClearRegion(record);
    if (bottom >= record.nRows)
        return;
    record.nScrollTop = top - 1;
    record.nScrollBottom = bottom - 1;
    if (record.nCursorRow < record.nScrollTop || record.nCursorRow >= record.nScrollBottom)
        MoveCursor(record, std::min(record.nScrollTop, record.nRows - 1), 0);
}

constexpr FinalRow rows[] = {
    {'@', "ICH", "", "ignored", nullptr},
    {'A', "CUU", "n = 1", "cursor up n rows, to the first at most", CursorUp},
    {'B', "CUD", "n = 1", "cursor down n rows, to the last at most", CursorDown},
    {'C', "CUF", "n = 1", "cursor right n columns, to the last at most", CursorForward},
    {'D', "CUB", "n = 1", "cursor left n columns, to the first at most", CursorBackward},
    {'H', "CUP", "row = 1; column = 1", "cursor to a place; one beyond the screen is ignored",
     CursorPosition},
    {'J', "ED", "mode = 0",
     "erase: 1 up to the cursor, 2 all, with the screen kept in the scrollback, else from "
     "the cursor on",
     EraseInDisplay},
    {'K', "EL", "mode = 0", "erase in the row: 1 up to the cursor, 2 all, else from the cursor on",
     EraseInLine},
    {'P', "DCH", "", "ignored", nullptr},
    {'S', "SCOSC", "", "save the cursor's place", SaveCursor},
    {'U', "SCORC", "", "restore the cursor's place", RestoreCursor},
    {'X', "ECH", "", "ignored", nullptr},
    {'c', "DA", "n = 0", "0: answer ESC [ ? 1 ; 2 c", ReportAttributes},
    {'f', "HVP", "row = 1; column = 1", "the same as CUP", CursorPosition},
    {'h', "SM", "mode", "12 no local echo, ?3 132 columns, ?6 origin mode, stored only", SetMode},
    {'l', "RM", "mode", "12 local echo, ?3 80 columns, ?6 origin mode off", SetMode},
    {'m', "SGR", "list", "colours and flags, see below", RunRendition},
    {'n', "DSR", "n = 0",
     "5 answer ESC [ 0 n; 6 answer the cursor's place, counted from 0; else ESC [ ? 1 ; 2 ;", ReportStatus},
    {'r', "DECSTBM", "top = 0; bottom = 0", "scroll region, above the last row; 0 clears it",
     SetScrollRegion},
    {'s', "SCOSC", "", "save the cursor's place", SaveCursor},
    {'u', "SCORC", "", "restore the cursor's place", RestoreCursor},
};

constexpr auto rowOfFinal = [] {
    std::array<const FinalRow*, 256> table{};
    for (const FinalRow& row : rows)
        table[static_cast<BYTE>(row.final)] = &row;
    return table;
}();

// An answer can raise an event, and the host may do anything in it.
bool AnswersTheLine(const FinalRow& row) {
    return row.act == ReportStatus || row.act == ReportAttributes;
}

void ReportUnhandled(const COMCTL& record, char final) {
    char text[64];
    std::snprintf(text, sizeof text, "Unhandled character: %c\r\n", final);
    WireTapMsg(record.hWnd, WireTapText, text, nullptr, 0);
    OutputDebugStringA(text);
}

} // namespace

std::span<const FinalRow> SequenceFinals() {
    return rows;
}

int ScanForFinal(const char* bytes, int count) {
    for (int i = 0; i < count; ++i)
        switch (kinds[static_cast<BYTE>(bytes[i])]) {
        case ByteKind::Inside:
            break;
        case ByteKind::Control:
            return i;
        case ByteKind::Final:
            return i + 1;
        }
    return 0;
}

const char* SequenceText(const COMCTL& record) {
    return record.szEscape + (record.szEscape[0] == ascii::ESC ? 2 : 1);
}

int SequenceParam(const COMCTL& record, int index, int fallback) {
    const char* place = index ? record.szEscape : SequenceText(record);
    if (*place == privateMark)
        ++place;
    for (; index; --index) {
        while (*place && *place != separator)
            ++place;
        if (!*place++)
            return fallback;
    }
    if (!IsDigit(*place))
        return fallback;
    long long number = 0;
    for (; IsDigit(*place); ++place)
        number = std::min<long long>(number * 10 + (*place - '0'), INT_MAX);
    return static_cast<int>(number);
}

bool RunSequence(COMCTL& record) {
    if (record.nEscape <= 0)
        return true;
    record.szEscape[record.nEscape] = '\0';
    const char final = record.szEscape[record.nEscape - 1];
    record.nEscape = 0;
    if (!CursorIsOnScreen(record))
        return true;
    const FinalRow* row = rowOfFinal[static_cast<BYTE>(final)];
    if (!row) {
        ReportUnhandled(record, final);
        return true;
    }
    if (!row->act)
        return true;
    if (!AnswersTheLine(*row)) {
        row->act(record);
        return true;
    }
    const ObjectWatch watch(record);
    row->act(record);
    return watch.Alive();
}

void OpenSequence(COMCTL& record, char introducer) {
    record.szEscape[0] = introducer;
    record.nEscape = 1;
}

void AppendToSequence(COMCTL& record, const char*& bytes, int& count, int take) {
    std::memcpy(record.szEscape + record.nEscape, bytes, static_cast<size_t>(take));
    record.nEscape += take;
    bytes += take;
    count -= take;
}

bool CollectUntil(COMCTL& record, const char*& bytes, int& count, int length) {
    for (; record.nEscape < length && count > 0; --count)
        record.szEscape[record.nEscape++] = *bytes++;
    return record.nEscape >= length;
}

bool CollectSequence(COMCTL& record, const char*& bytes, int& count) {
    const int taken = ScanForFinal(bytes, count);
    if (!taken) {
        // Too much for one sequence: what came is lost, and the sequence waits for what comes next.
        if (record.nEscape + count < SequenceLimit)
            AppendToSequence(record, bytes, count, count);
        count = 0;
        return true;
    }
    if (record.nEscape + taken < SequenceLimit) {
        AppendToSequence(record, bytes, count, taken);
        return RunSequence(record);
    }
    record.nEscape = 0;
    bytes += taken;
    count -= taken;
    return true;
}

bool PrintUpTo(COMCTL& record, const char*& bytes, int& count, const char* introducer) {
    if (!introducer) {
        TerminalPrint(record, bytes, count);
        count = 0;
        return false;
    }
    const int before = static_cast<int>(introducer - bytes);
    TerminalPrint(record, bytes, before);
    bytes = introducer + 1;
    count -= before + 1;
    OpenSequence(record, *introducer);
    return true;
}
