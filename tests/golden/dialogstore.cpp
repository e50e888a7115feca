#include "dialogstore.h"

#include "bitmap.h"
#include "support/host.h"
#include "transfer/statusitems.h"

#include <commctrl.h>

namespace {

constexpr int shownFrame = 2; // of the animation

Bitmap PictureOf(HWND hDlg) {
    RECT client = {};
    GetClientRect(hDlg, &client);
    Bitmap picture({client.right, client.bottom});
    const HDC dc = GetDC(hDlg);
    BitBlt(picture.Context(), 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    ReleaseDC(hDlg, dc);
    return picture;
}

} // namespace

bool Store(HWND hDlg, const std::string& path) {
    constexpr int quietTurns = 20; // of the message loop, some 2 ms each
    SendDlgItemMessageA(hDlg, Item_Animation, ACM_STOP, 0, 0);
    SendDlgItemMessageA(hDlg, Item_Animation, ACM_PLAY, 1, MAKELPARAM(shownFrame, shownFrame));
    SetFocus(nullptr);
    SetWindowPos(hDlg, nullptr, 8, 8, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    Bitmap before = PictureOf(hDlg);
    int quiet = 0;
    const bool still = host::PumpUntil([&] {
        Bitmap now = PictureOf(hDlg);
        quiet = now.Differences(before) ? 0 : quiet + 1;
        before = std::move(now);
        return quiet >= quietTurns;
    });
    return still && before.Save(path);
}
