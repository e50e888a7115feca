// The colours of the terminal. An attribute is one byte: background in the high nibble, foreground in the
// low, each an index into the palette.
#pragma once

#include <windows.h>

#include <array>

struct PaletteRow {
    const char* szName;
    COLORREF color;
};

inline constexpr size_t PaletteSize = 16;
extern const std::array<PaletteRow, PaletteSize> Palette;

enum ColorFilter : int { ColorFilter_Full = 0, ColorFilter_Gray = 1, ColorFilter_BW = 2 };

inline constexpr BYTE ForegroundOf(BYTE attribute) {
    return attribute & 0x0F;
}

inline constexpr BYTE BackgroundOf(BYTE attribute) {
    return attribute >> 4;
}

// The attribute that stands for another under a filter; an unknown filter changes nothing.
BYTE ApplyColorFilter(BYTE attribute, int nFilter);
