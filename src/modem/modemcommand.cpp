#include "modemcommand.h"

namespace {

constexpr char controlMark = '^';
constexpr char pauseMark = '~';
constexpr int controlOffset = 64; // from a letter to its control character

} // namespace

std::optional<ModemStep> NextStep(const char*& command) {
    const char c = *command;
    if (!c)
        return {};
    ++command;
    if (c == pauseMark)
        return ModemStep{ModemStep::Kind::Pause, '\0'};
    if (c != controlMark)
        return ModemStep{ModemStep::Kind::Send, c};
    if (!*command)
        return {};
    return ModemStep{ModemStep::Kind::Send, static_cast<char>(*command++ - controlOffset)};
}
