// Owners of what is borrowed from GDI for the length of a block.
#pragma once

#include <windows.h>

// A context of a window's client area.
class WindowContext {
  public:
    explicit WindowContext(HWND hWnd) : hWnd_(hWnd), dc_(GetDC(hWnd)) {}
    ~WindowContext() { ReleaseDC(hWnd_, dc_); }
    WindowContext(const WindowContext&) = delete;
    WindowContext& operator=(const WindowContext&) = delete;
    operator HDC() const { return dc_; }

  private:
    HWND hWnd_;
    HDC dc_;
};

class SelectedObject {
  public:
    SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), before_(SelectObject(dc, object)) {}
    ~SelectedObject() {
        if (before_)
            SelectObject(dc_, before_);
    }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

  private:
    HDC dc_;
    HGDIOBJ before_; // null: the object is none that can be selected
};

// From begin-paint to end-paint.
class PaintSession {
  public:
    explicit PaintSession(HWND hWnd) : hWnd_(hWnd) { BeginPaint(hWnd, &paint_); }
    ~PaintSession() { EndPaint(hWnd_, &paint_); }
    PaintSession(const PaintSession&) = delete;
    PaintSession& operator=(const PaintSession&) = delete;
    HDC Context() const { return paint_.hdc; }
    const RECT& Rectangle() const { return paint_.rcPaint; }

  private:
    HWND hWnd_;
    PAINTSTRUCT paint_ = {};
};

inline SIZE ClientSize(HWND hWnd) {
    RECT client = {};
    GetClientRect(hWnd, &client);
    return {client.right, client.bottom};
}

inline SIZE OuterSize(HWND hWnd) {
    RECT outer = {};
    GetWindowRect(hWnd, &outer);
    return {outer.right - outer.left, outer.bottom - outer.top};
}
