#include "bitmap.h"

#include <algorithm>
#include <fstream>
#include <vector>

namespace {

constexpr DWORD colorBits = 0x00FFFFFF; // the fourth byte of a pixel means nothing

BITMAPINFOHEADER HeaderOf(SIZE size, WORD bits) {
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = size.cx;
    header.biHeight = -size.cy; // the first row is the highest
    header.biPlanes = 1;
    header.biBitCount = bits;
    return header;
}

// Rows of a file end on a multiple of four bytes.
size_t FileRowBytes(LONG width) {
    return (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
}

template <class Header>
void Put(std::ofstream& file, const Header& header) {
    file.write(reinterpret_cast<const char*>(&header), sizeof header);
}

} // namespace

Bitmap::Bitmap(SIZE size) : size_(size), dc_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info = {};
    info.bmiHeader = HeaderOf(size, 32);
    void* pixels = nullptr;
    bitmap_.reset(CreateDIBSection(dc_.get(), &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    pixels_ = static_cast<DWORD*>(pixels);
    SelectObject(dc_.get(), bitmap_.get());
}

size_t Bitmap::PixelCount() const {
    return static_cast<size_t>(size_.cx) * static_cast<size_t>(size_.cy);
}

int Bitmap::Differences(const Bitmap& other) const {
    GdiFlush();
    if (size_.cx != other.size_.cx || size_.cy != other.size_.cy)
        return static_cast<int>(PixelCount());
    int count = 0;
    for (size_t i = 0; i < PixelCount(); ++i)
        count += ((pixels_[i] ^ other.pixels_[i]) & colorBits) != 0;
    return count;
}

bool Bitmap::Save(const std::string& path) const {
    GdiFlush();
    const size_t rowBytes = FileRowBytes(size_.cx);
    const size_t bytes = rowBytes * static_cast<size_t>(size_.cy);
    BITMAPFILEHEADER head = {};
    head.bfType = 0x4D42; // "BM"
    head.bfOffBits = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    head.bfSize = static_cast<DWORD>(head.bfOffBits + bytes);
    std::ofstream file(path, std::ios::binary);
    Put(file, head);
    Put(file, HeaderOf(size_, 24));
    std::vector<char> row(rowBytes);
    for (LONG y = 0; y < size_.cy; ++y) {
        const DWORD* pixel = pixels_ + static_cast<size_t>(y) * static_cast<size_t>(size_.cx);
        for (size_t x = 0; x < static_cast<size_t>(size_.cx); ++x, ++pixel)
            std::copy_n(reinterpret_cast<const char*>(pixel), 3, &row[3 * x]);
        file.write(row.data(), static_cast<std::streamsize>(row.size()));
    }
    file.close();
    return !file.fail();
}
