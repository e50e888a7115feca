#include "stage.h"

namespace {

constexpr char className[] = "TarnGoldenStage";
constexpr POINT place = {8, 8}; // on the display
constexpr int quietTurns = 20;  // of the message loop, some 2 ms each

HWND MakeWindow() {
    WNDCLASSA kind = {};
    kind.lpfnWndProc = DefWindowProcA;
    kind.hInstance = GetModuleHandleA(nullptr);
    kind.lpszClassName = className;
    RegisterClassA(&kind); // the second time it is there
    return CreateWindowExA(WS_EX_NOACTIVATE, className, "Golden pictures", WS_POPUP | WS_CLIPCHILDREN,
                           place.x, place.y, 800, 600, nullptr, nullptr, kind.hInstance, nullptr);
}

HFONT FontOf(HWND terminal) {
    return reinterpret_cast<HFONT>(SendMessageA(terminal, WM_GETFONT, 0, 0));
}

SIZE ClientSizeOf(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

SIZE OuterSizeOf(HWND window) {
    RECT outer = {};
    GetWindowRect(window, &outer);
    return {outer.right - outer.left, outer.bottom - outer.top};
}

} // namespace

Stage::Stage(const StageSetting& setting) : window_(MakeWindow()), terminal_(window_) {
    if (setting.lettering == Lettering::Fixed) {
        font_ = MakeFixedFont();
        SendMessageA(terminal_, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
    }
    cell_ = MeasureCell(terminal_, FontOf(terminal_));
    SetRows(terminal_, setting.rows);
    SetColumns(terminal_, setting.columns);
    SetScrollRows(terminal_, setting.scrollRows);
    SetColor(terminal_, TARN_COLOR_LIGHT_GRAY);
    SetEmulation(terminal_, setting.emulation);
    ShowWindow(terminal_, SW_SHOWNOACTIVATE);
    ShowWindow(window_, SW_SHOWNOACTIVATE);
    ShowCells(setting.shownColumns ? setting.shownColumns : setting.columns,
              setting.shownRows ? setting.shownRows : setting.rows);
}

Stage::~Stage() {
    DestroyCommObject(terminal_);
    DestroyWindow(window_);
}

// A new size can bring or take a scroll bar, which changes the size of what is inside.
void Stage::ShowCells(int columns, int rows) {
    const SIZE wanted = {columns * cell_.cx, rows * cell_.cy};
    for (int turn = 0; turn < 3; ++turn) {
        const SIZE client = ClientSizeOf(terminal_);
        const SIZE outer = OuterSizeOf(terminal_);
        MoveWindow(terminal_, 0, 0, wanted.cx + outer.cx - client.cx, wanted.cy + outer.cy - client.cy, TRUE);
    }
    const SIZE outer = OuterSizeOf(terminal_);
    MoveWindow(window_, place.x, place.y, outer.cx, outer.cy, TRUE);
}

void Stage::PrintIn(int color, const std::string& text) {
    const int before = GetColor(terminal_);
    SetColor(terminal_, color);
    Print(text);
    SetColor(terminal_, before);
}

void Stage::MoveTo(int row, int column) {
    Print("\r"); // a wrap that is pending would take the text elsewhere
    SetCursorRow(terminal_, row);
    SetCursorColumn(terminal_, column);
}

void Stage::Select(int row, int column, int cells) {
    SetSelectionStart(terminal_, row * GetColumns(terminal_) + column);
    SetSelectionLength(terminal_, cells);
}

POINT Stage::At(double row, double column) const {
    return {static_cast<LONG>(column * cell_.cx), static_cast<LONG>(row * cell_.cy)};
}

void Stage::Mouse(UINT message, POINT at, WPARAM keys) const {
    PostMessageA(terminal_, message, keys, MAKELPARAM(at.x, at.y));
}

bool Stage::Settle() {
    Bitmap before = Picture();
    int quiet = 0;
    return host::PumpUntil([&] {
        Bitmap now = Picture();
        const bool still = !GetUpdateRect(terminal_, nullptr, FALSE) && !now.Differences(before);
        quiet = still ? quiet + 1 : 0;
        before = std::move(now);
        return quiet >= quietTurns;
    });
}

Bitmap Stage::Picture() const {
    Bitmap picture(ClientSizeOf(terminal_));
    const HDC dc = GetDC(terminal_);
    BitBlt(picture.Context(), 0, 0, picture.Size().cx, picture.Size().cy, dc, 0, 0, SRCCOPY);
    ReleaseDC(terminal_, dc);
    return picture;
}

Bitmap Stage::Repainted() {
    InvalidateRect(terminal_, nullptr, FALSE);
    UpdateWindow(terminal_);
    return Picture();
}
