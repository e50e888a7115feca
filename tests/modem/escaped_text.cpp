#include "escaped_text.h"

#include <charconv>
#include <cstdio>

namespace {

constexpr std::size_t kEscapeLength = 4; // \xNN

std::optional<char> EscapedByte(const std::string& text, std::size_t at) {
    if (text.size() < at + kEscapeLength || text[at + 1] != 'x')
        return std::nullopt;
    unsigned value = 0;
    const char* end = text.data() + at + kEscapeLength;
    const auto result = std::from_chars(text.data() + at + 2, end, value, 16);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return static_cast<char>(value);
}

} // namespace

std::string EscapedText(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\x%02x",
                      static_cast<unsigned>(static_cast<unsigned char>(byte)));
        const bool visible = byte > ' ' && byte < 0x7f && byte != '\\';
        text += visible ? std::string(1, byte) : escaped;
    }
    return text;
}

std::optional<std::string> UnescapedText(const std::string& text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size();) {
        const bool doubled = text.compare(at, 2, "\\\\") == 0;
        const bool escaped = text[at] == '\\' && !doubled;
        const std::optional<char> byte = escaped ? EscapedByte(text, at) : text[at];
        if (!byte)
            return std::nullopt;
        bytes += *byte;
        at += escaped ? kEscapeLength : doubled ? 2 : 1;
    }
    return bytes;
}
