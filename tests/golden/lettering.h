// The font of the pictures: every letter as wide as the next, with the PC's characters, and not smoothed, so
// that a picture has its sixteen colors.
#pragma once

#include <windows.h>

#include <memory>

struct FontEnd {
    void operator()(HFONT font) const { DeleteObject(font); }
};
using Font = std::unique_ptr<HFONT__, FontEnd>;

// Makes the font known to this program, ahead of all else. False: DejaVu Sans Mono, from which it is drawn,
// is not there.
bool NeedFixedFont();

Font MakeFixedFont();

SIZE MeasureCell(HWND window, HFONT font);
