#include "options.h"

#include "commands.h"

#include <cstdio>

namespace {

constexpr std::uint64_t kCableLimit = 128;

struct OptionRow {
    const char* name;
    const char* value; // what it takes, null for a switch
    bool (*apply)(const std::string& value, Options& options);
    const char* help;
};

template <typename Number>
bool Store(const std::string& word, std::uint64_t limit, Number& target) {
    std::uint64_t value = 0;
    if (!ParseNumber(word, value) || value > limit)
        return false;
    target = static_cast<Number>(value);
    return true;
}

constexpr OptionRow kOptions[] = {
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

bool Complain(const std::string& word) {
    std::fprintf(stderr, "tarnline: bad option %s\nusage: tarnline --dir DIR [options]\n", word.c_str());
    for (const OptionRow& row : kOptions)
        std::fprintf(stderr, "  %-13s %-6s %s\n", row.name, row.value ? row.value : "", row.help);
    return false;
}

const OptionRow* FindOption(const std::string& name) {
    for (const OptionRow& row : kOptions)
        if (name == row.name)
            return &row;
    return nullptr;
}

} // namespace

bool ParseOptions(int count, char** words, Options& options) {
    for (int i = 1; i < count; i++) {
        const OptionRow* row = FindOption(words[i]);
        if (!row || (row->value && i + 1 >= count))
            return Complain(words[i]);
        const std::string value = row->value ? words[++i] : "";
        if (!row->apply(value, options))
            return Complain(row->name);
    }
    if (options.folder.empty() || options.cables == 0)
        return Complain("(--dir and at least one cable are needed)");
    return true;
}
