#include "rasterfont.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <vector>

namespace {

constexpr int characters = 256;
constexpr UINT codePage = 437;
constexpr WORD fileVersion = 0x0200;
constexpr WORD resolution = 96;         // dots per inch
constexpr BYTE fixedModern = FF_MODERN; // and the bit for a variable pitch is clear

#pragma pack(push, 1)
struct FileHeader {
    WORD version;
    DWORD size;
    char copyright[60];
    WORD type; // 0: raster
    WORD points;
    WORD verticalResolution, horizontalResolution;
    WORD ascent, internalLeading, externalLeading;
    BYTE italic, underline, strikeOut;
    WORD weight;
    BYTE characterSet;
    WORD pixelWidth, pixelHeight;
    BYTE pitchAndFamily;
    WORD averageWidth, maximalWidth;
    BYTE firstCharacter, lastCharacter, defaultCharacter, breakCharacter;
    WORD bytesOfARow;
    DWORD device, face, bitsPointer, bits; // places in the file
    BYTE reserved;
};

struct GlyphEntry {
    WORD width;
    WORD place;
};
#pragma pack(pop)

static_assert(sizeof(FileHeader) == 118);

// One more than there are characters: the last is a blank.
using GlyphTable = std::array<GlyphEntry, characters + 1>;

struct ContextEnd {
    HDC dc;
    ~ContextEnd() { DeleteDC(dc); }
};

// A character in black and white, as large as a cell.
class Drawing {
  public:
    Drawing(HFONT font) : dc_(CreateCompatibleDC(nullptr)), end_{dc_} {
        SelectObject(dc_, font);
        GetTextMetricsA(dc_, &metrics_);
        bitmap_ = CreateBitmap(Width(), Height(), 1, 1, nullptr);
        SelectObject(dc_, bitmap_);
    }
    ~Drawing() { DeleteObject(bitmap_); }
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;

    int Width() const { return metrics_.tmAveCharWidth; }
    int Height() const { return metrics_.tmHeight; }
    const TEXTMETRICA& Metrics() const { return metrics_; }

    void Draw(wchar_t character) {
        const RECT all = {0, 0, Width(), Height()};
        SetTextColor(dc_, RGB(255, 255, 255));
        SetBkColor(dc_, RGB(0, 0, 0));
        ExtTextOutW(dc_, 0, 0, ETO_OPAQUE | ETO_CLIPPED, &all, &character, 1, nullptr);
    }
    bool IsSet(int x, int y) const { return x < Width() && GetPixel(dc_, x, y) != RGB(0, 0, 0); }

  private:
    HDC dc_;
    ContextEnd end_; // the context goes after the bitmap's destructor has run
    TEXTMETRICA metrics_ = {};
    HBITMAP bitmap_ = nullptr;
};

// 0x01 to 0x1F are pictures on a PC's screen.
wchar_t CharacterOf(int code) {
    const char byte = static_cast<char>(code);
    wchar_t character = L' ';
    MultiByteToWideChar(codePage, MB_USEGLYPHCHARS, &byte, 1, &character, 1);
    return code ? character : L' ';
}

// Column of bytes after column of bytes, each from top to bottom.
void AppendGlyph(std::vector<char>& bits, const Drawing& drawing) {
    for (int left = 0; left < drawing.Width(); left += 8) {
        for (int y = 0; y < drawing.Height(); ++y) {
            int byte = 0;
            for (int x = 0; x < 8; ++x)
                byte |= drawing.IsSet(left + x, y) ? 0x80 >> x : 0;
            bits.push_back(static_cast<char>(byte));
        }
    }
}

FileHeader HeaderOf(const Drawing& drawing) {
    FileHeader header = {};
    header.version = fileVersion;
    header.verticalResolution = header.horizontalResolution = resolution;
    header.ascent = static_cast<WORD>(drawing.Metrics().tmAscent);
    header.pixelHeight = static_cast<WORD>(drawing.Height());
    header.points = static_cast<WORD>(drawing.Height() * 72 / resolution);
    header.weight = FW_NORMAL;
    header.characterSet = OEM_CHARSET;
    header.pitchAndFamily = fixedModern;
    header.pixelWidth = header.averageWidth = header.maximalWidth = static_cast<WORD>(drawing.Width());
    header.lastCharacter = characters - 1;
    header.defaultCharacter = '?';
    header.breakCharacter = ' ';
    return header;
}

} // namespace

bool WriteRasterFont(const std::string& path, const char* face, HFONT scalable) {
    Drawing drawing(scalable);
    FileHeader header = HeaderOf(drawing);
    GlyphTable table = {};
    std::vector<char> bits;
    header.bits = sizeof header + sizeof table;
    for (int code = 0; code <= characters; ++code) {
        table[static_cast<size_t>(code)] = {header.pixelWidth, static_cast<WORD>(header.bits + bits.size())};
        drawing.Draw(code < characters ? CharacterOf(code) : L' ');
        AppendGlyph(bits, drawing);
    }
    header.face = static_cast<DWORD>(header.bits + bits.size());
    header.size = header.face + static_cast<DWORD>(std::strlen(face)) + 1;
    header.bytesOfARow = static_cast<WORD>((characters * drawing.Width() + 15) / 16 * 2);
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&header), sizeof header);
    file.write(reinterpret_cast<const char*>(&table), sizeof table);
    file.write(bits.data(), static_cast<std::streamsize>(bits.size()));
    file.write(face, static_cast<std::streamsize>(std::strlen(face)) + 1);
    file.close();
    return !file.fail();
}
