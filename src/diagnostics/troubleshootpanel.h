// The troubleshooter's panel: a band with the heading, and at the side the items that choose a page. It fills
// the frame, and the pages stand on its white part.
#pragma once

#include "troubleshootpaint.h"
#include "windowhook.h"

#include <array>
#include <functional>

enum class TroubleShootPage { Welcome, Ports, Modems, Libraries, Logging, Exit };

inline constexpr int troubleShootItems = 5;
inline constexpr int noItem = -1;

// Pixels of the panel. The frame's template measures them.
RECT TroubleShootItemBox(HWND hFrame, int item);
RECT TroubleShootPageBox(HWND hFrame);

class TroubleShootPanel {
  public:
    using Chosen = std::function<void(TroubleShootPage page)>;

    // Below the frame's other windows.
    void Create(HWND hFrame, Chosen chosen);
    void TakeFocus() { SetFocus(hook.Window()); }

    // By a click or a key: marks the item and tells of it. Exit is told of and never marked.
    void Choose(int item);

  private:
    std::optional<LRESULT> Answer(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnPaint();
    LRESULT OnMouseMove(POINT at);
    bool OnKey(WPARAM key);

    void Paint(HDC dc) const;
    void PaintItem(HDC dc, int item) const;
    void Hover(int item);
    void Repaint(int item) const;
    int ItemAt(POINT at) const;
    int Current() const; // what a key acts on

    WindowHook hook;
    Chosen chosen;
    RECT band = {};
    RECT page = {};
    std::array<RECT, troubleShootItems> boxes = {};
    OwnedFont headingFont;
    OwnedFont itemFont;
    HCURSOR arrow = nullptr;
    HCURSOR hand = nullptr;
    int selected = noItem;
    int hovered = noItem;
};
