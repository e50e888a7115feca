// The terminal under bytes, sizes, switches and settings of the fuzzer's making: its numbers stay in their
// ranges, and its window shows what its planes hold.
#include "terminal/capture.h"
#include "terminalscreen.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

constexpr int mostCells = 4000; // keeps a run quick
constexpr int mostScrollRows = 60;
constexpr char captureName[] = "capture";

void Require(bool condition, int line = __builtin_LINE()) {
    if (condition)
        return;
    std::fprintf(stderr, "not so in line %d\n", line);
    std::abort();
}

struct Session {
    explicit Session(FuzzedDataProvider& bytes)
        : data(bytes),
          screen({bytes.ConsumeIntegralInRange(0, 5), bytes.ConsumeIntegralInRange(1, 100),
                  bytes.ConsumeIntegralInRange(1, 40), bytes.ConsumeIntegralInRange(0, mostScrollRows)}) {}

    FuzzedDataProvider& data;
    TerminalScreen screen;
    bool strayed = false; // an end-of-line mode without a name has been set
    bool reversed = false;

    int Any(int least, int most) { return data.ConsumeIntegralInRange(least, most); }
    HWND Handle() const { return screen.Handle(); }
};

void Bytes(Session& session) {
    const std::string bytes = session.data.ConsumeRandomLengthString(200);
    session.reversed |= bytes.find('M') != std::string::npos;
    session.screen.Feed(bytes);
}

void Contents(Session& session) {
    const std::string bytes = session.data.ConsumeRandomLengthString(200);
    session.reversed |= bytes.find('M') != std::string::npos;
    SetContents(session.Handle(), bytes.data(), static_cast<int>(bytes.size()));
}

void Resize(Session& session) {
    const int columns = session.Any(-1, 300);
    const int rows = session.Any(-1, 300);
    if (columns * rows <= mostCells)
        ResizeTerminal(session.screen.Record(), columns, rows);
}

void Emulate(Session& session) {
    SetEmulation(session.Handle(), session.Any(-1, 5));
}

void ScrollRows(Session& session) {
    SetScrollRows(session.Handle(), session.Any(-1, mostScrollRows));
}

void EndOfLine(Session& session) {
    const int mode = session.Any(-1, 5);
    session.strayed |= mode < EndOfLineMode_NextLine || mode > EndOfLineMode_WrapScreen;
    session.screen.Record().nEndOfLineMode = mode;
}

void Cursor(Session& session) {
    SetCursorRow(session.Handle(), session.Any(-2, 300));
    SetCursorColumn(session.Handle(), session.Any(-2, 300));
}

void CaptureSwitch(Session& session) {
    session.screen.Record().nCaptureMode = session.Any(-1, 3);
    session.screen.world.disk.diskFull = session.data.ConsumeBool();
    if (session.data.ConsumeBool())
        SetCaptureFilename(session.Handle(), session.data.ConsumeBool() ? captureName : nullptr);
}

void Setting(Session& session) {
    COMCTL& record = session.screen.Record();
    record.nBackspace = session.Any(0, 1);
    record.nColor = session.data.ConsumeIntegral<int>();
    record.abCharMap[session.data.ConsumeIntegral<uint8_t>()] = session.data.ConsumeIntegral<uint8_t>();
    record.bPortOpen = session.Any(0, 1);
    session.screen.world.lineTakes = session.data.ConsumeBool();
    session.screen.world.frameIsDue = session.data.ConsumeBool();
}

void Select(Session& session) {
    SetSelectionStart(session.Handle(), session.Any(-1, mostCells));
    SetSelectionLength(session.Handle(), session.Any(-1, mostCells));
}

void Read(Session& session) {
    const int size = session.Any(1, 3000);
    std::vector<char> buffer(static_cast<size_t>(size)); // on the heap, so that a byte too many is seen
    Require(GetContents(session.Handle(), buffer.data(), size) <= std::max(size - 1, 0));
    Require(GetScrollContents(session.Handle(), buffer.data(), size) <= std::max(size - 1, 0));
    Require(GetSelectionText(session.Handle(), buffer.data(), size) <= std::max(size - 1, 0));
}

void Paint(Session& session) {
    session.screen.Repaint();
}

using Step = void (*)(Session& session);
constexpr Step steps[] = {Bytes,     Bytes,  Bytes,         Contents, Resize, Emulate, ScrollRows,
                          EndOfLine, Cursor, CaptureSwitch, Setting,  Select, Read,    Paint};

void RequireRanges(Session& session) {
    const COMCTL& record = session.screen.Record();
    Require(record.nColumns > 0 && record.nRows > 0 && record.nColumns * record.nRows < MaxScreenCells);
    Require(record.nCursorRow >= 0 && record.nCursorRow < record.nRows);
    Require(record.nCursorColumn >= 0 && record.nCursorColumn <= record.nColumns);
    Require(record.nCursorColumn < record.nColumns || session.strayed);
    Require(record.nEscape >= 0 && record.nEscape <= 19);
    Require(record.nDirtyFirst >= 0 && record.nDirtyFirst <= record.nDirtyLast);
    Require(record.nDirtyLast <= record.nRows);
    Require(record.nPictureScroll >= 0);
    Require(!record.nPictureScroll || record.bRepaintPosted || !record.nEmulation);
    Require(record.nScrollTop >= 0 && record.nScrollBottom >= 0);
    Require(record.nScrollRows >= 0);
}

// Every cell of every plane can be read, and the blanks that no text has reached are what a blank is.
void RequirePlanes(const COMCTL& record) {
    Require(static_cast<bool>(record.lpText) == static_cast<bool>(record.lpColor));
    Require(static_cast<bool>(record.lpScrollText) == static_cast<bool>(record.lpScrollColor));
    unsigned sum = 0;
    const int first = record.lpScrollText ? -record.nScrollRows : 0;
    for (int row = first; row < (record.lpText ? record.nRows : 0); ++row)
        for (int column = 0; column < record.nColumns; ++column)
            sum += static_cast<BYTE>(TextRow(record, row)[column]) + ColorRow(record, row)[column];
    volatile unsigned read = sum;
    static_cast<void>(read);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzedDataProvider data(bytes, size);
    Session session(data);
    while (data.remaining_bytes()) {
        steps[data.ConsumeIntegralInRange<size_t>(0, std::size(steps) - 1)](session);
        RequireRanges(session);
    }
    RequirePlanes(session.screen.Record());
    if (session.screen.Record().nEmulation && !session.reversed)
        Require(session.screen.PictureIsRight());
    SetCaptureFilename(session.Handle(), nullptr);
    Require(session.screen.world.disk.OpenFiles() == 0);
    return 0;
}
