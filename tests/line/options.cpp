#include "options.h"

#include "commands.h"
#include "optiontable.h"

namespace {

constexpr std::uint64_t kCableLimit = 128;

template <typename Number>
bool Store(const std::string& word, std::uint64_t limit, Number& target) {
    std::uint64_t value = 0;
    if (!ParseNumber(word, value) || value > limit)
        return false;
    target = static_cast<Number>(value);
    return true;
}

constexpr OptionRow<Options> kOptions[] = {
    {"--dir", "DIR", [](const std::string& word, Options& o) { return !(o.folder = word).empty(); },
     "where the links, the control file and the signal state go"},
    {"--cables", "N", [](const std::string& word, Options& o) { return Store(word, kCableLimit, o.cables); },
     "number of cables (1)"},
    {"--baud", "N", [](const std::string& word, Options& o) { return Store(word, 100'000'000, o.wire.baud); },
     "bits per second, 0 for unpaced (0)"},
    {"--latency", "MS",
     [](const std::string& word, Options& o) { return Store(word, 3'600'000, o.wire.latency); },
     "added each way (0)"},
    {"--seed", "N", [](const std::string& word, Options& o) { return ParseNumber(word, o.wire.noise.seed); },
     "of the noise (1)"},
    {"--corrupt", "P",
     [](const std::string& word, Options& o) { return ParseProbability(word, o.wire.noise.corrupt); },
     "probability per byte (0)"},
    {"--drop", "P",
     [](const std::string& word, Options& o) { return ParseProbability(word, o.wire.noise.drop); },
     "probability per byte (0)"},
    {"--double", "P",
     [](const std::string& word, Options& o) { return ParseProbability(word, o.wire.noise.duplicate); },
     "probability per byte (0)"},
    {"--fifo", "BYTES",
     [](const std::string& word, Options& o) { return Store(word, 1'000'000'000, o.wire.fifo); },
     "receiver FIFO of every end, 0 for none (0)"},
    {"--transcript", "FILE",
     [](const std::string& word, Options& o) { return !(o.transcript = word).empty(); },
     "record of the traffic; with several cables the number is appended"},
    {"--with-parent", nullptr, [](const std::string&, Options& o) { return o.withParent = true; },
     "end when the parent process ends"},
};

} // namespace

bool ParseOptions(int count, char** words, Options& options) {
    const OptionTable<Options> table("tarnline", "--dir DIR", kOptions);
    if (!table.Parse(count, words, options))
        return false;
    if (options.folder.empty() || options.cables == 0)
        return table.Complain("(--dir and at least one cable are needed)");
    return true;
}
