#include "options.h"

#include "TarnComm.h"

#include <cstdlib>
#include <functional>
#include <map>

namespace {

const std::map<std::string, int> emulations = {
    {"tty", TARN_EMULATION_TTY},
    {"ansi", TARN_EMULATION_ANSI},
    {"vt52", TARN_EMULATION_VT52},
    {"vt100", TARN_EMULATION_VT100},
};

using Take = std::function<void(Options&, const std::string&)>;

void TakeEmulation(Options& options, const std::string& name) {
    const auto found = emulations.find(name);
    if (found == emulations.end())
        options.problem = "There is no emulation \"" + name + "\".";
    else
        options.emulation = found->second;
}

const std::map<std::string, Take> takes = {
    {"--port", [](Options& o, const std::string& word) { o.port = word; }},
    {"--settings", [](Options& o, const std::string& word) { o.settings = word; }},
    {"--emulation", TakeEmulation},
    {"--rows", [](Options& o, const std::string& word) { o.rows = std::atoi(word.c_str()); }},
    {"--columns", [](Options& o, const std::string& word) { o.columns = std::atoi(word.c_str()); }},
    {"--scrollback", [](Options& o, const std::string& word) { o.scrollRows = std::atoi(word.c_str()); }},
    {"--capture", [](Options& o, const std::string& word) { o.captureFile = word; }},
};

} // namespace

Options ReadOptions(int count, char** words) {
    Options options;
    options.emulation = TARN_EMULATION_ANSI;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const auto found = takes.find(word);
        if (word == "--echo")
            options.echo = true;
        else if (found != takes.end() && i + 1 < count)
            found->second(options, words[++i]);
        else
            options.problem = "What is \"" + word + "\"?";
    }
    return options;
}
