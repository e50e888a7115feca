// Commands of a modem's options as bytes and pauses.
#include "caseprint.h"
#include "modem/modemcommand.h"

#include <string>

namespace {

// What a command sends, each pause as "<1 s>".
std::string Play(const char* command) {
    std::string played;
    for (auto step = NextStep(command); step; step = NextStep(command))
        played += step->kind == ModemStep::Kind::Pause ? "<1 s>" : std::string(1, step->byte);
    EXPECT_EQ(*command, '\0');
    EXPECT_FALSE(NextStep(command)) << "the end stays the end";
    return played;
}

struct CommandCase {
    const char* name;
    const char* command;
    std::string played;
};

const CommandCase commands[] = {
    {"Empty", "", ""},
    {"CarriageReturn", "AT^M", "AT\r"},
    {"HangUp", "~~+++~~ATH0^M", "<1 s><1 s>+++<1 s><1 s>ATH0\r"},
    {"EveryControlCharacterHasALetter", "^A^Z^[^_", "\x01\x1A\x1B\x1F"},
    {"AtSignIsNul", "^@x", std::string("\0x", 2)},
    {"CodesBelowWrap", "^ ^?^0", "\xE0\xFF\xF0"},
    {"MarkedMark", "^^x", "\x1Ex"},
    {"MarkedPauseIsNone", "^~x", ">x"},
    {"LowerCaseIsAnotherCode", "^m", "-"},
    {"LastMarkIsSkipped", "AT^", "AT"},
    {"MarkAlone", "^", ""},
    {"UpperHalf", "\xFC^\xC1", "\xFC\x81"},
};

class ModemCommand : public testing::TestWithParam<CommandCase> {};

TEST_P(ModemCommand, Plays) {
    EXPECT_EQ(Play(GetParam().command), GetParam().played);
}

RUN_TABLE(ModemCommand, commands);

} // namespace
