#include "transcript.h"

#include <algorithm>

namespace {

constexpr std::size_t kBytesPerLine = 16;

char Printable(std::uint8_t byte) {
    return byte >= 0x20 && byte < 0x7f ? static_cast<char>(byte) : '.';
}

} // namespace

bool Transcript::Open(const std::string& path, Nanoseconds now) {
    file_.reset(std::fopen(path.c_str(), "we"));
    start_ = now;
    return IsOpen();
}

void Transcript::Stamp(Nanoseconds now) {
    const double milliseconds = static_cast<double>(now - start_) / static_cast<double>(kMillisecond);
    std::fprintf(file_.get(), "%.3f ", milliseconds);
}

void Transcript::Data(const char* direction, Bytes bytes, Nanoseconds now) {
    if (!IsOpen())
        return;
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), kBytesPerLine);
        Line(direction, bytes.first(count), now);
        bytes = bytes.subspan(count);
    }
}

void Transcript::Line(const char* direction, Bytes bytes, Nanoseconds now) {
    Stamp(now);
    std::string hex;
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char pair[4];
        std::snprintf(pair, sizeof pair, "%02x ", byte);
        hex += pair;
        text += Printable(byte);
    }
    hex.resize(kBytesPerLine * 3, ' ');
    std::fprintf(file_.get(), "%s %s|%s|\n", direction, hex.c_str(), text.c_str());
}

void Transcript::Note(const std::string& text, Nanoseconds now) {
    if (!IsOpen())
        return;
    Stamp(now);
    std::fprintf(file_.get(), "# %s\n", text.c_str());
}

void Transcript::Flush() {
    if (IsOpen())
        std::fflush(file_.get());
}
