#include "options.h"

#include <cstdio>

namespace {

struct OptionRow {
    const char* name;
    const char* value; // what it takes, null for a switch
    bool (*apply)(const std::string& value, Options& options);
    const char* help;
};

bool AddNumber(const std::string& number, Options& options) {
    options.numbers.push_back(number);
    return !number.empty() && number.find_first_not_of("0123456789*#ABCD") == number.npos;
}

constexpr OptionRow kOptions[] = {
    {"--line", "DIR", [](const std::string& word, Options& o) { return !(o.folder = word).empty(); },
     "folder of a running tarnline"},
    {"--number", "N", AddNumber, "a modem with this telephone number, at the next cable's end b"},
    {"--transcript", "FILE",
     [](const std::string& word, Options& o) { return !(o.transcript = word).empty(); },
     "record of what computers and modems said"},
    {"--with-parent", nullptr, [](const std::string&, Options& o) { return o.withParent = true; },
     "end when the parent process ends"},
};

bool Complain(const std::string& word) {
    std::fprintf(stderr, "tarnmodem: bad option %s\nusage: tarnmodem --line DIR --number N [options]\n",
                 word.c_str());
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
    if (options.folder.empty() || options.numbers.empty())
        return Complain("(--line and at least one --number are needed)");
    return true;
}
