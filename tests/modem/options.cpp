#include "options.h"

#include "optiontable.h"

namespace {

bool AddNumber(const std::string& number, Options& options) {
    options.numbers.push_back(number);
    return !number.empty() && number.find_first_not_of("0123456789*#ABCD") == number.npos;
}

constexpr OptionRow<Options> kOptions[] = {
    {"--line", "DIR", [](const std::string& word, Options& o) { return !(o.folder = word).empty(); },
     "folder of a running tarnline"},
    {"--number", "N", AddNumber, "a modem with this telephone number, at the next cable's end b"},
    {"--transcript", "FILE",
     [](const std::string& word, Options& o) { return !(o.transcript = word).empty(); },
     "record of what computers and modems said"},
    {"--with-parent", nullptr, [](const std::string&, Options& o) { return o.withParent = true; },
     "end when the parent process ends"},
};

} // namespace

bool ParseOptions(int count, char** words, Options& options) {
    const OptionTable<Options> table("tarnmodem", "--line DIR --number N", kOptions);
    if (!table.Parse(count, words, options))
        return false;
    if (options.folder.empty() || options.numbers.empty())
        return table.Complain("(--line and at least one --number are needed)");
    return true;
}
