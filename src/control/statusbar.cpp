#include "statusbar.h"

#include "terminal/gdi.h"
#include "terminal/measure.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr UINT identifier = 1000;
constexpr int room = 20; // around the port's name, in pixels
constexpr int toTheEnd = -1;

enum Pane : WPARAM {
    StatusPane,
    PortPane,
};

int WidthIn(HWND bar, const char* text) {
    const WindowContext context(bar);
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(bar, WM_GETFONT, 0, 0));
    const SelectedObject selected(context, font ? font : GetStockObject(SYSTEM_FONT));
    return TextWidth(context, text, static_cast<int>(std::strlen(text)));
}

} // namespace

HWND CreateStatusBar(HWND parent) {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
    return CreateStatusWindowA(WS_CHILD | WS_VISIBLE, "", parent, identifier);
}

void ShowStatus(HWND bar, int width, const wchar_t* status, const char* port) {
    int ends[] = {std::max(width - WidthIn(bar, port) - room, 0), toTheEnd};
    SendMessageA(bar, SB_SETPARTS, std::size(ends), reinterpret_cast<LPARAM>(ends));
    SendMessageA(bar, SB_SIMPLE, FALSE, 0);
    SendMessageA(bar, SB_SETTEXTW, StatusPane, reinterpret_cast<LPARAM>(status));
    SendMessageA(bar, SB_SETTEXTA, PortPane, reinterpret_cast<LPARAM>(port));
}
