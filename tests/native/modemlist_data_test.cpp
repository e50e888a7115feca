// The list of modems that the package brings: each line by the rules of MODEM.md, and each modem with its
// source.
#include "caseprint.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

// A build by hand runs the tests from the top of the tree.
#ifndef TARN_MODEM_LIST
#define TARN_MODEM_LIST "src/modem/MODEM.LST"
#define TARN_MODEM_LIST_SOURCES "src/modem/MODEM.md"
#endif

namespace {

enum Field { name, setUp, tonePrefix, pulsePrefix, answer, hangUp, speed, fieldCount };

constexpr size_t longestEntry = 198;  // the object's field has 200 bytes, and two end the strings
constexpr size_t longestCommand = 48; // what the command buffers of old modems hold, with the AT and the CR

// The program adds this one by itself, before those of the file.
const std::string defaultName = "Hayes Compatible";

using Entry = std::vector<std::string>;

std::string ReadFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Split(const std::string& text, const std::string& separator) {
    std::vector<std::string> pieces;
    size_t start = 0;
    for (size_t end; (end = text.find(separator, start)) != std::string::npos; start = end + separator.size())
        pieces.push_back(text.substr(start, end - start));
    pieces.push_back(text.substr(start));
    return pieces;
}

// Without the empty piece after the last line's end.
std::vector<std::string> Lines(const std::string& text, const std::string& end) {
    std::vector<std::string> lines = Split(text, end);
    if (lines.back().empty())
        lines.pop_back();
    return lines;
}

struct FieldRule {
    Field field;
    const char* fault;
    const char* pattern;
};

const FieldRule fieldRules[] = {
    {name, "name", R"(\S(.*\S)?)"},
    {setUp, "set-up is one command line", R"(AT[^^~]*\^M)"},
    {setUp, "set-up lacks the common part", R"(AT(&F1?)?E1Q0V1X4&C1&D2S7=60.*)"},
    {setUp, "set-up is no row of commands", R"(AT([A-Z]\d|[&\\*][A-Z]\d?|S\d+=\d+|\+[A-Z]+=\d+(,\d+)*)+\^M)"},
    {tonePrefix, "tone prefix", "ATDT"},
    {pulsePrefix, "pulse prefix", "ATDP"},
    {answer, "answer set-up", R"(ATS0=[1-9]\d*\^M)"},
    {hangUp, "hang-up", R"(~~\+\+\+~~ATH0\^M)"},
    {speed, "speed", R"(9600|14400|28800|33600|56000)"},
};

// The first rule that a line breaks, or nothing.
std::string Fault(const std::string& line) {
    const auto printable = [](char byte) { return byte == '\t' || (byte >= ' ' && byte <= '~'); };
    if (!std::all_of(line.begin(), line.end(), printable))
        return "byte";
    if (line.size() > longestEntry)
        return "length";
    const Entry fields = Split(line, "\t");
    if (fields.size() != fieldCount)
        return "count of fields";
    if (std::find(fields.begin(), fields.end(), "") != fields.end())
        return "empty field";
    for (const FieldRule& rule : fieldRules)
        if (!std::regex_match(fields[rule.field], std::regex(rule.pattern)))
            return rule.fault;
    return fields[setUp].size() > longestCommand ? "length of the set-up" : "";
}

bool BeginsWith(const std::string& text, const std::string& start) {
    const auto same = [](unsigned char one, unsigned char other) {
        return std::tolower(one) == std::tolower(other);
    };
    return text.size() >= start.size() && std::equal(start.begin(), start.end(), text.begin(), same);
}

// Which a list box of the system selects: the first that begins with the text, whatever the case.
size_t Selected(const std::vector<std::string>& names, const std::string& text) {
    const auto begins = [&](const std::string& each) { return BeginsWith(each, text); };
    return static_cast<size_t>(std::find_if(names.begin(), names.end(), begins) - names.begin());
}

std::vector<std::string> FirstWrongSelection(const std::vector<std::string>& names) {
    for (size_t i = 0; i < names.size(); ++i)
        if (const size_t selected = Selected(names, names[i]); selected != i)
            return {names[i], names[selected]};
    return {};
}

class ModemListFile : public testing::Test {
  protected:
    void SetUp() override {
        text = ReadFile(TARN_MODEM_LIST);
        ASSERT_FALSE(text.empty()) << TARN_MODEM_LIST;
        lines = Lines(text, "\r\n");
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const std::string& line : lines)
            names.push_back(Split(line, "\t").front());
        return names;
    }
    std::string text;
    std::vector<std::string> lines;
};

TEST_F(ModemListFile, EndsEachLineAndHasNoneEmpty) {
    ASSERT_TRUE(text.ends_with("\r\n"));
    EXPECT_EQ(std::count(lines.begin(), lines.end(), ""), 0) << "an empty line ends the list";
    EXPECT_GE(lines.size(), 30U);
}

TEST_F(ModemListFile, EveryLineKeepsTheRules) {
    for (const std::string& line : lines)
        EXPECT_EQ(Fault(line), "") << line;
}

// All but the bare standard modems say in their own language how the port's flow is controlled.
TEST_F(ModemListFile, EveryModelHasFlowControl) {
    const std::regex bare(R"(Standard \d+ bps Modem)");
    const std::regex flow(R"(AT(&F1.*|.*(&K3|\\Q3|&H3|&H1&R2|&E4|\*F3|S58=2|\+IFC=2,2).*))");
    for (const std::string& line : lines) {
        const Entry fields = Split(line, "\t");
        ASSERT_GT(fields.size(), static_cast<size_t>(setUp)) << line;
        EXPECT_EQ(std::regex_match(fields[setUp], flow), !std::regex_match(fields[name], bare)) << line;
    }
}

TEST_F(ModemListFile, EveryNameSelectsItself) {
    std::vector<std::string> names = Names();
    names.insert(names.begin(), defaultName);
    EXPECT_EQ(FirstWrongSelection(names), std::vector<std::string>());
}

// The names of the last table of the page, each row of it whole.
TEST_F(ModemListFile, EveryEntryHasItsSourceInTheSameOrder) {
    const std::vector<std::string> page = Lines(ReadFile(TARN_MODEM_LIST_SOURCES), "\n");
    const auto head = std::find_if(page.begin(), page.end(),
                                   [](const std::string& line) { return line.starts_with("| Name |"); });
    ASSERT_GT(page.end() - head, 2) << "no table of sources";
    std::vector<std::string> sourced;
    for (auto row = head + 2; row != page.end(); ++row) {
        std::smatch cells;
        ASSERT_TRUE(
            std::regex_match(*row, cells, std::regex(R"(\| (\S[^|]*) \| \S[^|]* \| \S[^|]* \| \S[^|]* \|)")))
            << *row;
        sourced.push_back(cells[1]);
    }
    EXPECT_EQ(sourced, Names());
}

struct FaultCase {
    const char* name;
    std::string line;
    const char* fault;
};

const std::string goodCommand = "AT&FE1Q0V1X4&C1&D2S7=60&K3";
const std::string rest = "\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400";
const std::string good = "Model\t" + goodCommand + "^M" + rest;

std::string With(const std::string& part, const std::string& instead) {
    std::string line = good;
    return line.replace(line.find(part), part.size(), instead);
}

class ModemListRule : public testing::TestWithParam<FaultCase> {};

TEST_P(ModemListRule, FindsItsFault) {
    EXPECT_EQ(Fault(GetParam().line), GetParam().fault);
}

const FaultCase faultCases[] = {
    {"None", good, ""},
    {"LoneLineFeed", With("Model", "Mo\ndel"), "byte"},
    {"ByteAbove126", With("Model", "Mod\x7F"), "byte"},
    {"ByteOf8Bits", With("Model", "Mod\xE9"), "byte"},
    {"LongestEntry", With("Model", std::string(longestEntry - good.size() + 5, 'M')), ""},
    {"OneByteMore", With("Model", std::string(longestEntry - good.size() + 6, 'M')), "length"},
    {"FieldMissing", With("\tATDP", ""), "count of fields"},
    {"FieldTooMany", good + "\t", "count of fields"},
    {"FieldEmpty", With("ATDP", ""), "empty field"},
    {"NameEndsInABlank", With("Model", "Model "), "name"},
    {"NoCarriageReturn", With("K3^M", "K3"), "set-up is one command line"},
    {"TwoCommandLines", With("&K3", "^MAT&K3"), "set-up is one command line"},
    {"CarrierAlwaysOn", With("&C1", "&C0"), "set-up lacks the common part"},
    {"ResultsWithoutBusy", With("X4", "X1"), "set-up lacks the common part"},
    {"NoCommand", With("&K3", "&3"), "set-up is no row of commands"},
    {"LongestSetUp", With("^M", "S10=100S11=500N1L0M1^M"), ""},
    {"SetUpTooLong", With("^M", "S10=100S11=5000N1L0M1^M"), "length of the set-up"},
    {"Tone", With("ATDT", "ATD"), "tone prefix"},
    {"Pulse", With("ATDP", "ATDT"), "pulse prefix"},
    {"AnswersNever", With("S0=2", "S0=0"), "answer set-up"},
    {"NoPauseAfterEscape", With("+++~~", "+++"), "hang-up"},
    {"Speed", With("14400", "14,4"), "speed"},
};

RUN_TABLE(ModemListRule, faultCases);

struct SelectionCase {
    const char* name;
    std::vector<std::string> names;
    std::vector<std::string> wrong;
};

class ModemListSelection : public testing::TestWithParam<SelectionCase> {};

TEST_P(ModemListSelection, FindsTheNameThatAnotherHides) {
    EXPECT_EQ(FirstWrongSelection(GetParam().names), GetParam().wrong);
}

const SelectionCase selectionCases[] = {
    {"Apart", {"Omni 288", "Omni 56K"}, {}},
    {"ShorterFirst", {"Omni", "Omni 56K"}, {}},
    {"LongerFirst", {"Omni 56K", "Omni"}, {"Omni", "Omni 56K"}},
    {"OtherCase", {"OMNI 56K", "omni"}, {"omni", "OMNI 56K"}},
    {"Twice", {"Omni", "Other", "Omni"}, {"Omni", "Omni"}},
};

RUN_TABLE(ModemListSelection, selectionCases);

} // namespace
