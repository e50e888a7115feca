// Draws the animation of the status dialog: pages that fly from one computer to another, for as long as it is
// played over and over. Runs on the building machine: drawtransfer FILE.avi
//
// The common control that plays it wants a file without sound, not compressed. Origin of the format:
// "Multimedia Programming Interface and Data Specifications 1.0", IBM and Microsoft, 1991.
#include "picturefile.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr int width = 168; // pixels; rows are stored in steps of four
constexpr int height = 36;
constexpr int frames = 8;
constexpr int milliseconds = 100; // of a frame

constexpr int pageDistance = 32; // between two pages: what one goes while the animation runs through
constexpr int pageStep = pageDistance / frames;
static_assert(width % 4 == 0 && pageDistance % frames == 0);

enum Color : uint8_t { Background, Outline, Shell, Shade, Screen, Glow, Paper, Ink, Lamp, Colors };

// The first pixel's color is the one that the control makes transparent.
constexpr std::array<uint32_t, Colors> palette = {
    0xF0F0F0, 0x404850, 0xD8D4C8, 0xA8A498, 0x1C4E80, 0x6FA8DC, 0xFFFFFF, 0x8090A0, 0x38C048,
};

class Picture {
  public:
    void Fill(int left, int top, int cx, int cy, Color color) {
        for (int y = top; y < top + cy; ++y)
            for (int x = left; x < left + cx; ++x)
                Set(x, y, color);
    }

    void Box(int left, int top, int cx, int cy, Color inside) {
        Fill(left, top, cx, cy, Outline);
        Fill(left + 1, top + 1, cx - 2, cy - 2, inside);
    }

    // The bottom row comes first in the file.
    std::string Rows() const {
        std::string rows;
        for (auto row = pixels_.rbegin(); row != pixels_.rend(); ++row)
            rows.append(row->begin(), row->end());
        return rows;
    }

  private:
    void Set(int x, int y, Color color) {
        if (x >= 0 && x < width && y >= 0 && y < height)
            pixels_[static_cast<size_t>(y)][static_cast<size_t>(x)] = static_cast<char>(color);
    }

    std::array<std::array<char, width>, height> pixels_ = {};
};

constexpr int computerWidth = 30;
constexpr int leftComputer = 4;
constexpr int rightComputer = width - computerWidth - 4;

void DrawComputer(Picture& picture, int left, bool lampIsOn) {
    picture.Box(left, 3, computerWidth, 22, Shell);
    picture.Box(left + 3, 6, computerWidth - 6, 15, Screen);
    for (int line = 0; line < 4; ++line)
        picture.Fill(left + 6, 9 + line * 3, line % 2 ? 10 : 16, 1, Glow);
    picture.Fill(left + computerWidth - 7, 22, 3, 1, lampIsOn ? Lamp : Shade);
    picture.Fill(left + 11, 25, 8, 2, Shade);
    picture.Box(left + 1, 27, computerWidth - 2, 6, Shell);
    picture.Fill(left + 5, 29, computerWidth - 10, 1, Shade);
    picture.Fill(left + 5, 31, computerWidth - 10, 1, Shade);
}

constexpr int pageWidth = 11;
constexpr int pageHeight = 13;

void DrawPage(Picture& picture, int left, int top) {
    picture.Box(left, top, pageWidth, pageHeight, Paper);
    picture.Fill(left + pageWidth - 3, top, 3, 3, Outline);
    picture.Fill(left + pageWidth - 2, top, 2, 2, Background); // the corner that is turned down
    for (int line = 0; line < 4; ++line)
        picture.Fill(left + 2, top + 3 + line * 2, line == 0 ? 4 : pageWidth - 4, 1, Ink);
}

// A flat arc, from behind one screen to behind the other.
constexpr int pathStart = leftComputer + 6;
constexpr int pathLength = rightComputer + 13 - pathStart;
constexpr int arcHeight = 6;

int ArcTop(int way) {
    const int fromMiddle = 2 * way - pathLength;
    return 3 + arcHeight * fromMiddle * fromMiddle / (pathLength * pathLength);
}

Picture DrawFrame(int frame) {
    Picture picture;
    picture.Fill(leftComputer + computerWidth, 30, rightComputer - leftComputer - computerWidth, 1,
                 Shade); // the line
    for (int way = frame * pageStep; way <= pathLength; way += pageDistance)
        DrawPage(picture, pathStart + way, ArcTop(way));
    DrawComputer(picture, leftComputer, frame % 4 < 2);
    DrawComputer(picture, rightComputer, frame % 4 >= 2);
    return picture;
}

std::string Chunk(const std::string& name, const std::string& data) {
    return name + Long(static_cast<uint32_t>(data.size())) + data + std::string(data.size() % 2, '\0');
}

std::string List(const std::string& kind, const std::string& chunks) {
    return Chunk("LIST", kind + chunks);
}

constexpr uint32_t frameSize = width * height;
constexpr uint32_t hasIndex = 0x10;
constexpr uint32_t isKeyFrame = 0x10;

std::string MainHeader() {
    return Chunk("avih", Long(milliseconds * 1000) + Long(frameSize * 1000 / milliseconds) + Long(0) +
                             Long(hasIndex) + Long(frames) + Long(0) + Long(1) + Long(frameSize) +
                             Long(width) + Long(height) + std::string(16, '\0'));
}

std::string StreamHeader() {
    return Chunk("strh", "vidsDIB " + Long(0) + Word(0) + Word(0) + Long(0) + Long(milliseconds) +
                             Long(1000) + Long(0) + Long(frames) + Long(frameSize) + Long(0) + Long(0) +
                             Word(0) + Word(0) + Word(width) + Word(height));
}

std::string StreamFormat() {
    std::string format = Long(40) + Long(width) + Long(height) + Word(1) + Word(8) + Long(0) +
                         Long(frameSize) + Long(0) + Long(0) + Long(Colors) + Long(0);
    for (const uint32_t color : palette)
        format += Long(color);
    return Chunk("strf", format);
}

std::string Animation() {
    std::string pictures;
    std::string index;
    for (int frame = 0; frame < frames; ++frame) {
        const size_t position = 4 + pictures.size(); // from the word "movi" on
        index += "00db" + Long(isKeyFrame) + Long(static_cast<uint32_t>(position)) + Long(frameSize);
        pictures += Chunk("00db", DrawFrame(frame).Rows());
    }
    const std::string stream = List("strl", StreamHeader() + StreamFormat());
    return Chunk("RIFF", "AVI " + List("hdrl", MainHeader() + stream) + List("movi", pictures) +
                             Chunk("idx1", index));
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    return Write(words[1], Animation()) ? 0 : 1;
}
