#include "colors.h"

namespace {

constexpr BYTE intensity = 0x08;

enum Attribute : BYTE {
    BlackOnBlack = 0x00,
    GrayOnBlack = 0x07,
    WhiteOnBlack = 0x0F,
    BlackOnGray = 0x70,
    GrayOnGray = 0x77,
    WhiteOnGray = 0x7F,
    BlackOnWhite = 0xF0,
    WhiteOnWhite = 0xFF,
};

bool IsInvisible(BYTE attribute) {
    return ForegroundOf(attribute) == BackgroundOf(attribute);
}

BYTE Gray(BYTE attribute) {
    if (IsInvisible(attribute))
        return attribute & intensity ? WhiteOnWhite : GrayOnGray;
    const bool onBlack = BackgroundOf(attribute) == 0;
    if (attribute & intensity)
        return onBlack ? WhiteOnBlack : WhiteOnGray;
    return onBlack ? GrayOnBlack : BlackOnGray;
}

bool IsDark(BYTE color) {
    return color == 0 || color == 1 || color == 8; // black, blue, dark gray
}

BYTE BlackAndWhite(BYTE attribute) {
    if (IsInvisible(attribute))
        return WhiteOnWhite;
    return IsDark(ForegroundOf(attribute)) ? BlackOnWhite : WhiteOnBlack;
}

} // namespace

// In the order of the PC: blue is 1 and red is 4.
const std::array<PaletteRow, PaletteSize> Palette = {{
    {"Black", RGB(0, 0, 0)},
    {"Blue", RGB(0, 0, 128)},
    {"Green", RGB(0, 128, 0)},
    {"Cyan", RGB(0, 128, 128)},
    {"Red", RGB(128, 0, 0)},
    {"Magenta", RGB(128, 0, 128)},
    {"Brown", RGB(128, 128, 0)},
    {"LightGray", RGB(192, 192, 192)},
    {"DarkGray", RGB(128, 128, 128)},
    {"LightBlue", RGB(0, 0, 255)},
    {"LightGreen", RGB(0, 255, 0)},
    {"LightCyan", RGB(0, 255, 255)},
    {"LightRed", RGB(255, 0, 0)},
    {"LightMagenta", RGB(255, 0, 255)},
    {"Yellow", RGB(255, 255, 0)},
    {"White", RGB(255, 255, 255)},
}};

BYTE ApplyColorFilter(BYTE attribute, int nFilter) {
    if (attribute == BlackOnBlack)
        return attribute;
    switch (nFilter) {
    case ColorFilter_Gray:
        return Gray(attribute);
    case ColorFilter_BW:
        return BlackAndWhite(attribute);
    default:
        return attribute;
    }
}
