// Seeded noise on one direction of a cable.
//
// What happens to a byte depends on the seed and on the byte's position in the stream alone, never on how the
// stream was cut into reads.
#pragma once

#include "byte_queue.h"

#include <cstdint>
#include <limits>
#include <vector>

struct NoiseSettings {
    std::uint64_t seed = 1;
    double corrupt = 0; // probabilities per byte, 0 to 1
    double drop = 0;
    double duplicate = 0;
    std::uint64_t from = 0; // positions outside [from, until) stay clean
    std::uint64_t until = std::numeric_limits<std::uint64_t>::max();
};

struct NoiseCounts {
    std::uint64_t corrupted = 0;
    std::uint64_t dropped = 0;
    std::uint64_t doubled = 0;
};

class Noise {
  public:
    // `stream` sets the directions and cables of one seed apart.
    explicit Noise(std::uint64_t stream) : stream_(stream) {}

    const NoiseSettings& Settings() const { return settings_; }
    const NoiseCounts& Counts() const { return counts_; }

    // Positions count from 0 again.
    void Set(const NoiseSettings& settings);

    // Returns what comes out for `in`; the result is valid until the next call.
    Bytes Apply(Bytes in);
    void ClearCounts() { counts_ = {}; }

  private:
    bool Quiet() const { return settings_.corrupt <= 0 && settings_.drop <= 0 && settings_.duplicate <= 0; }
    void ApplyToByte(std::uint8_t byte);
    std::uint64_t Draw(std::uint64_t what) const;
    bool Happens(std::uint64_t what, double probability) const;

    std::uint64_t stream_;
    NoiseSettings settings_;
    NoiseCounts counts_;
    std::uint64_t position_ = 0;
    std::vector<std::uint8_t> out_;
};
