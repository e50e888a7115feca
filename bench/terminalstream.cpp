#include "terminalstream.h"

#include <array>
#include <random>

namespace {

constexpr unsigned seed = 20;

constexpr std::array words = {"tide", "lantern",   "of",    "9600",  "the",   "harbour", "received",
                              "a",    "checksum,", "block", "0x1F;", "north", "and",     "acknowledged."};

class Dice {
  public:
    // From 0 up to but not including the count. The library's distributions differ from one to the other.
    size_t Roll(size_t count) { return engine_() % count; }
    std::string Number(size_t first, size_t last) { return std::to_string(first + Roll(last - first + 1)); }

  private:
    std::mt19937 engine_{seed};
};

std::string Words(Dice& dice, size_t length) {
    std::string text;
    while (text.size() < length)
        text.append(words[dice.Roll(words.size())]).append(1, ' ');
    text.resize(length);
    return text;
}

std::string Rendition(Dice& dice) {
    constexpr std::array flags = {"0", "1", "7", "22", "27"};
    std::string text = "\x1B[";
    text += flags[dice.Roll(flags.size())];
    if (dice.Roll(2))
        text += ";3" + dice.Number(0, 7);
    if (dice.Roll(3) == 0)
        text += ";4" + dice.Number(0, 7);
    return text + 'm';
}

std::string Position(Dice& dice) {
    return "\x1B[" + dice.Number(1, streamRows) + ';' + dice.Number(1, streamColumns) + 'H';
}

std::string Step(Dice& dice) {
    constexpr std::array finals = {'A', 'B', 'C', 'D'};
    return "\x1B[" + dice.Number(1, 9) + finals[dice.Roll(finals.size())];
}

// The cursor comes from elsewhere: behind the last column terminals erase different cells.
std::string Erasure(Dice& dice) {
    switch (dice.Roll(40)) {
    case 0:
        return "\x1B[2J\x1B[H";
    case 1:
        return Position(dice) + "\x1B[J";
    default:
        return Position(dice) + "\x1B[K";
    }
}

std::string Text(Dice& dice) {
    return Words(dice, 4 + dice.Roll(21)) + (dice.Roll(6) ? "" : "\r\n");
}

} // namespace

std::string PlainLines(size_t least) {
    Dice dice;
    std::string stream;
    while (stream.size() < least)
        stream += Words(dice, dice.Roll(streamColumns)) + "\r\n";
    return stream;
}

std::string ScreenWork(size_t least) {
    constexpr std::array kinds = {Rendition, Position, Step, Erasure, Text, Text};
    Dice dice;
    std::string stream;
    while (stream.size() < least)
        stream += kinds[dice.Roll(kinds.size())](dice);
    return stream;
}
