// The two checksums of ZModem's headers and sub-packets behind one face.
#pragma once

#include "crc.h"

#include <array>
#include <cstdint>

class ZSum16 {
  public:
    static constexpr int Bytes = 2;

    void Add(int c) { value_ = crc::Update16(value_, c); }
    bool Matches() const { return value_ == 0; } // once the checksum's own bytes are added
    unsigned long Value() const { return value_; }

    // As they go out: high byte first.
    std::array<int, Bytes> Out() const { return {value_ >> 8, value_ & 0xFF}; }

  private:
    uint16_t value_ = 0;
};

class ZSum32 {
  public:
    static constexpr int Bytes = 4;

    void Add(int c) { value_ = crc::Update32(value_, c); }
    bool Matches() const { return value_ == crc::residue32; }
    unsigned long Value() const { return value_; }

    // As they go out: complemented, low byte first.
    std::array<int, Bytes> Out() const {
        std::array<int, Bytes> bytes = {};
        for (int i = 0; i < Bytes; ++i)
            bytes[static_cast<size_t>(i)] = static_cast<int>(~value_ >> (8 * i) & 0xFF);
        return bytes;
    }

  private:
    uint32_t value_ = crc::start32;
};
