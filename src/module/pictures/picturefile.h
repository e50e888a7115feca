// What the drawing programs put into their files: numbers, low byte first, and the file as a whole.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

inline std::string Long(uint32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

inline std::string Word(uint32_t value) {
    return Long(value).substr(0, 2);
}

// False: nothing, or only a part of it, is there.
inline bool Write(const char* path, const std::string& bytes) {
    std::FILE* file = std::fopen(path, "wb");
    if (!file)
        return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}
