#include "himetric.h"

namespace {

constexpr int himetricPerInch = 2540;

class ScreenContext {
  public:
    ScreenContext() : context_(CreateICA("DISPLAY", nullptr, nullptr, nullptr)) {}
    ~ScreenContext() { DeleteDC(context_); }
    ScreenContext(const ScreenContext&) = delete;
    ScreenContext& operator=(const ScreenContext&) = delete;

    SIZE PixelsPerInch() const {
        return {GetDeviceCaps(context_, LOGPIXELSX), GetDeviceCaps(context_, LOGPIXELSY)};
    }

  private:
    HDC context_;
};

} // namespace

SIZE PixelsToHimetric(SIZE pixels) noexcept {
    const SIZE perInch = ScreenContext().PixelsPerInch();
    return {MulDiv(pixels.cx, himetricPerInch, perInch.cx), MulDiv(pixels.cy, himetricPerInch, perInch.cy)};
}

SIZE HimetricToPixels(SIZE himetric) noexcept {
    const SIZE perInch = ScreenContext().PixelsPerInch();
    return {MulDiv(himetric.cx, perInch.cx, himetricPerInch),
            MulDiv(himetric.cy, perInch.cy, himetricPerInch)};
}
