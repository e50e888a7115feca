#include "sizing.h"

#include "caret.h"
#include "gdi.h"
#include "measure.h"
#include "picture.h"
#include "view.h"

namespace {

bool IsSameSize(const SIZE& a, const SIZE& b) {
    return a.cx == b.cx && a.cy == b.cy;
}

// A window that has the size already is left alone: it would not be told of it either.
void Resize(HWND hWnd, const SIZE& size) {
    SetWindowPos(hWnd, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

SIZE TerminalSize(const COMCTL& record) {
    const int bar = record.nScrollRows > 0 ? GetSystemMetrics(SM_CXVSCROLL) : 0;
    return {Pixels(record.nColumns, record.cxChar) + bar, Pixels(record.nRows, record.cyChar)};
}

// Taken once for all objects.
SIZE IconSize() {
    static const SIZE size = {GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON)};
    return size;
}

} // namespace

void SizeToTerminal(COMCTL& record, HWND hMeasured) {
    if (!record.nEmulation || !record.nAutoSize)
        return;
    const HWND measured = hMeasured ? hMeasured : record.hWnd;
    SIZE wanted = OuterSize(measured);
    if (record.nAutoSize == AutoSize_Terminal)
        wanted = TerminalSize(record);
    else if (const HWND parent = GetParent(measured); parent && record.nAutoSize == AutoSize_Parent)
        wanted = ClientSize(parent);
    if (!IsSameSize(wanted, OuterSize(measured)))
        Resize(record.hWnd, wanted);
}

void SizeToIcon(COMCTL& record) {
    Resize(record.hWnd, IconSize());
}

void RestoreSize(COMCTL& record) {
    Resize(record.hWnd, {record.cxWindow, record.cyWindow});
}

void OnSize(COMCTL& record) {
    if (!record.nEmulation) {
        SizeToIcon(record);
        return;
    }
    SizeToTerminal(record);
    const SIZE size = OuterSize(record.hWnd);
    record.cxWindow = size.cx;
    record.cyWindow = size.cy;
    UpdateScrollBars(record);
}

void SetTerminalFont(COMCTL& record, HFONT hFont) {
    record.hFont = hFont;
    MeasureFont(record);
    UpdateScrollBars(record);
    SizeToTerminal(record);
    RepaintAll(record, Erase::No);
    PositionCaret(record);
}

void MeasureFont(COMCTL& record) {
    const WindowContext dc(record.hWnd);
    const SelectedObject font(dc, record.hFont);
    SIZE size = {};
    GetTextExtentPoint32A(dc, "x", 1, &size);
    record.cxChar = size.cx;
    record.cyChar = size.cy;
}
