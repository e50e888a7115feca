// A comm object with its terminal on, in a window of a known size, and a bitmap to paint it on.
#pragma once

#include "support/host.h"

#include "core/comctl.h"
#include "core/live.h"
#include "terminal/screen.h"
#include "terminal/terminal.h"

#include <cstring>
#include <string>
#include <vector>

namespace host {

class TerminalObject : public CommObject {
  public:
    explicit TerminalObject(int emulation = Emulation_Ansi) {
        SetScrollBarWindows();
        SendMessageA(*this, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)), 0);
        SetEmulation(*this, emulation);
    }
    ~TerminalObject() {
        DestroyWindow(vertical_);
        DestroyWindow(horizontal_);
    }

    COMCTL& Record() const { return *RecordOf(*this); }

    // The window shows so many cells, and some pixels more.
    void ShowCells(int columns, int rows, int morePixels = 0) {
        SetWindowPos(*this, nullptr, 0, 0, columns * Record().cxChar + morePixels,
                     rows * Record().cyChar + morePixels, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    void ShowScreen(int morePixels = 0) { ShowCells(Record().nColumns, Record().nRows, morePixels); }

    void PutText(int row, int column, const std::string& text) {
        std::memcpy(const_cast<char*>(TextRow(Record(), row)) + column, text.data(), text.size());
    }
    void PutColors(int row, int column, const std::vector<BYTE>& colors) {
        std::memcpy(const_cast<BYTE*>(ColorRow(Record(), row)) + column, colors.data(), colors.size());
    }

    // Bars of their own leave the window's client area alone.
    HWND VerticalBar() const { return vertical_; }
    HWND HorizontalBar() const { return horizontal_; }

  private:
    static HWND MakeBar(DWORD style) {
        return CreateWindowExA(0, "SCROLLBAR", "", WS_POPUP | style, 0, 0, 20, 100, nullptr, nullptr, nullptr,
                               nullptr);
    }
    void SetScrollBarWindows() {
        SetVScrollBar(*this, vertical_);
        SetHScrollBar(*this, horizontal_);
    }
    HWND vertical_ = MakeBar(SBS_VERT);
    HWND horizontal_ = MakeBar(SBS_HORZ);
};

// A bitmap in memory, full of a colour that no terminal has.
class Canvas {
  public:
    static constexpr COLORREF Untouched = RGB(1, 2, 3);

    Canvas(int width, int height) : width_(width), height_(height), dc_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, nullptr, nullptr, 0);
        before_ = SelectObject(dc_, bitmap_);
        Clear();
    }
    ~Canvas() {
        SelectObject(dc_, before_);
        DeleteObject(bitmap_);
        DeleteDC(dc_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    operator HDC() const { return dc_; }
    int Width() const { return width_; }
    int Height() const { return height_; }

    void Clear() { Fill({0, 0, width_, height_}, Untouched); }
    void Fill(const RECT& area, COLORREF color) {
        const HBRUSH brush = CreateSolidBrush(color);
        FillRect(dc_, &area, brush);
        DeleteObject(brush);
    }

    int Count(const RECT& area, COLORREF color) const {
        int count = 0;
        for (LONG y = area.top; y < area.bottom; ++y)
            for (LONG x = area.left; x < area.right; ++x)
                count += GetPixel(dc_, x, y) == color;
        return count;
    }
    bool IsAll(const RECT& area, COLORREF color) const {
        return Count(area, color) == (area.right - area.left) * (area.bottom - area.top);
    }
    bool Has(const RECT& area, COLORREF color) const { return Count(area, color) > 0; }

  private:
    int width_;
    int height_;
    HDC dc_;
    HBITMAP bitmap_;
    HGDIOBJ before_;
};

// Where a cell of the window stands, for a font of one width.
inline RECT CellArea(const COMCTL& record, int column, int row) {
    const LONG x = column * record.cxChar;
    const LONG y = row * record.cyChar;
    return {x, y, x + record.cxChar, y + record.cyChar};
}

} // namespace host
