// The two checksums of the modem protocols, byte by byte.
//
// CRC-16 is the form of XModem: x^16 + x^12 + x^5 + 1, from 0, high bit first. CRC-32 is that of ZModem and
// of IEEE 802.3: low bit first, from all ones, complemented when it is sent.
#pragma once

#include <array>
#include <cstdint>

namespace crc {

consteval std::array<uint16_t, 256> MakeTable16() {
    std::array<uint16_t, 256> table = {};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned value = byte << 8;
        for (int bit = 0; bit < 8; ++bit)
            value = value & 0x8000 ? (value << 1) ^ 0x1021 : value << 1;
        table[byte] = static_cast<uint16_t>(value);
    }
    return table;
}

consteval std::array<uint32_t, 256> MakeTable32() {
    std::array<uint32_t, 256> table = {};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = value & 1 ? (value >> 1) ^ 0xEDB88320 : value >> 1;
        table[byte] = value;
    }
    return table;
}

inline constexpr std::array<uint16_t, 256> table16 = MakeTable16();
inline constexpr std::array<uint32_t, 256> table32 = MakeTable32();

constexpr uint16_t Update16(uint16_t value, int byte) {
    return static_cast<uint16_t>((value << 8) ^ table16[((value >> 8) ^ byte) & 0xFF]);
}

inline constexpr uint32_t start32 = 0xFFFFFFFF;
inline constexpr uint32_t residue32 = 0xDEBB20E3; // of a block and its four CRC bytes, low byte first

constexpr uint32_t Update32(uint32_t value, int byte) {
    return (value >> 8) ^ table32[(value ^ static_cast<uint32_t>(byte)) & 0xFF];
}

} // namespace crc
