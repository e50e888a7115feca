// Draws the pictures of the toolbar's buttons, side by side in one bitmap. Runs on the building machine:
// drawtoolbar FILE.bmp
//
// The toolbar changes black, white, both grays of this file into the system's colors for text, highlight,
// shadow and face, so that buttons fit into every scheme; what has the face's color is transparent.
#include "picturefile.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

constexpr int pictureWidth = 16;
constexpr int pictureHeight = 15;
constexpr int places = 16; // in the strip; those behind the last picture are empty
constexpr int width = places * pictureWidth;

struct Color {
    char letter; // in the drawings
    uint32_t rgb;
};

constexpr std::array<Color, 16> colors = {{
    {'#', 0x000000},
    {'m', 0x800000},
    {'f', 0x008000},
    {'o', 0x808000},
    {'n', 0x000080},
    {'p', 0x800080},
    {'t', 0x008080},
    {'.', 0xC0C0C0},
    {'-', 0x808080},
    {'r', 0xFF0000},
    {'l', 0x00FF00},
    {'y', 0xFFFF00},
    {'b', 0x0000FF},
    {'k', 0xFF00FF},
    {'c', 0x00FFFF},
    {'w', 0xFFFFFF},
}};

using Drawing = std::array<std::string_view, pictureHeight>;

constexpr Drawing newPage = {
    "................", "...#######......", "...#wwwww##.....", "...#wwwww#w#....", "...#wwwww####...",
    "...#wwwwwwww#...", "...#wwwwwwww#...", "...#wwwwwwww#...", "...#wwwwwwww#...", "...#wwwwwwww#...",
    "...#wwwwwwww#...", "...#wwwwwwww#...", "...#wwwwwwww#...", "...##########...", "................",
};

constexpr Drawing openFolder = {
    "................", ".........###....", "........#...#.#.", ".............##.", "..###.......###.",
    ".#ywy#######....", ".#wywywywyw#....", ".#ywywywywy#....", ".#wywy##########", ".#ywy#ooooooooo#",
    ".#wy#ooooooooo#.", ".#y#ooooooooo#..", ".##ooooooooo#...", ".###########....", "................",
};

constexpr Drawing diskette = {
    "................", ".##############.", ".#oo#......#.o#.", ".#oo#......#.o#.", ".#oo#......#oo#.",
    ".#oo#......#oo#.", ".#ooo######ooo#.", ".#oooooooooooo#.", ".#oo########oo#.", ".#oo#####..#oo#.",
    ".#oo#####..#oo#.", ".#oo#####..#oo#.", "..#############.", "................", "................",
};

constexpr Drawing twoPages = {
    "................", ".######.........", ".#wwww##........", ".#wwww#w#.......", ".#w##w####......",
    ".#wwwwwnnnnnn...", ".#w####nwwwwnn..", ".#wwwwwnwwwwnwn.", ".#w####nwnnwnnnn", ".#wwwwwnwwwwwwwn",
    ".#######nwnnnnwn", ".......nwwwwwwwn", ".......nwnnnnnwn", ".......nwwwwwwwn", ".......nnnnnnnnn",
};

constexpr Drawing clipboard = {
    "......####......", "..#####yy#####..", ".#oo-#y##y#-oo#.", ".#oo-######-oo#.", ".#oo--------oo#.",
    ".#oooooooooooo#.", ".#ooooonnnnnn...", ".#ooooonwwwwnn..", ".#ooooonwnnwnwn.", ".#ooooonwwwwnnnn",
    ".#ooooonwnnwwwwn", ".#ooooonwwwwwwwn", ".#ooooonwnnnnnwn", "..#####nwwwwwwwn", ".......nnnnnnnnn",
};

constexpr Drawing plugsTogether = {
    "................", "................", "................", ".....##..##.....", "....#c####c#....",
    "....#cc##cc#....", "#####cc##cc#####", "-----cc##cc-----", "#####tt##tt#####", "....#tt##tt#....",
    "....#t####t#....", ".....##..##.....", "................", "................", "................",
};

constexpr Drawing plugsApart = {
    "................", "..............r.", ".r...........rr.", ".rr...##...##r..", "...##...rr.#cc##",
    "..#c##.rr##.#cc-", "###cc#.r.rr.#cc#", "--#cc##.rr##.#t#", "###tt#.rrrr.#tt#", "..#tt##r..r##tt-",
    "..#t#.rr..rr.#t#", "...##rr....rr##.", "....rr......rr..", "................", "................",
};

constexpr Drawing pageOut = {
    "................", ".######.........", ".#wwww##........", ".#wwww#w#.......", ".#wwww####......",
    ".#w##wwww#..f...", ".#wwwwwww#..ff..", ".#w##wfffffffff.", ".#wwwwflllllllff", ".#w##wfffffffff.",
    ".#wwwwwww#..ff..", ".#w####ww#..f...", ".#wwwwwww#......", ".#########......", "................",
};

constexpr Drawing pageIn = {
    "................", ".......######...", ".......#wwww##..", ".......#wwww#w#.", ".......#wwww####",
    "....n..#w####ww#", "....nn.#wwwwwww#", "nnnnnnnnnw###ww#", "nbbbbbbbnnwwwww#", "nnnnnnnnnw###ww#",
    "....nn.#wwwwwww#", "....n..#w####ww#", ".......#wwwwwww#", ".......#########", "................",
};

constexpr Drawing formWithHand = {
    "................", ".###########....", ".#nnnnnnnnn#....", ".###########....", ".#wwwwwwwww#....",
    ".#w##w####w#....", ".#wwwwwwwww#.##.", ".#w##w###w##yy#.", ".#wwwwwww#yyy#..", ".#w##w##yyy##...",
    ".#wwwww#yy#w#...", ".#w##w#y##ww#...", ".#wwww##wwww#...", ".############...", "................",
};

constexpr Drawing computerAndQuestion = {
    "................", ".#########......", ".#-------#.bbbb.", ".#-ccccc-#bb..bb", ".#-ccccc-#bb..bb",
    ".#-ccccc-#....bb", ".#-ccccc-#...bb.", ".#-------#..bb..", ".#########..bb..", "...#...#........",
    ".#########..bb..", ".#wwwwwfw#..bb..", ".#-------#......", ".#########......", "................",
};

constexpr const Drawing* drawings[] = {
    &newPage,    &openFolder, &diskette, &twoPages,     &clipboard,           &plugsTogether,
    &plugsApart, &pageOut,    &pageIn,   &formWithHand, &computerAndQuestion,
};
static_assert(std::size(drawings) <= places);

constexpr bool AreWhole() {
    for (const Drawing* drawing : drawings)
        for (const std::string_view row : *drawing)
            if (row.size() != pictureWidth)
                return false;
    return true;
}
static_assert(AreWhole());

constexpr size_t noColor = colors.size();

size_t ColorOf(char letter) {
    for (size_t number = 0; number < colors.size(); ++number)
        if (colors[number].letter == letter)
            return number;
    return noColor;
}

constexpr char face = '.';

char LetterAt(size_t x, size_t y) {
    const size_t place = x / pictureWidth;
    return place < std::size(drawings) ? (*drawings[place])[y][x % pictureWidth] : face;
}

constexpr unsigned bitsOfAPixel = 4;
constexpr uint32_t infoSize = 40;
constexpr uint32_t rowSize = width / 2;
constexpr uint32_t pixelsSize = rowSize * pictureHeight;
constexpr uint32_t pixelsAt = 14 + infoSize + 4 * static_cast<uint32_t>(colors.size());
static_assert(rowSize % 4 == 0, "rows are stored in steps of four bytes");

std::string Header() {
    return "BM" + Long(pixelsAt + pixelsSize) + Long(0) + Long(pixelsAt) + Long(infoSize) + Long(width) +
           Long(pictureHeight) + Word(1) + Word(bitsOfAPixel) + Long(0) + Long(pixelsSize) + Long(0) +
           Long(0) + Long(0) + Long(0);
}

// Empty: a letter has no color.
std::string Row(size_t y) {
    std::string row;
    for (size_t x = 0; x < width; x += 2) {
        const size_t left = ColorOf(LetterAt(x, y));
        const size_t right = ColorOf(LetterAt(x + 1, y));
        if (left == noColor || right == noColor)
            return "";
        row += static_cast<char>(left << bitsOfAPixel | right);
    }
    return row;
}

// The bottom row comes first.
std::string Pixels() {
    std::string pixels;
    for (size_t y = pictureHeight; y-- > 0;)
        pixels += Row(y);
    return pixels;
}

std::string Palette() {
    std::string palette;
    for (const Color& color : colors)
        palette += Long(color.rgb);
    return palette;
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    const std::string pixels = Pixels();
    if (pixels.size() != pixelsSize)
        return 1;
    return Write(words[1], Header() + Palette() + pixels) ? 0 : 1;
}
