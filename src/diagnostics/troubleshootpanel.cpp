#include "troubleshootpanel.h"

#include "troubleshootitems.h"

#include <algorithm>

namespace {

constexpr COLORREF panelColor = 0x804040;
constexpr COLORREF hoverColor = 0xC06060;
constexpr COLORREF panelTextColor = 0xFFFFFF;

struct Item {
    const char* szText;
    TroubleShootPage page;
};

constexpr Item items[troubleShootItems] = {
    {"DLL versions", TroubleShootPage::Libraries},
    {"Serial ports", TroubleShootPage::Ports},
    {"Modems", TroubleShootPage::Modems},
    {"Logging", TroubleShootPage::Logging},
    {"Exit", TroubleShootPage::Exit},
};

constexpr char heading[] = "System Information";

// Dialog units
constexpr int bandHeight = 24;
constexpr int sideWidth = 77;
constexpr int textMargin = 8;
constexpr int firstItem = 36;
constexpr int itemHeight = 17;
constexpr int cornerRadius = 12;

// Points
constexpr int headingSize = 14;
constexpr int itemSize = 9;

RECT Mapped(HWND hFrame, RECT box) {
    MapDialogRect(hFrame, &box);
    return box;
}

// In the proportion to the dialog's own letters, which are of 8 points.
OwnedFont DialogFont(HWND hFrame, int points, bool italic) {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(hFrame, WM_GETFONT, 0, 0)), sizeof font, &font);
    font.lfHeight = MulDiv(font.lfHeight, points, 8);
    font.lfWidth = 0;
    font.lfItalic = italic;
    return OwnedFont(CreateFontIndirectA(&font));
}

// Of the answer to the dialog manager, which would give Enter to a button.
LRESULT KeysOf(LPARAM lParam) {
    const auto* message = reinterpret_cast<const MSG*>(lParam);
    const bool isEnter = message && message->message == WM_KEYDOWN && message->wParam == VK_RETURN;
    return DLGC_WANTARROWS | DLGC_WANTCHARS | (isEnter ? DLGC_WANTMESSAGE : 0);
}

void DrawLine(HDC dc, const RECT& below) {
    FillBox(dc, {below.left, below.top, below.right, below.top + 1}, panelTextColor);
}

// White, but for the corner where band and side meet, which is a quarter of a circle.
void DrawPage(HDC dc, const RECT& page, int radius) {
    FillBox(dc, page, pageColor);
    FillBox(dc, {page.left, page.top, page.left + radius, page.top + radius}, panelColor);
    SelectObject(dc, GetStockObject(WHITE_BRUSH));
    SelectObject(dc, GetStockObject(WHITE_PEN));
    Ellipse(dc, page.left, page.top, page.left + 2 * radius, page.top + 2 * radius);
}

void DrawLabel(HDC dc, const char* szText, RECT box, int margin) {
    box.left += margin;
    DrawTextA(dc, szText, -1, &box, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

int Pixels(HWND hFrame, int units) {
    return static_cast<int>(Mapped(hFrame, {0, 0, 0, units}).bottom);
}

} // namespace

RECT TroubleShootItemBox(HWND hFrame, int item) {
    const int top = firstItem + item * itemHeight;
    return Mapped(hFrame, {0, top, sideWidth, top + itemHeight});
}

RECT TroubleShootPageBox(HWND hFrame) {
    return Mapped(hFrame,
                  {TroubleShootPageLeft, TroubleShootPageTop, TroubleShootPageLeft + TroubleShootPageWidth,
                   TroubleShootPageTop + TroubleShootPageHeight});
}

void TroubleShootPanel::Create(HWND hFrame, Chosen tell) {
    chosen = std::move(tell);
    RECT client = {};
    GetClientRect(hFrame, &client);
    page = {Mapped(hFrame, {0, 0, sideWidth, 0}).right, Pixels(hFrame, bandHeight), client.right,
            client.bottom};
    band = {0, 0, client.right, page.top};
    for (int item = 0; item < troubleShootItems; ++item)
        boxes[static_cast<size_t>(item)] = TroubleShootItemBox(hFrame, item);
    headingFont = DialogFont(hFrame, headingSize, true);
    itemFont = DialogFont(hFrame, itemSize, false);
    arrow = LoadCursorA(nullptr, IDC_ARROW);
    hand = LoadCursorA(nullptr, IDC_HAND);
    const HWND hPanel = CreateWindowExA(
        0, "Static", heading, WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS | SS_NOTIFY, 0, 0,
        client.right, client.bottom, hFrame, reinterpret_cast<HMENU>(INT_PTR{TroubleShoot_Panel}), nullptr,
        nullptr);
    SetWindowPos(hPanel, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    hook.Set(hPanel,
             [this](UINT uMsg, WPARAM wParam, LPARAM lParam) { return Answer(uMsg, wParam, lParam); });
}

void TroubleShootPanel::Choose(int item) {
    const TroubleShootPage chosenPage = items[item].page;
    if (chosenPage != TroubleShootPage::Exit) {
        Repaint(selected);
        selected = item;
        Repaint(selected);
    }
    chosen(chosenPage);
}

std::optional<LRESULT> TroubleShootPanel::Answer(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case WM_PAINT:
        return OnPaint();
    case WM_PRINTCLIENT:
        Paint(reinterpret_cast<HDC>(wParam));
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_MOUSEMOVE:
        return OnMouseMove(PointOf(lParam));
    case WM_MOUSELEAVE:
        Hover(noItem);
        return 0;
    case WM_SETCURSOR: // a move of the mouse follows, and sets it
        return LOWORD(lParam) == HTCLIENT ? std::optional<LRESULT>(TRUE) : std::nullopt;
    case WM_LBUTTONDOWN:
        TakeFocus();
        if (const int item = ItemAt(PointOf(lParam)); item != noItem)
            Choose(item);
        return 0;
    case WM_GETDLGCODE:
        return KeysOf(lParam);
    case WM_KEYDOWN:
        return OnKey(wParam) ? std::optional<LRESULT>(0) : std::nullopt;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        Repaint(Current());
        return 0;
    default:
        return {};
    }
}

LRESULT TroubleShootPanel::OnPaint() {
    PAINTSTRUCT paint = {};
    Paint(BeginPaint(hook.Window(), &paint));
    EndPaint(hook.Window(), &paint);
    return 0;
}

LRESULT TroubleShootPanel::OnMouseMove(POINT at) {
    const int item = ItemAt(at);
    SetCursor(item == noItem ? arrow : hand);
    if (item != hovered)
        Hover(item);
    TRACKMOUSEEVENT leaving = {sizeof leaving, TME_LEAVE, hook.Window(), 0};
    TrackMouseEvent(&leaving);
    return 0;
}

// Arrows only move the mark: an item is chosen by Enter or the space bar, as one of them is the way out.
bool TroubleShootPanel::OnKey(WPARAM key) {
    constexpr int last = troubleShootItems - 1;
    switch (key) {
    case VK_UP:
    case VK_LEFT:
        Hover(std::max(Current() - 1, 0));
        return true;
    case VK_DOWN:
    case VK_RIGHT:
        Hover(std::min(Current() + 1, last));
        return true;
    case VK_HOME:
        Hover(0);
        return true;
    case VK_END:
        Hover(last);
        return true;
    case VK_RETURN:
    case VK_SPACE:
        Choose(Current());
        return true;
    default:
        return false;
    }
}

void TroubleShootPanel::Paint(HDC dc) const {
    const SavedContext saved(dc);
    FillBox(dc, {0, 0, page.right, page.bottom}, panelColor);
    DrawPage(dc, page, Pixels(GetParent(hook.Window()), cornerRadius));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, panelTextColor);
    SelectObject(dc, headingFont.get());
    DrawLabel(dc, heading, band, textMargin);
    SelectObject(dc, itemFont.get());
    for (int item = 0; item < troubleShootItems; ++item)
        PaintItem(dc, item);
    const RECT& current = boxes[static_cast<size_t>(Current())];
    SetTextColor(dc, pageTextColor); // a focus rectangle comes in the context's own colors
    SetBkColor(dc, pageColor);
    if (GetFocus() == hook.Window())
        DrawFocusRect(dc, &current);
}

void TroubleShootPanel::PaintItem(HDC dc, int item) const {
    const RECT& box = boxes[static_cast<size_t>(item)];
    const bool isSelected = item == selected;
    if (isSelected)
        FillBox(dc, box, pageColor);
    else if (item == hovered)
        FillBox(dc, box, hoverColor);
    if (item > 0)
        DrawLine(dc, box);
    SetTextColor(dc, isSelected ? pageTextColor : panelTextColor);
    DrawLabel(dc, items[item].szText, box, textMargin);
}

void TroubleShootPanel::Hover(int item) {
    Repaint(Current());
    hovered = item;
    Repaint(Current());
}

void TroubleShootPanel::Repaint(int item) const {
    if (item != noItem)
        InvalidateRect(hook.Window(), &boxes[static_cast<size_t>(item)], FALSE);
}

int TroubleShootPanel::ItemAt(POINT at) const {
    const auto found =
        std::find_if(boxes.begin(), boxes.end(), [&](const RECT& box) { return PtInRect(&box, at); });
    return found == boxes.end() ? noItem : static_cast<int>(found - boxes.begin());
}

int TroubleShootPanel::Current() const {
    if (hovered != noItem)
        return hovered;
    return selected != noItem ? selected : 0;
}
