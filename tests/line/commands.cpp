#include "commands.h"

#include <charconv>
#include <sstream>

namespace {

using Words = std::vector<std::string>;

// What a command may name first: a direction (ab, ba), an end (a, b), or nothing.
enum class Place { kNone, kDirection, kEnd, kOneEnd };

struct Call {
    Wire& wire;
    std::vector<int> places; // both when none was named
    Words words;             // the arguments after the place
};

const std::string kBadValue = "error bad value";

std::string Done() {
    return "ok";
}

bool ParseSwitch(const std::string& word, bool& on) {
    on = word == "on" || word == "1";
    return on || word == "off" || word == "0";
}

std::string Baud(Call& call) {
    std::uint64_t baud = 0;
    if (!ParseNumber(call.words[0], baud) || baud > 100'000'000)
        return kBadValue;
    for (const int direction : call.places)
        call.wire.SetBaud(direction, static_cast<long>(baud));
    return Done();
}

std::string Latency(Call& call) {
    std::uint64_t latency = 0;
    if (!ParseNumber(call.words[0], latency) || latency > 3'600'000)
        return kBadValue;
    for (const int direction : call.places)
        call.wire.SetLatency(direction, static_cast<long>(latency));
    return Done();
}

std::string NoiseCommand(Call& call) {
    NoiseSettings noise;
    noise.seed = call.wire.NoiseOf(call.places[0]).seed;
    const bool off = call.words.size() == 1 && call.words[0] == "off";
    for (const std::string& word : call.words)
        if (!off && !ParseNoise(word, noise))
            return kBadValue;
    for (const int direction : call.places)
        call.wire.SetNoise(direction, noise);
    return Done();
}

std::string Fifo(Call& call) {
    std::uint64_t bytes = 0;
    if (!ParseNumber(call.words[0], bytes) || bytes > 1'000'000'000)
        return kBadValue;
    for (const int end : call.places)
        call.wire.SetFifo(end, bytes);
    return Done();
}

std::string Cut(Call& call) {
    call.wire.SetCut(true);
    return Done();
}

std::string Mend(Call& call) {
    call.wire.SetCut(false);
    return Done();
}

std::string HangUp(Call& call) {
    return call.wire.HangUp(call.places[0]) ? Done() : "error already hung up";
}

std::string Restore(Call& call) {
    return call.wire.Restore(call.places[0]) ? Done() : "error not hung up";
}

std::string Ring(Call& call) {
    bool on = false;
    if (!ParseSwitch(call.words[0], on))
        return kBadValue;
    for (const int end : call.places)
        call.wire.Lines().SetRing(end, on);
    return Done();
}

std::string CarrierCommand(Call& call) {
    constexpr struct {
        const char* word;
        Carrier carrier;
    } kRows[] = {{"on", Carrier::kOn}, {"off", Carrier::kOff}, {"follow", Carrier::kFollow}};
    for (const auto& row : kRows) {
        if (call.words[0] != row.word)
            continue;
        for (const int end : call.places)
            call.wire.Lines().SetCarrier(end, row.carrier);
        return Done();
    }
    return kBadValue;
}

std::string Lines(Call& call) {
    unsigned set = 0;
    unsigned clear = 0;
    for (const std::string& word : call.words) {
        const unsigned bit = word.starts_with("dtr=") ? TIOCM_DTR : word.starts_with("rts=") ? TIOCM_RTS : 0;
        bool on = false;
        if (bit == 0 || !ParseSwitch(word.substr(4), on))
            return kBadValue;
        (on ? set : clear) |= bit;
    }
    for (const int end : call.places)
        call.wire.Lines().Drive(end, set, clear);
    return Done();
}

std::string CountAt(Call& call, tarn_line_count what, std::size_t amountWord) {
    std::uint64_t amount = 1;
    if (call.words.size() > amountWord &&
        (!ParseNumber(call.words[amountWord], amount) || amount > 1'000'000))
        return kBadValue;
    for (const int end : call.places)
        call.wire.Lines().Count(end, what, static_cast<unsigned>(amount));
    return Done();
}

std::string Break(Call& call) {
    return CountAt(call, TARN_COUNT_BREAK, 0);
}

std::string Error(Call& call) {
    constexpr struct {
        const char* word;
        tarn_line_count count;
    } kRows[] = {{"frame", TARN_COUNT_FRAME},
                 {"overrun", TARN_COUNT_OVERRUN},
                 {"parity", TARN_COUNT_PARITY},
                 {"buffer", TARN_COUNT_BUFFER_OVERRUN},
                 {"break", TARN_COUNT_BREAK}};
    for (const auto& row : kRows)
        if (call.words[0] == row.word)
            return CountAt(call, row.count, 1);
    return kBadValue;
}

std::string SignalsCommand(Call& call) {
    return "ok " + call.wire.Lines().Report(0) + " " + call.wire.Lines().Report(1);
}

std::string Stats(Call& call) {
    return "ok " + call.wire.Stats();
}

std::string TranscriptCommand(Call& call) {
    if (call.words[0] == "off") {
        call.wire.Record().Close();
        return Done();
    }
    return call.wire.Record().Open(call.words[0], Now()) ? Done() : "error cannot write " + call.words[0];
}

std::string Reset(Call& call) {
    call.wire.Reset();
    return Done();
}

struct CommandRow {
    const char* name;
    Place place;
    std::size_t least; // words after the place
    std::size_t most;
    std::string (*execute)(Call&);
    const char* usage;
};

constexpr CommandRow kCommands[] = {
    {"baud", Place::kDirection, 1, 1, Baud, "baud [ab|ba] BITS-PER-SECOND"},
    {"latency", Place::kDirection, 1, 1, Latency, "latency [ab|ba] MS"},
    {"noise", Place::kDirection, 1, 6, NoiseCommand,
     "noise [ab|ba] off | [seed=N] [corrupt=P] [drop=P] [double=P] [from=N] [until=N]"},
    {"fifo", Place::kEnd, 1, 1, Fifo, "fifo [a|b] BYTES"},
    {"cut", Place::kNone, 0, 0, Cut, "cut"},
    {"mend", Place::kNone, 0, 0, Mend, "mend"},
    {"hangup", Place::kOneEnd, 0, 0, HangUp, "hangup a|b"},
    {"restore", Place::kOneEnd, 0, 0, Restore, "restore a|b"},
    {"ring", Place::kOneEnd, 1, 1, Ring, "ring a|b on|off"},
    {"carrier", Place::kOneEnd, 1, 1, CarrierCommand, "carrier a|b on|off|follow"},
    {"lines", Place::kOneEnd, 1, 2, Lines, "lines a|b [dtr=on|off] [rts=on|off]"},
    {"break", Place::kOneEnd, 0, 1, Break, "break a|b [COUNT]"},
    {"error", Place::kOneEnd, 1, 2, Error, "error a|b frame|overrun|parity|buffer|break [COUNT]"},
    {"signals", Place::kNone, 0, 0, SignalsCommand, "signals"},
    {"stats", Place::kNone, 0, 0, Stats, "stats"},
    {"transcript", Place::kNone, 1, 1, TranscriptCommand, "transcript FILE|off"},
    {"reset", Place::kNone, 0, 0, Reset, "reset"},
};

Words Split(const std::string& line) {
    std::istringstream stream(line);
    Words words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// Takes the place off the front of the words. False if the command needs one that is not there.
bool TakePlace(Place place, Words& words, std::vector<int>& places) {
    places = {0, 1};
    if (place == Place::kNone)
        return true;
    const bool direction = place == Place::kDirection;
    const std::string names[] = {direction ? "ab" : "a", direction ? "ba" : "b"};
    for (const int number : {0, 1}) {
        if (words.empty() || words[0] != names[number])
            continue;
        places = {number};
        words.erase(words.begin());
        return true;
    }
    return place != Place::kOneEnd;
}

bool TakeCable(Wires& wires, Words& words, Wire*& wire) {
    std::uint64_t index = 0;
    if (ParseNumber(words[0], index))
        words.erase(words.begin());
    else if (wires.size() > 1)
        return false;
    if (index >= wires.size())
        return false;
    wire = wires[index].get();
    return true;
}

} // namespace

bool ParseNumber(const std::string& word, std::uint64_t& value) {
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

bool ParseProbability(const std::string& word, double& value) {
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, value);
    return result.ec == std::errc() && result.ptr == end && value >= 0 && value <= 1;
}

bool ParseNoise(const std::string& word, NoiseSettings& noise) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos)
        return false;
    const std::string key = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    const struct {
        const char* key;
        double* probability;
        std::uint64_t* number;
    } rows[] = {{"corrupt", &noise.corrupt, nullptr},  {"drop", &noise.drop, nullptr},
                {"double", &noise.duplicate, nullptr}, {"seed", nullptr, &noise.seed},
                {"from", nullptr, &noise.from},        {"until", nullptr, &noise.until}};
    for (const auto& row : rows)
        if (key == row.key)
            return row.probability ? ParseProbability(value, *row.probability)
                                   : ParseNumber(value, *row.number);
    return false;
}

std::string ExecuteCommand(Wires& wires, const std::string& line) {
    Words words = Split(line);
    Wire* wire = nullptr;
    if (words.empty())
        return "error empty line";
    if (!TakeCable(wires, words, wire))
        return "error no such cable";
    const std::string name = words.empty() ? "" : words[0];
    for (const CommandRow& row : kCommands) {
        if (name != row.name)
            continue;
        words.erase(words.begin());
        Call call{*wire, {}, std::move(words)};
        if (!TakePlace(row.place, call.words, call.places) || call.words.size() < row.least ||
            call.words.size() > row.most)
            return std::string("error usage: ") + row.usage;
        wire->Record().Note(line, Now());
        const std::string reply = row.execute(call);
        wire->Record().Flush();
        return reply;
    }
    return "error unknown command " + name;
}
