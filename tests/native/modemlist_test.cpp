// Lines of the list of modems.
#include "caseprint.h"
#include "modem/modemlist.h"

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

// The lines of a file up to the first empty one.
Names Lines(const std::string& file) {
    size_t at = 0;
    const auto next = [&]() -> int {
        return at < file.size() ? static_cast<unsigned char>(file[at++]) : endOfModemList;
    };
    Names lines;
    for (std::string line = ReadModemLine(next); !line.empty(); line = ReadModemLine(next))
        lines.push_back(line);
    return lines;
}

struct FileCase {
    const char* name;
    std::string file;
    Names lines;
};

std::string Letters(size_t count) {
    return std::string(count, 'x');
}

const FileCase files[] = {
    {"Empty", "", {}},
    {"BothLineEnds", "One\tATZ\r\nTwo\tATZ\r\n", {"One\tATZ", "Two\tATZ"}},
    {"CarriageReturnsAlone", "One\rTwo\r", {"One", "Two"}},
    {"LineFeedsAloneEndNothing", "One\nTwo\n", {"OneTwo"}},
    {"LineFeedInALine", "O\nn\ne\rTwo", {"One", "Two"}},
    {"EndOfFileEndsTheLastLine", "One\r\nTwo", {"One", "Two"}},
    {"FirstLineEmpty", "\r\nOne\r\n", {}},
    {"EmptyLineEndsTheList", "One\r\n\r\nTwo\r\n", {"One"}},
    {"LineOfLineFeedsIsEmpty", "One\r\n\n\n\rTwo\r\n", {"One"}},
    {"Byte255EndsALine",
     "One\xFF"
     "Two\r\n",
     {"One", "Two"}},
    {"Byte255AloneIsAnEmptyLine", "One\r\n\xFFTwo\r\n", {"One"}},
    {"NulEndsTheTextOfItsLine", std::string("One\0more\r\nTwo\r\n", 15), {"One", "Two"}},
    {"NulInFrontIsAnEmptyLine", std::string("One\r\n\0Two\r\n", 11), {"One"}},
    {"Longest", Letters(199) + "\r\nTwo\r\n", {Letters(199), "Two"}},
    {"TooLongLosesACharacter", Letters(199) + "LTwo\r\nThree", {Letters(199), "Two", "Three"}},
    {"LineFeedIsNotTheLostOne", Letters(199) + "\nLTwo\r\n", {Letters(199), "Two"}},
    {"LostCharacterMayEndTheLine", Letters(199) + "L\r\nTwo\r\n", {Letters(199)}},
    {"OverlongTwice", Letters(400), {Letters(199), Letters(199)}},
};

class ModemList : public testing::TestWithParam<FileCase> {};

TEST_P(ModemList, ReadsLines) {
    EXPECT_EQ(Lines(GetParam().file), GetParam().lines);
}

RUN_TABLE(ModemList, files);

TEST(ModemListName, IsAllBeforeTheFirstTab) {
    EXPECT_EQ(ModemName("One\tATZ\tATDT"), "One");
    EXPECT_EQ(ModemName("Without tabs"), "Without tabs");
    EXPECT_EQ(ModemName("\tATZ"), "");
}

} // namespace
