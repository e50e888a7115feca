#include "escape_watch.h"

namespace {

constexpr Nanoseconds kGuardUnit = kSecond / 50;
constexpr std::uint8_t kLastEscape = 127;

} // namespace

void EscapeWatch::Feed(Bytes bytes, const Profile& profile, Nanoseconds now) {
    const std::uint8_t escape = profile.s[sregister::kEscape];
    const Nanoseconds guard = profile.Time(sregister::kGuardTime, kGuardUnit);
    for (const std::uint8_t byte : bytes) {
        const bool afterSilence = now - last_ >= guard;
        const bool counts = byte == escape && escape <= kLastEscape && (count_ > 0 || afterSilence);
        // A pause between the characters makes each the first of a new try.
        const bool first = count_ == 0 || (guard > 0 && afterSilence);
        if (!counts || count_ > kCharacters)
            count_ = 0;
        else
            count_ = first ? 1 : count_ + 1;
        last_ = now;
    }
}

Nanoseconds EscapeWatch::Due(const Profile& profile) const {
    return count_ == kCharacters ? last_ + profile.Time(sregister::kGuardTime, kGuardUnit) : kNever;
}
