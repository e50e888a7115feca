#include "options.h"

#include <functional>
#include <map>

namespace {

const std::map<std::wstring, Emulation> emulations = {
    {L"tty", Emulation_TTY},
    {L"ansi", Emulation_Ansi},
    {L"vt52", Emulation_VT52},
    {L"vt100", Emulation_VT100},
};

using Take = std::function<void(Options&, const std::wstring&)>;

void TakeEmulation(Options& options, const std::wstring& name) {
    const auto found = emulations.find(name);
    if (found == emulations.end())
        options.problem = L"There is no emulation \"" + name + L"\".";
    else
        options.emulation = found->second;
}

const std::map<std::wstring, Take> takes = {
    {L"--port", [](Options& o, const std::wstring& word) { o.port = word; }},
    {L"--settings", [](Options& o, const std::wstring& word) { o.settings = word; }},
    {L"--emulation", TakeEmulation},
};

} // namespace

Options ReadOptions(int count, wchar_t** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::wstring word = words[i];
        const auto found = takes.find(word);
        if (found != takes.end() && i + 1 < count)
            found->second(options, words[++i]);
        else
            options.problem = L"What is \"" + word + L"\"?";
    }
    return options;
}
