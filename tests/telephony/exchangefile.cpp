#include "exchangefile.h"

#include "exchange.h"
#include "plant.h"

#include <windows.h>

#include <tapi.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Fields = std::vector<std::string>;

constexpr std::pair<const char*, int> outcomes[] = {
    {"connects", ExchangeConnects},
    {"busy", ExchangeBusy},
    {"busystateonly", ExchangeBusyStateOnly},
    {"noanswer", ExchangeNoAnswer},
    {"disconnects", ExchangeDisconnects},
    {"idle", ExchangeIdle},
    {"rings", ExchangeRings},
    {"replyfails", ExchangeReplyFails},
    {"requestfails", ExchangeRequestFails},
    {"neverreplies", ExchangeNeverReplies},
    {"messagesfail", ExchangeMessagesFail},
};

DWORD NumberOf(const std::string& text) {
    return static_cast<DWORD>(std::strtoul(text.c_str(), nullptr, 0));
}

bool AddLine(const Fields& fields) {
    ThePlant().lines.push_back({fields[0], fields[1], LINEMEDIAMODE_DATAMODEM, fields[2], fields[3], {}});
    return true;
}

bool AddLocation(const Fields& fields) {
    ThePlant().locations.push_back({fields[0], fields[1], NumberOf(fields[2]), NumberOf(fields[3])});
    return true;
}

bool AddCountry(const Fields& fields) {
    ThePlant().countries.push_back({fields[0], NumberOf(fields[1]), NumberOf(fields[2])});
    return true;
}

bool AddTranslation(const Fields& fields) {
    ThePlant().translations.push_back({fields[0], fields[1]});
    return true;
}

bool AddRule(const Fields& fields) {
    for (const auto& [word, outcome] : outcomes) {
        if (fields[1] != word)
            continue;
        ThePlant().rules.push_back({fields[0], outcome, NumberOf(fields[2])});
        return true;
    }
    return false;
}

bool SetCurrent(const Fields& fields) {
    ThePlant().currentLocation = NumberOf(fields[0]);
    return true;
}

bool SetPace(const Fields& fields) {
    ThePlant().pace = NumberOf(fields[0]);
    return true;
}

struct Word {
    const char* word;
    bool (*act)(const Fields& fields);
};

constexpr Word words[] = {
    {"line", AddLine}, {"location", AddLocation}, {"country", AddCountry}, {"translation", AddTranslation},
    {"rule", AddRule}, {"current", SetCurrent},   {"pace", SetPace},
};

constexpr std::size_t mostFields = 4; // those that a row leaves out are empty

Fields Split(const std::string& text) {
    Fields fields(1);
    for (const char letter : text) {
        if (letter == '|')
            fields.emplace_back();
        else
            fields.back() += letter;
    }
    fields.resize(std::max(fields.size(), mostFields));
    return fields;
}

bool Act(const std::string& row) {
    const std::size_t blank = row.find(' ');
    const std::string first = row.substr(0, blank);
    const Fields fields = Split(blank == std::string::npos ? "" : row.substr(blank + 1));
    for (const Word& word : words)
        if (first == word.word)
            return word.act(fields);
    return false;
}

void Read(std::istream& file) {
    for (std::string row; std::getline(file, row);) {
        if (row.ends_with('\r'))
            row.pop_back();
        if (row.empty() || row.starts_with('#'))
            continue;
        if (!Act(row))
            OutputDebugStringA(("The exchange does not understand: " + row + "\n").c_str());
    }
}

} // namespace

void ReadExchangeFileOnce() {
    if (std::exchange(ThePlant().fileWasRead, true))
        return;
    std::array<char, MAX_PATH> path = {};
    const DWORD length =
        GetEnvironmentVariableA("TARN_EXCHANGE", path.data(), static_cast<DWORD>(path.size()));
    if (!length || length >= path.size())
        return;
    std::ifstream file(path.data());
    Read(file);
}
