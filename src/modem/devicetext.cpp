#include "devicetext.h"

namespace {

constexpr char zero = 'A';

char LetterOf(unsigned half) {
    return static_cast<char>(zero + half);
}

unsigned HalfOf(char letter) {
    return static_cast<unsigned char>(letter) - static_cast<unsigned>(zero);
}

} // namespace

std::string DeviceTextOf(std::span<const std::byte> bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::byte byte : bytes) {
        const auto value = std::to_integer<unsigned>(byte);
        text += LetterOf(value >> 4);
        text += LetterOf(value & 0x0F);
    }
    return text;
}

std::vector<std::byte> BytesOfDeviceText(std::string_view text) {
    std::vector<std::byte> bytes(text.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::byte>((HalfOf(text[2 * i]) << 4) + HalfOf(text[2 * i + 1]));
    return bytes;
}
