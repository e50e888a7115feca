#include "terminaldouble.h"

#include "core/output.h"
#include "core/portstatus.h"
#include "core/ticksource.h"
#include "diagnostics/wiretap.h"
#include "terminal/caret.h"
#include "terminal/clipboard.h"
#include "terminal/paint.h"
#include "terminal/picture.h"
#include "terminal/sizing.h"
#include "terminal/view.h"

#include <algorithm>

namespace {

TerminalDouble* present;

void Enter(const char* entry) {
    if (present)
        present->journal.push_back(entry);
}

void RunHost() {
    if (present && present->onSent)
        present->onSent();
}

std::string CellsOf(const char* cells, int columns) {
    return {cells, static_cast<size_t>(columns)};
}

std::string CellsOf(const BYTE* cells, int columns) {
    return CellsOf(reinterpret_cast<const char*>(cells), columns);
}

void MovePictureUp(std::vector<std::string>& rows, int count) {
    const auto moved = std::min(static_cast<size_t>(count), rows.size());
    std::rotate(rows.begin(), rows.begin() + static_cast<ptrdiff_t>(moved), rows.end());
}

void PaintRow(const COMCTL& record, Picture& picture, int row) {
    const auto index = static_cast<size_t>(row);
    if (!record.lpText || row < 0 || row >= record.nRows || index >= picture.text.size())
        return;
    picture.text[index] = CellsOf(record.lpText.Row(row), record.nColumns);
    picture.color[index] = CellsOf(record.lpColor.Row(row), record.nColumns);
}

} // namespace

Picture PlanesOf(const COMCTL& record) {
    Picture planes;
    if (!record.lpText)
        return planes;
    for (int row = 0; row < record.nRows; ++row) {
        planes.text.push_back(CellsOf(record.lpText.Row(row), record.nColumns));
        planes.color.push_back(CellsOf(record.lpColor.Row(row), record.nColumns));
    }
    return planes;
}

TerminalDouble::TerminalDouble() {
    present = this;
}

TerminalDouble::~TerminalDouble() {
    present = nullptr;
}

void TerminalDouble::Forget() {
    journal.clear();
    messages.clear();
    debugTexts.clear();
    sent.clear();
    disk.journal.clear();
}

// The picture, with the rules of the real one for what is dirty.

void PostRepaint(COMCTL& record) {
    if (record.bRepaintPosted)
        return;
    record.bRepaintPosted = 1;
    Enter("post");
}

void FlushFrame(COMCTL& record) {
    Enter("flush");
    if (!present || present->frameIsDue)
        ServeRepaint(record);
}

void RepaintAll(COMCTL& record, Erase erase) {
    Enter(erase == Erase::Yes ? "erase all" : "paint all");
    DropPictureScroll(record);
    if (present)
        present->picture = PlanesOf(record);
}

void ServeRepaint(COMCTL& record) {
    record.bRepaintPosted = 0;
    if (!record.nEmulation)
        return;
    if (present) {
        MovePictureUp(present->picture.text, record.nPictureScroll);
        MovePictureUp(present->picture.color, record.nPictureScroll);
        for (int row = record.nDirtyFirst; row < std::min(record.nDirtyLast, record.nRows); ++row)
            PaintRow(record, present->picture, row);
    }
    record.nPictureScroll = 0;
    record.nDirtyFirst = 0;
    record.nDirtyLast = 0;
}

void PaintRowsNow(COMCTL&, int first, int last) {
    Enter(("paint " + std::to_string(first) + " to " + std::to_string(last)).c_str());
}

void PaintTerminal(COMCTL&, HDC, int first, int count) {
    Enter(("print " + std::to_string(first) + " count " + std::to_string(count)).c_str());
}

bool CopySelection(COMCTL&) {
    Enter("copy");
    return true;
}

// The window's size, its view and its caret

void AutoScrollTerminal(COMCTL&, ViewTrigger trigger) {
    Enter(("follow " + std::to_string(static_cast<int>(trigger))).c_str());
}

void UpdateScrollBars(COMCTL&) {
    Enter("scroll bars");
}

void PositionCaret(COMCTL&) {
    Enter("caret");
}

void SizeToTerminal(COMCTL&, HWND) {
    Enter("size");
}

void SizeToIcon(COMCTL&) {
    Enter("icon");
}

void RestoreSize(COMCTL&) {
    Enter("restore size");
}

// The line

bool WriteToRing(COMCTL&, const void* lpBytes, int cbBytes) {
    if (!present || !present->lineTakes)
        return false;
    present->sent.append(static_cast<const char*>(lpBytes), static_cast<size_t>(cbBytes));
    Enter("sent");
    return true;
}

void TakeFreshCount(COMCTL&) {
    Enter("fresh count");
    RunHost();
}

LineCounts ReadLineStatus(COMCTL&) {
    Enter("line status");
    RunHost();
    return {};
}

void SetUpTick(COMCTL&) {
    Enter("tick");
}

// The log

void TARNAPI WireTapMsg(HWND, int, const char* szText, const void*, DWORD) {
    if (present)
        present->messages.emplace_back(szText);
}

void WINAPI OutputDebugStringA(LPCSTR text) {
    if (present)
        present->debugTexts.emplace_back(text);
}
