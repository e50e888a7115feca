#include "noise.h"

namespace {

enum What : std::uint64_t { kDrop, kCorrupt, kPattern, kDouble, kDraws };

// The finishing steps of the published SplitMix64 generator.
std::uint64_t Mix(std::uint64_t value) {
    value += 0x9e3779b97f4a7c15ULL;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
    return value ^ (value >> 31);
}

} // namespace

void Noise::Set(const NoiseSettings& settings) {
    settings_ = settings;
    position_ = 0;
}

Bytes Noise::Apply(Bytes in) {
    if (Quiet()) {
        position_ += in.size();
        return in;
    }
    out_.clear();
    for (const std::uint8_t byte : in) {
        ApplyToByte(byte);
        position_++;
    }
    return out_;
}

void Noise::ApplyToByte(std::uint8_t byte) {
    if (position_ < settings_.from || position_ >= settings_.until) {
        out_.push_back(byte);
        return;
    }
    if (Happens(kDrop, settings_.drop)) {
        counts_.dropped++;
        return;
    }
    if (Happens(kCorrupt, settings_.corrupt)) {
        // 1 to 255: a corrupted byte always differs.
        byte ^= static_cast<std::uint8_t>(1 + Draw(kPattern) % 255);
        counts_.corrupted++;
    }
    out_.push_back(byte);
    if (Happens(kDouble, settings_.duplicate)) {
        out_.push_back(byte);
        counts_.doubled++;
    }
}

std::uint64_t Noise::Draw(std::uint64_t what) const {
    return Mix(Mix(settings_.seed ^ Mix(stream_)) + position_ * kDraws + what);
}

bool Noise::Happens(std::uint64_t what, double probability) const {
    constexpr double kScale = 1.0 / 9007199254740992.0; // 2 to the -53rd: the draw's upper bits as [0, 1)
    return static_cast<double>(Draw(what) >> 11) * kScale < probability;
}
