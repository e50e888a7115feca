// The palette, and the filters for every attribute there is.
#include "terminal/colors.h"

#include "TarnComm.h"

#include <gtest/gtest.h>

#include <map>

namespace {

// A row for each background, a letter for each foreground.
const std::map<char, BYTE> letters = {
    {'.', 0x00}, {'d', 0x07}, {'D', 0x0F}, {'g', 0x70}, {'G', 0x7F}, {'e', 0x77}, {'E', 0xFF}, {'W', 0xF0},
};

const char* const gray[16] = {
    ".dddddddDDDDDDDD", "geggggggGGGGGGGG", "ggegggggGGGGGGGG", "gggeggggGGGGGGGG",
    "ggggegggGGGGGGGG", "gggggeggGGGGGGGG", "ggggggegGGGGGGGG", "gggggggeGGGGGGGG",
    "ggggggggEGGGGGGG", "ggggggggGEGGGGGG", "ggggggggGGEGGGGG", "ggggggggGGGEGGGG",
    "ggggggggGGGGEGGG", "ggggggggGGGGGEGG", "ggggggggGGGGGGEG", "ggggggggGGGGGGGE",
};

const char* const blackAndWhite[16] = {
    ".WDDDDDDWDDDDDDD", "WEDDDDDDWDDDDDDD", "WWEDDDDDWDDDDDDD", "WWDEDDDDWDDDDDDD",
    "WWDDEDDDWDDDDDDD", "WWDDDEDDWDDDDDDD", "WWDDDDEDWDDDDDDD", "WWDDDDDEWDDDDDDD",
    "WWDDDDDDEDDDDDDD", "WWDDDDDDWEDDDDDD", "WWDDDDDDWDEDDDDD", "WWDDDDDDWDDEDDDD",
    "WWDDDDDDWDDDEDDD", "WWDDDDDDWDDDDEDD", "WWDDDDDDWDDDDDED", "WWDDDDDDWDDDDDDE",
};

void ExpectFilter(int filter, const char* const (&rows)[16]) {
    for (int attribute = 0; attribute < 256; ++attribute)
        EXPECT_EQ(ApplyColorFilter(static_cast<BYTE>(attribute), filter),
                  letters.at(rows[attribute >> 4][attribute & 15]))
            << "attribute " << attribute;
}

TEST(Colors, GrayFilterOfEachAttribute) {
    ExpectFilter(ColorFilter_Gray, gray);
}

TEST(Colors, BlackAndWhiteFilterOfEachAttribute) {
    ExpectFilter(ColorFilter_BW, blackAndWhite);
}

TEST(Colors, OtherFiltersChangeNothing) {
    for (const int filter : {0, -1, 3, 1000})
        for (int attribute = 0; attribute < 256; ++attribute)
            EXPECT_EQ(ApplyColorFilter(static_cast<BYTE>(attribute), filter), attribute);
}

TEST(Colors, PaletteIsThePcs) {
    const struct {
        const char* name;
        BYTE red, green, blue;
    } rows[] = {
        {"Black", 0, 0, 0},          {"Blue", 0, 0, 128},
        {"Green", 0, 128, 0},        {"Cyan", 0, 128, 128},
        {"Red", 128, 0, 0},          {"Magenta", 128, 0, 128},
        {"Brown", 128, 128, 0},      {"LightGray", 192, 192, 192},
        {"DarkGray", 128, 128, 128}, {"LightBlue", 0, 0, 255},
        {"LightGreen", 0, 255, 0},   {"LightCyan", 0, 255, 255},
        {"LightRed", 255, 0, 0},     {"LightMagenta", 255, 0, 255},
        {"Yellow", 255, 255, 0},     {"White", 255, 255, 255},
    };
    ASSERT_EQ(std::size(rows), Palette.size());
    for (size_t i = 0; i < Palette.size(); ++i) {
        EXPECT_STREQ(Palette[i].szName, rows[i].name);
        EXPECT_EQ(Palette[i].color, RGB(rows[i].red, rows[i].green, rows[i].blue)) << rows[i].name;
    }
}

} // namespace
