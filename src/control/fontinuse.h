// A platform font's handle that somebody uses: the font may change or go, the handle stays until the next one
// is held.
#pragma once

#include <ocidl.h>
#include <windows.h>
#include <wrl/client.h>

#include <utility>

class FontInUse {
  public:
    FontInUse() = default;
    ~FontInUse() { Release(); }
    FontInUse(const FontInUse&) = delete;
    FontInUse& operator=(const FontInUse&) = delete;

    // Passes the font's handle on and keeps it from then on. A font without one leaves the last in use.
    template <class Pass>
    void Hold(IFontDisp* font, Pass&& pass) {
        FontInUse next;
        if (!next.Take(font))
            return;
        pass(next.handle_);
        std::swap(font_, next.font_);
        std::swap(handle_, next.handle_);
        std::swap(isCounted_, next.isCounted_);
    }

  private:
    bool Take(IFontDisp* font) {
        if (!font || FAILED(font->QueryInterface(IID_PPV_ARGS(&font_))) ||
            FAILED(font_->get_hFont(&handle_)) || !handle_)
            return false;
        isCounted_ = SUCCEEDED(font_->AddRefHfont(handle_));
        return true;
    }
    void Release() {
        if (isCounted_)
            font_->ReleaseHfont(handle_);
    }

    Microsoft::WRL::ComPtr<IFont> font_;
    HFONT handle_ = nullptr;
    bool isCounted_ = false;
};
