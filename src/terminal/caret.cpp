#include "caret.h"

#include "gdi.h"
#include "measure.h"

namespace {

constexpr int caretWidth = 2;   // pixels
constexpr int outOfSight = -10; // pixels, left of the window

int CaretLeft(const COMCTL& record) {
    if (record.nCursorColumn < record.nLeftColumn)
        return outOfSight;
    const WindowContext dc(record.hWnd);
    const SelectedObject font(dc, record.hFont);
    return RowWidth(record, dc, record.nCursorRow, record.nCursorColumn) -
           Pixels(record.nLeftColumn, record.cxChar);
}

} // namespace

void OnSetFocus(COMCTL& record) {
    CreateCaret(record.hWnd, nullptr, caretWidth, record.cyChar);
    record.bCaret = 1;
    PositionCaret(record);
    ShowCaret(record.hWnd);
}

void OnKillFocus(COMCTL& record) {
    HideCaret(record.hWnd);
    DestroyCaret();
    record.bCaret = 0;
}

void PositionCaret(COMCTL& record) {
    if (record.bCaret)
        SetCaretPos(CaretLeft(record), RowTop(record, record.nCursorRow));
}

HiddenCaret::HiddenCaret(const COMCTL& record) : hWnd_(record.bCaret ? record.hWnd : nullptr) {
    if (hWnd_)
        HideCaret(hWnd_);
}

HiddenCaret::~HiddenCaret() {
    if (hWnd_)
        ShowCaret(hWnd_);
}
