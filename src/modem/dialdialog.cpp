#include "dialdialog.h"

#include "connectiondialogs.h"

#include <commctrl.h>

namespace {

constexpr LPARAM wasDown = 1 << 30; // of a key that repeats

// The message loop of a dial knows no keys of dialogs. A key that was down before, as the one that started
// the dial, cancels nothing.
bool AsksToCancel(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return uMsg == WM_KEYDOWN && (wParam == VK_ESCAPE || wParam == VK_RETURN) && !(lParam & wasDown);
}

// It would press the button, which the key's end then clicks.
bool IsRepeatedSpace(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return uMsg == WM_KEYDOWN && wParam == VK_SPACE && (lParam & wasDown);
}

LRESULT CALLBACK WithKeys(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR idSubclass,
                          DWORD_PTR dialog) {
    if (AsksToCancel(uMsg, wParam, lParam)) {
        SendMessageA(reinterpret_cast<HWND>(dialog), WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        return 0;
    }
    if (IsRepeatedSpace(uMsg, wParam, lParam))
        return 0;
    if (uMsg == WM_NCDESTROY)
        RemoveWindowSubclass(hWnd, WithKeys, idSubclass);
    return DefSubclassProc(hWnd, uMsg, wParam, lParam);
}

} // namespace

CDialDialog::CDialDialog(HWND hOwner, std::function<void()> onCancel)
    : CMyDialog(hOwner, DialTemplate), cancel(std::move(onCancel)) {}

bool CDialDialog::OnInitDialog() {
    SetDlgItemTextA(Window(), Dial_Status, "Dialing...");
    for (const HWND hWnd : {Window(), GetDlgItem(Window(), IDCANCEL)})
        SetWindowSubclass(hWnd, WithKeys, 1, reinterpret_cast<DWORD_PTR>(Window()));
    return true;
}

bool CDialDialog::OnCommand(int nControl, int) {
    if (nControl != IDCANCEL)
        return false;
    const std::function<void()> held = cancel;
    if (held)
        held();
    return true;
}
