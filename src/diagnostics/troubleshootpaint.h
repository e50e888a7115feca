// What the troubleshooter's parts draw with: colors, fonts, and the rows of its lists.
#pragma once

#include "core/handle.h"
#include "troubleshootrows.h"

#include <windows.h>

#include <optional>

inline constexpr COLORREF pageColor = 0xFFFFFF;
inline constexpr COLORREF pageTextColor = 0x000000;

struct FontPolicy {
    using Value = HFONT;
    static Value Invalid() { return nullptr; }
    static void Close(Value value) { DeleteObject(value); }
};
using OwnedFont = UniqueHandle<FontPolicy>;

// What is selected into a context meanwhile goes out of it at the end.
class SavedContext {
  public:
    explicit SavedContext(HDC dc) : dc_(dc), state_(SaveDC(dc)) {}
    ~SavedContext() { RestoreDC(dc_, state_); }
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;

  private:
    HDC dc_;
    int state_;
};

void FillBox(HDC dc, const RECT& box, COLORREF color);

// A page is white whatever the system's colors are: the answer when one of its controls asks for a brush.
std::optional<LRESULT> PageColors(UINT uMsg, WPARAM wParam);

struct Span {
    int left;
    int right;
};

// Pixels count from the left of the row, which may be scrolled out of the list.
class RowPainter {
  public:
    // With the list's font.
    explicit RowPainter(HWND hList);

    int Height() const;
    int Width(const TroubleShootRow& row) const;
    std::optional<Span> LinkSpan(const TroubleShootRow& row) const;
    void Draw(const DRAWITEMSTRUCT& item, const TroubleShootRow& row) const;

  private:
    struct Run {
        std::string text;
        HFONT font;
        COLORREF color;
    };
    std::vector<Run> RunsOf(const TroubleShootRow& row) const;

    HFONT plain; // the list's
    OwnedFont bold;
    OwnedFont link;
};
