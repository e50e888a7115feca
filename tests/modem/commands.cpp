#include "commands.h"

#include "escaped_text.h"

#include <charconv>
#include <sstream>

namespace {

using Words = std::vector<std::string>;

struct Call {
    Lab& lab;
    Modem& modem;
    Words words; // the arguments
    Nanoseconds now;

    LineSettings& Settings() { return modem.Wire().settings; }
};

constexpr unsigned kLongestMilliseconds = 3'600'000;
constexpr unsigned kMostRings = 1000;

const std::string kBadValue = "error bad value";

std::string Done() {
    return "ok";
}

bool ParseNumber(const std::string& word, unsigned limit, unsigned& value) {
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, value);
    return result.ec == std::errc() && result.ptr == end && value <= limit;
}

bool ParseTime(const std::string& word, Nanoseconds& time) {
    unsigned milliseconds = 0;
    const bool good = ParseNumber(word, kLongestMilliseconds, milliseconds);
    time = milliseconds * kMillisecond;
    return good;
}

bool ParseSwitch(const std::string& word, bool& on) {
    on = word == "on";
    return on || word == "off";
}

std::string Joined(const Words& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string Reset(Call& call) {
    call.modem.PowerOn();
    return Done();
}

std::string DialTone(Call& call) {
    return ParseSwitch(call.words[0], call.Settings().dialTone) ? Done() : kBadValue;
}

std::string Silent(Call& call) {
    bool on = false;
    if (!ParseSwitch(call.words[0], on))
        return kBadValue;
    call.modem.SetSilent(on);
    return Done();
}

std::string Garbage(Call& call) {
    const std::string text = Joined(call.words);
    const std::optional<std::string> bytes = UnescapedText(text == "off" ? "" : text);
    if (!bytes)
        return kBadValue;
    call.modem.SetGarbage(*bytes);
    return Done();
}

std::string Rate(Call& call) {
    const std::string text = Joined(call.words);
    call.modem.SetRate(text == "none" ? "" : text);
    return Done();
}

std::string Setup(Call& call) {
    Nanoseconds time = 0;
    if (!ParseTime(call.words[0], time))
        return kBadValue;
    call.Settings().setup = time;
    return Done();
}

std::string CadenceCommand(Call& call) {
    Cadence cadence;
    if (!ParseTime(call.words[0], cadence.on) || !ParseTime(call.words[1], cadence.off) || cadence.on == 0 ||
        cadence.off == 0)
        return kBadValue;
    call.Settings().cadence = cadence;
    return Done();
}

std::string OutsideCommand(Call& call) {
    constexpr struct {
        const char* word;
        Manner manner;
    } kRows[] = {{"busy", Manner::kBusy},
                 {"noanswer", Manner::kNoAnswer},
                 {"voice", Manner::kVoice},
                 {"dead", Manner::kDead}};
    for (const auto& row : kRows) {
        if (call.words[1] != row.word)
            continue;
        call.Settings().outside[call.words[0]] = row.manner;
        return Done();
    }
    return kBadValue;
}

std::string CallCommand(Call& call) {
    unsigned rings = 0;
    if (!ParseNumber(call.words[0], kMostRings, rings) || rings == 0)
        return kBadValue;
    return call.lab.Telephones().CallFromOutside(call.modem.Wire(), rings, call.now) ? Done() : "error busy";
}

std::string HangUp(Call& call) {
    return call.lab.Telephones().Drop(call.modem.Wire()) ? Done() : "error no call";
}

std::string StateCommand(Call& call) {
    return "ok " + call.modem.State();
}

struct CommandRow {
    const char* name;
    std::size_t least; // words behind the name
    std::size_t most;
    std::string (*execute)(Call&);
    const char* usage;
};

constexpr std::size_t kAnyNumber = 64;

constexpr CommandRow kCommands[] = {
    {"reset", 0, 0, Reset, "reset"},
    {"dialtone", 1, 1, DialTone, "dialtone on|off"},
    {"silent", 1, 1, Silent, "silent on|off"},
    {"garbage", 1, kAnyNumber, Garbage, "garbage TEXT|off"},
    {"rate", 1, kAnyNumber, Rate, "rate TEXT|none"},
    {"setup", 1, 1, Setup, "setup MS"},
    {"cadence", 2, 2, CadenceCommand, "cadence ON-MS OFF-MS"},
    {"outside", 2, 2, OutsideCommand, "outside NUMBER busy|noanswer|voice|dead"},
    {"call", 1, 1, CallCommand, "call RINGS"},
    {"hangup", 0, 0, HangUp, "hangup"},
    {"state", 0, 0, StateCommand, "state"},
};

Words Split(const std::string& line) {
    std::istringstream stream(line);
    Words words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// Takes the number off the front of the words; with one modem there need be none.
Modem* TakeModem(Lab& lab, Words& words) {
    unsigned index = 0;
    if (ParseNumber(words[0], 1'000, index))
        words.erase(words.begin());
    else if (lab.Size() > 1)
        return nullptr;
    return index < lab.Size() ? &lab.At(index) : nullptr;
}

} // namespace

std::string ExecuteCommand(Lab& lab, const std::string& line, Nanoseconds now) {
    Words words = Split(line);
    if (words.empty())
        return "error empty line";
    Modem* modem = TakeModem(lab, words);
    if (!modem)
        return "error no such modem";
    const std::string name = words.empty() ? "" : words[0];
    for (const CommandRow& row : kCommands) {
        if (name != row.name)
            continue;
        words.erase(words.begin());
        if (words.size() < row.least || words.size() > row.most)
            return std::string("error usage: ") + row.usage;
        Call call{lab, *modem, std::move(words), now};
        return row.execute(call);
    }
    return "error unknown command " + name;
}
