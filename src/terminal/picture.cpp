#include "picture.h"

#include "caret.h"
#include "gdi.h"
#include "measure.h"
#include "paint.h"

#include <cstdlib>

namespace {

// Frames that follow each other faster are seen by nobody, and a fast line must not wait for them.
constexpr DWORD FrameTime = 15; // ms

bool FrameIsDue(const COMCTL& record) {
    return GetTickCount() - record.dwLastPaint >= FrameTime;
}

void MoveByPictureScroll(COMCTL& record) {
    const int rows = record.nPictureScroll;
    DropPictureScroll(record);
    MovePicture(record, 0, -rows);
    // The band that is validated after painting has no regard to the top row: what has come into view must
    // not be lost with it.
    if (record.nTopRow)
        UpdateWindow(record.hWnd);
}

} // namespace

void PostRepaint(COMCTL& record) {
    if (!record.bRepaintPosted)
        record.bRepaintPosted = PostMessageA(record.hWnd, RepaintMessage, 0, 0);
}

void FlushFrame(COMCTL& record) {
    if (FrameIsDue(record))
        ServeRepaint(record);
}

void OnRepaintRequest(COMCTL& record) {
    if (!record.nEmulation || FrameIsDue(record) || !SetTimer(record.hWnd, RepaintTimer, FrameTime, nullptr))
        ServeRepaint(record);
}

void OnRepaintTimer(COMCTL& record) {
    KillTimer(record.hWnd, RepaintTimer);
    ServeRepaint(record);
}

void RepaintAll(COMCTL& record, Erase erase) {
    DropPictureScroll(record);
    InvalidateRect(record.hWnd, nullptr, erase == Erase::Yes);
    UpdateWindow(record.hWnd);
}

void ServeRepaint(COMCTL& record) {
    record.bRepaintPosted = 0;
    if (!record.nEmulation)
        return;
    if (record.nPictureScroll > 0)
        MoveByPictureScroll(record);
    if (record.nDirtyFirst == record.nDirtyLast)
        return;
    PaintDirtyRows(record);
    PositionCaret(record);
    record.dwLastPaint = GetTickCount();
}

void MovePicture(COMCTL& record, int columns, int rows) {
    const int x = Pixels(columns, record.cxChar);
    const int y = Pixels(rows, record.cyChar);
    const SIZE client = ClientSize(record.hWnd);
    if (std::abs(x) >= client.cx || std::abs(y) >= client.cy)
        InvalidateRect(record.hWnd, nullptr, FALSE);
    else
        ScrollWindow(record.hWnd, x, y, nullptr, nullptr);
}
