// Stored states as bytes: written out as hexadecimal digits, in streams in memory.
#pragma once

#include <objidl.h>
#include <ole2.h>
#include <windows.h>
#include <wrl/client.h>

#include <random>
#include <string>
#include <string_view>

namespace host {

using Bytes = std::string;

inline unsigned DigitValue(char digit) {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

// Spaces are for the reader.
inline Bytes FromHex(std::string_view text) {
    Bytes bytes;
    std::string digits;
    for (const char c : text)
        if (c != ' ')
            digits += c;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(DigitValue(digits[i]) << 4 | DigitValue(digits[i + 1]));
    return bytes;
}

inline std::string ToHex(std::string_view bytes) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        text += digits[static_cast<unsigned char>(c) >> 4];
        text += digits[static_cast<unsigned char>(c) & 15];
    }
    return text;
}

inline Microsoft::WRL::ComPtr<IStream> StreamOf(std::string_view bytes) {
    Microsoft::WRL::ComPtr<IStream> stream;
    CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    return stream;
}

// All of a stream, whatever its position.
inline Bytes BytesOf(IStream* stream) {
    STATSTG facts = {};
    stream->Stat(&facts, STATFLAG_NONAME);
    Bytes bytes(static_cast<size_t>(facts.cbSize.QuadPart), '\0');
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    return bytes;
}

// Bytes of a good stream, some of them changed, and a part of it lost now and then.
class Damage {
  public:
    explicit Damage(unsigned seed) : random_(seed) {}

    Bytes Of(Bytes bytes) {
        for (unsigned changes = Below(8) + 1; changes > 0; --changes)
            bytes[Below(bytes.size())] = static_cast<char>(Below(256));
        if (Below(4) == 0)
            bytes.resize(Below(bytes.size()));
        return bytes;
    }

  private:
    unsigned Below(size_t limit) { return static_cast<unsigned>(random_() % limit); }

    std::mt19937 random_;
};

} // namespace host
