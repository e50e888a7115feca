#include "windowstore.h"

#include "bitmap.h"
#include "support/host.h"

namespace {

Bitmap PictureOf(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    Bitmap picture({client.right, client.bottom});
    const HDC dc = GetDC(window);
    BitBlt(picture.Context(), 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    ReleaseDC(window, dc);
    return picture;
}

} // namespace

bool StoreWhenStill(HWND window, const std::string& path) {
    constexpr int quietTurns = 20; // of the message loop, some 2 ms each
    SetFocus(nullptr);
    Bitmap before = PictureOf(window);
    int quiet = 0;
    const bool still = host::PumpUntil([&] {
        Bitmap now = PictureOf(window);
        quiet = now.Differences(before) ? 0 : quiet + 1;
        before = std::move(now);
        return quiet >= quietTurns;
    });
    return still && before.Save(path);
}
