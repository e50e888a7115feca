#include "window.h"

#include "capture.h"
#include "caret.h"
#include "core/live.h"
#include "core/rooms.h"
#include "keyboard.h"
#include "mouse.h"
#include "paint.h"
#include "picture.h"
#include "screen.h"
#include "sizing.h"
#include "terminal.h"
#include "view.h"

#include <algorithm>

namespace {

using Answer = std::optional<LRESULT>;

constexpr Answer nothing;

POINT PointOf(LPARAM lParam) {
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

Answer AnswerOf(KeyDone done) {
    return done == KeyDone::Yes ? Answer(0) : nothing;
}

using Handler = Answer (*)(COMCTL& record, WPARAM wParam, LPARAM lParam);

// A handler that wants no parameters and answers 0.
template <void (*Act)(COMCTL& record)>
Answer Plain(COMCTL& record, WPARAM, LPARAM) {
    Act(record);
    return 0;
}

template <void (*Scroll)(COMCTL& record, int code, int position)>
Answer ByBar(COMCTL& record, WPARAM wParam, LPARAM) {
    Scroll(record, LOWORD(wParam), static_cast<short>(HIWORD(wParam)));
    return 0;
}

Answer Paint(COMCTL& record, WPARAM wParam, LPARAM) {
    OnPaint(record, reinterpret_cast<HDC>(wParam));
    return 0;
}

// The object's other timer is its tick.
Answer Timer(COMCTL& record, WPARAM wParam, LPARAM) {
    if (wParam != RepaintTimer)
        return nothing;
    OnRepaintTimer(record);
    return 0;
}

Answer SetFont(COMCTL& record, WPARAM wParam, LPARAM) {
    SetTerminalFont(record, reinterpret_cast<HFONT>(wParam));
    return 0;
}

Answer GetFont(COMCTL& record, WPARAM, LPARAM) {
    return reinterpret_cast<LRESULT>(record.hFont);
}

Answer KeyDown(COMCTL& record, WPARAM wParam, LPARAM) {
    return AnswerOf(OnKeyDown(record, wParam));
}

Answer Char(COMCTL& record, WPARAM wParam, LPARAM) {
    return AnswerOf(OnChar(record, static_cast<char>(wParam)));
}

Answer LeftButtonDown(COMCTL& record, WPARAM wParam, LPARAM lParam) {
    OnLeftButtonDown(record, PointOf(lParam), wParam & MK_SHIFT ? Extend::Yes : Extend::No);
    return 0;
}

Answer MouseMove(COMCTL& record, WPARAM, LPARAM lParam) {
    OnMouseMove(record, PointOf(lParam));
    return 0;
}

struct MessageRow {
    UINT message;
    Handler handler;
};

constexpr MessageRow messageRows[] = {
    {RepaintMessage, Plain<OnRepaintRequest>},
    {WM_TIMER, Timer},
    {WM_PAINT, Paint},
    {WM_KEYDOWN, KeyDown},
    {WM_CHAR, Char},
    {WM_MOUSEMOVE, MouseMove},
    {WM_LBUTTONDOWN, LeftButtonDown},
    {WM_LBUTTONUP, Plain<OnLeftButtonUp>},
    {WM_LBUTTONDBLCLK, Plain<OnLeftDoubleClick>},
    {WM_VSCROLL, ByBar<ScrollVertically>},
    {WM_HSCROLL, ByBar<ScrollHorizontally>},
    {WM_SIZE, Plain<OnSize>},
    {WM_SETFOCUS, Plain<OnSetFocus>},
    {WM_KILLFOCUS, Plain<OnKillFocus>},
    {WM_SETFONT, SetFont},
    {WM_GETFONT, GetFont},
};

void WriteToTerminalOf(HWND hWnd, const void* lpBytes, int cbBytes) {
    if (COMCTL* record = RecordOf(hWnd))
        WriteTerminal(*record, static_cast<const char*>(lpBytes), cbBytes);
}

// The row of this room is filled before any thread can make an object.
[[maybe_unused]] const auto connected = upperRooms.terminalWrite = WriteToTerminalOf;

} // namespace

std::optional<LRESULT> AnswerTerminal(COMCTL& record, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* row = std::ranges::find(messageRows, message, &MessageRow::message);
    return row == std::end(messageRows) ? nothing : row->handler(record, wParam, lParam);
}

void OpenTerminal(COMCTL& record) {
    MeasureFont(record);
    ResizeTerminal(record, record.nColumns, record.nRows);
}

void CloseTerminal(COMCTL& record) {
    EndCapture(record);
}
