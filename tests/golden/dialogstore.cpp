#include "dialogstore.h"

#include "transfer/statusitems.h"
#include "windowstore.h"

#include <commctrl.h>

namespace {

constexpr int shownFrame = 2; // of the animation

} // namespace

bool Store(HWND hDlg, const std::string& path) {
    SendDlgItemMessageA(hDlg, Item_Animation, ACM_STOP, 0, 0);
    SendDlgItemMessageA(hDlg, Item_Animation, ACM_PLAY, 1, MAKELPARAM(shownFrame, shownFrame));
    SetWindowPos(hDlg, nullptr, 8, 8, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    return StoreWhenStill(hDlg, path);
}
