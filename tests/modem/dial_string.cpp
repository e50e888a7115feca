#include "dial_string.h"

#include <string_view>

namespace {

constexpr Nanoseconds kToneTime = 100 * kMillisecond;
constexpr Nanoseconds kPulseTime = 100 * kMillisecond;
constexpr Nanoseconds kFlashTime = 500 * kMillisecond;

constexpr std::string_view kPulseDigits = "0123456789";
constexpr std::string_view kToneDigits = "0123456789*#ABCD";
constexpr std::string_view kDecoration = " -().";

bool Has(std::string_view set, char character) {
    return set.find(character) != set.npos;
}

Nanoseconds PulseTime(char digit) {
    return (digit == '0' ? 10 : digit - '0') * kPulseTime;
}

struct ModifierRow {
    char character;
    DialStep::Kind kind;
    Nanoseconds (*time)(const Profile& profile);
};
constexpr ModifierRow kModifiers[] = {
    {',', DialStep::Kind::kPause, [](const Profile& p) { return p.Time(sregister::kCommaPause, kSecond); }},
    {'W', DialStep::Kind::kToneWait,
     [](const Profile& p) { return p.Time(sregister::kDialToneWait, kSecond); }},
    {'@', DialStep::Kind::kAnswerWait,
     [](const Profile& p) { return p.Time(sregister::kCarrierWait, kSecond); }},
    {'!', DialStep::Kind::kPause, [](const Profile&) { return kFlashTime; }},
};

bool AddModifier(char character, const Profile& profile, std::vector<DialStep>& steps) {
    for (const ModifierRow& row : kModifiers) {
        if (character != row.character)
            continue;
        steps.push_back({row.kind, row.time(profile), 0});
        return true;
    }
    return false;
}

// By pulses only the figures can be sent; the other keys are passed over.
bool AddDigit(char character, bool pulse, std::vector<DialStep>& steps) {
    if (!Has(kToneDigits, character))
        return false;
    if (!pulse)
        steps.push_back({DialStep::Kind::kDigit, kToneTime, character});
    else if (Has(kPulseDigits, character))
        steps.push_back({DialStep::Kind::kDigit, PulseTime(character), character});
    return true;
}

} // namespace

std::optional<DialString> ParseDialString(const std::string& text, const Profile& profile) {
    DialString dial;
    bool pulse = profile.pulse;
    for (const char character : text) {
        if (character == ';') {
            dial.staysInCommandState = true;
            break;
        }
        if (character == 'T' || character == 'P')
            pulse = character == 'P';
        else if (!Has(kDecoration, character) && !AddModifier(character, profile, dial.steps) &&
                 !AddDigit(character, pulse, dial.steps))
            return std::nullopt;
    }
    return dial;
}
