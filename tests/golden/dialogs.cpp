// Stores what the module's dialogs look like: dialogs FOLDER
#include "bitmap.h"

#include "core/comctl.h"
#include "support/host.h"
#include "transfer/statusdialog.h"

#include <commctrl.h>

#include <cstdio>
#include <memory>

namespace {

struct WindowCloser {
    using pointer = HWND;
    void operator()(HWND hWnd) const { DestroyWindow(hWnd); }
};
using Window = std::unique_ptr<HWND, WindowCloser>;

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

// The picture once it stays the same, with the animation held and nothing that has the focus.
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

struct Scene {
    const char* name;
    int id;
    int direction;
    void (*play)(HWND hDlg, TRANSFER& transfer);
};

void ShowHalf(HWND, TRANSFER& transfer) {
    ShowItem(transfer, Item_Status,
             "Sending block 1234 of R&D \xfc"
             "bersicht.txt");
    ShowItem(transfer, Item_BytesDone, "1263616 bytes");
    ShowItem(transfer, Item_FileSize, "2000000 bytes");
    ShowItem(transfer, Item_Elapsed, "00:01:52");
    ShowItem(transfer, Item_BlockSize, "1024");
    ShowPercent(transfer, 63);
}

void Cancel(HWND hDlg, TRANSFER& transfer) {
    ShowHalf(hDlg, transfer);
    SendMessageA(hDlg, WM_CLOSE, 0, 0);
}

void Leave(HWND, TRANSFER&) {}

constexpr Scene scenes[] = {
    {"status-opened", StatusTemplate, XferUpload, Leave},
    {"status-running", StatusTemplate, XferUpload, ShowHalf},
    {"status-cancelled", StatusTemplate, XferUpload, Cancel},
    {"status-moved", StatusTemplateMoved, XferDownload, ShowHalf},
    {"status-wide", StatusTemplateWide, XferDownload, Leave},
};

bool Play(const Scene& scene, const std::string& folder) {
    COMCTL record;
    TRANSFER transfer;
    transfer.lpComCtl = &record;
    transfer.nDirection = scene.direction;
    const Window dialog(
        scene.id == StatusTemplate
            ? CreateStatusDialog(nullptr, DlgProc)
            : CreateDialogParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(scene.id), nullptr, DlgProc, 0));
    transfer.hDlg = dialog.get();
    OpenStatusDialog(transfer);
    scene.play(dialog.get(), transfer);
    if (dialog.get() && Store(dialog.get(), folder + "\\" + scene.name + ".bmp"))
        return true;
    std::printf("%s: can't be made\n", scene.name);
    return false;
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    bool good = true;
    for (const Scene& scene : scenes)
        good &= Play(scene, words[1]);
    return good ? 0 : 1;
}
