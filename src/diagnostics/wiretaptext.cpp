#include "wiretaptext.h"

#include <algorithm>
#include <climits>

namespace {

enum class Place : size_t { First, InQuotes, AfterChr };

struct ByteKind {
    bool opensQuotes;          // the byte stands inside quotes, so its piece leaves them open
    std::string_view leads[3]; // what joins the byte to what stands before it, by Place
};

//                                      First  InQuotes  AfterChr
constexpr ByteKind printable = {true, {"\"", "", " + \""}};
constexpr ByteKind control = {false, {"", "\" + ", " + "}};

constexpr unsigned char firstPrintable = 32; // bytes of 128 and up count as printable
constexpr int lineEndSpare = 1;
constexpr int closingQuoteSpare = 2; // the line's end and the quote that closes the run

constexpr std::string_view continuation = " + _\r\n";
constexpr std::string_view lineEnd = "\r\n";

class LineRenderer {
  public:
    explicit LineRenderer(int width) : width_(width) {}

    bool Take(char byte) {
        if (!Fits(byte))
            return false;
        Force(byte);
        return true;
    }

    void Force(char byte) {
        line_.text += Piece(byte);
        line_.taken += 1;
        place_ = KindOf(byte).opensQuotes ? Place::InQuotes : Place::AfterChr;
    }

    RenderedLine Finish() {
        if (place_ == Place::InQuotes)
            line_.text += '"';
        return std::move(line_);
    }

  private:
    static const ByteKind& KindOf(char byte) {
        return static_cast<unsigned char>(byte) >= firstPrintable ? printable : control;
    }

    std::string Piece(char byte) const {
        const ByteKind& kind = KindOf(byte);
        std::string piece(kind.leads[static_cast<size_t>(place_)]);
        if (kind.opensQuotes)
            return piece += byte;
        return piece += "Chr(" + std::to_string(byte) + ")";
    }

    bool Fits(char byte) const {
        const int spare = KindOf(byte).opensQuotes ? closingQuoteSpare : lineEndSpare;
        const int left = width_ - static_cast<int>(line_.text.size());
        return static_cast<int>(Piece(byte).size()) + spare <= left;
    }

    int width_;
    Place place_ = Place::First;
    RenderedLine line_;
};

int FirstLineWidth(size_t cchText) {
    return LogLineWidth - static_cast<int>(std::min<size_t>(cchText, INT_MAX));
}

RenderedLine RenderAtLeastOne(std::string_view bytes, int width) {
    RenderedLine line = RenderBytes(bytes, width);
    if (line.taken)
        return line;
    LineRenderer renderer(width);
    renderer.Force(bytes.front());
    return renderer.Finish();
}

} // namespace

RenderedLine RenderBytes(std::string_view bytes, int width) {
    LineRenderer renderer(width);
    for (const char byte : bytes.substr(0, LogBytesPerLine)) {
        if (!renderer.Take(byte))
            break;
    }
    return renderer.Finish();
}

std::string DataLines(size_t cchText, std::string_view bytes) {
    std::string lines;
    int width = FirstLineWidth(cchText);
    while (!bytes.empty()) {
        if (!lines.empty())
            lines.append(LogIndent, ' ');
        const RenderedLine line = RenderAtLeastOne(bytes, width);
        bytes.remove_prefix(line.taken);
        lines += line.text;
        lines += bytes.empty() ? lineEnd : continuation;
        width = LogLineWidth - LogIndent;
    }
    return lines;
}
