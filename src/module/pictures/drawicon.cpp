// Draws the module's icon: a terminal's prompt above the plug of a serial line, in each size that the system
// asks for. Runs on the building machine: drawicon FILE.ico
//
// Shapes are stored in units of the largest picture, and each pixel is the mean of many points, so that small
// pictures are as smooth as large ones.
#include "picturefile.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

constexpr std::array<int, 3> sizes = {16, 32, 48};
constexpr double units = 48;    // the picture's side
constexpr int pointsAcross = 8; // of a pixel

struct Point {
    double x;
    double y;
};

// Without light there is nothing: what lies below shows.
struct Color {
    double red, green, blue, light;
};

constexpr Color nothing = {0, 0, 0, 0};
constexpr Color rim = {0x10, 0x2C, 0x3A, 1};
constexpr Color water = {0x17, 0x5A, 0x78, 1};
constexpr Color depth = {0x0E, 0x3B, 0x52, 1};
constexpr Color prompt = {0x8C, 0xF0, 0xA8, 1};
constexpr Color shell = {0xE4, 0xE8, 0xEA, 1};
constexpr Color hollow = {0x9C, 0xA8, 0xB0, 1};
constexpr Color pin = {0x1C, 0x28, 0x30, 1};

bool InRounded(Point at, Point from, Point to, double radius) {
    const double x = std::fmax(std::fmax(from.x + radius - at.x, at.x - to.x + radius), 0);
    const double y = std::fmax(std::fmax(from.y + radius - at.y, at.y - to.y + radius), 0);
    return x * x + y * y <= radius * radius;
}

bool InCircle(Point at, Point center, double radius) {
    return std::hypot(at.x - center.x, at.y - center.y) <= radius;
}

bool NearLine(Point at, Point from, Point to, double reach) {
    const double x = to.x - from.x, y = to.y - from.y;
    const double along = ((at.x - from.x) * x + (at.y - from.y) * y) / (x * x + y * y);
    const double on = std::fmin(std::fmax(along, 0), 1);
    return InCircle(at, {from.x + on * x, from.y + on * y}, reach);
}

bool OnPrompt(Point at) {
    return NearLine(at, {10, 8.5}, {16.5, 14}, 1.7) || NearLine(at, {16.5, 14}, {10, 19.5}, 1.7) ||
           NearLine(at, {21, 19.5}, {30, 19.5}, 1.7);
}

// Wide above, narrow below, as the plug of nine pins is.
constexpr double plugTop = 25.5;
constexpr double plugBottom = 42;

bool InPlug(Point at, double inset) {
    const double down = (at.y - plugTop) / (plugBottom - plugTop);
    const double edge = 6 + 3.5 * down + inset;
    return at.y >= plugTop + inset && at.y <= plugBottom - inset && at.x >= edge && at.x <= units - edge;
}

bool OnPin(Point at) {
    for (int i = 0; i < 5; ++i)
        if (InCircle(at, {units / 2 + (i - 2) * 6.2, 31}, 1.6))
            return true;
    for (int i = 0; i < 4; ++i)
        if (InCircle(at, {units / 2 + (i - 1.5) * 6.2, 36.6}, 1.6))
            return true;
    return false;
}

Color ColorAt(Point at) {
    if (!InRounded(at, {1, 1}, {47, 47}, 8))
        return nothing;
    if (!InRounded(at, {2.5, 2.5}, {45.5, 45.5}, 6.5))
        return rim;
    if (OnPin(at))
        return pin;
    if (InPlug(at, 2.2))
        return hollow;
    if (InPlug(at, 0))
        return shell;
    if (OnPrompt(at))
        return prompt;
    return at.y < 23 ? water : depth;
}

Color PixelAt(int x, int y, int size) {
    Color sum = nothing;
    const double step = units / size / pointsAcross;
    for (int i = 0; i < pointsAcross * pointsAcross; ++i) {
        const double column = x * pointsAcross + i % pointsAcross + 0.5;
        const double row = y * pointsAcross + std::div(i, pointsAcross).quot + 0.5;
        const Color color = ColorAt({column * step, row * step});
        sum.red += color.red * color.light;
        sum.green += color.green * color.light;
        sum.blue += color.blue * color.light;
        sum.light += color.light;
    }
    if (sum.light <= 0)
        return nothing;
    return {sum.red / sum.light, sum.green / sum.light, sum.blue / sum.light,
            sum.light / (pointsAcross * pointsAcross)};
}

std::string Byte(double value) {
    return Long(static_cast<uint32_t>(std::lround(value))).substr(0, 1);
}

// The lowest row comes first, here and in the mask.
std::string Pixels(int size) {
    std::string bytes;
    for (int y = size - 1; y >= 0; --y) {
        for (int x = 0; x < size; ++x) {
            const Color color = PixelAt(x, y, size);
            bytes += Byte(color.blue) + Byte(color.green) + Byte(color.red) + Byte(color.light * 255);
        }
    }
    return bytes;
}

// For displays that know no light: a bit is set where the picture is not. Rows are stored in steps of four
// bytes.
std::string Mask(int size) {
    std::string bytes;
    for (int y = size - 1; y >= 0; --y) {
        std::string row(static_cast<size_t>((size + 31) / 32 * 4), '\0');
        for (int x = 0; x < size; ++x)
            if (PixelAt(x, y, size).light < 0.5)
                row[static_cast<size_t>(x / 8)] =
                    static_cast<char>(row[static_cast<size_t>(x / 8)] | 0x80 >> x % 8);
        bytes += row;
    }
    return bytes;
}

// Twice as high in its header: the mask counts.
std::string Picture(int size) {
    const auto side = static_cast<uint32_t>(size);
    return Long(40) + Long(side) + Long(2 * side) + Word(1) + Word(32) + std::string(24, '\0') +
           Pixels(size) + Mask(size);
}

std::string Icon() {
    constexpr size_t headerSize = 6, entrySize = 16;
    std::string entries, pictures;
    for (const int size : sizes) {
        const std::string picture = Picture(size);
        const size_t position = headerSize + entrySize * sizes.size() + pictures.size();
        entries += Byte(size) + Byte(size) + Word(0) + Word(1) + Word(32) +
                   Long(static_cast<uint32_t>(picture.size())) + Long(static_cast<uint32_t>(position));
        pictures += picture;
    }
    return Word(0) + Word(1) + Word(sizes.size()) + entries + pictures;
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    return Write(words[1], Icon()) ? 0 : 1;
}
