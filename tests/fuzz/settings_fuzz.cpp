// The settings text: what is read has values of the tables, survives the way out and back, and stops at its
// nineteenth character.
#include "core/settings.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

constexpr size_t longestText = 19; // characters
constexpr LineSettings untouched = {-7, -8, -9, -10};

void Require(bool condition) {
    if (!condition)
        std::abort();
}

bool operator==(const LineSettings& a, const LineSettings& b) {
    return a.speed == b.speed && a.parity == b.parity && a.dataBits == b.dataBits && a.stopBits == b.stopBits;
}

bool IsBetween(int value, int least, int most) {
    return value >= least && value <= most;
}

void CheckValues(const LineSettings& settings) {
    Require(settings.speed >= 0);
    Require(IsBetween(settings.parity, AbsentSetting, 4));
    Require(settings.dataBits == AbsentSetting || IsBetween(settings.dataBits, 4, 8));
    Require(IsBetween(settings.stopBits, AbsentSetting, 2));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    LineSettings settings = untouched;
    const bool accepted = ParseSettings(text.c_str(), settings);
    LineSettings ofCut = untouched;
    const std::string cut = std::string(text.c_str()).substr(0, longestText);
    Require(ParseSettings(cut.c_str(), ofCut) == accepted && ofCut == settings);
    if (!accepted) {
        Require(settings == untouched);
        return 0;
    }
    CheckValues(settings);
    LineSettings again = untouched;
    Require(ParseSettings(FormatSettings(settings).c_str(), again));
    Require(again == settings);
    return 0;
}
