#include "modemlist.h"

#include "core/ascii.h"

namespace {

constexpr int byteThatEnds = 0xFF;
constexpr char fieldSeparator = '\t';

bool EndsLine(int byte) {
    return byte == endOfModemList || byte == byteThatEnds || byte == ascii::CR;
}

} // namespace

std::string ReadModemLine(const std::function<int()>& nextByte) {
    std::string line;
    for (int byte = nextByte(); !EndsLine(byte); byte = nextByte()) {
        if (byte == ascii::LF)
            continue;
        if (line.size() == modemLineSize)
            break;
        line += static_cast<char>(byte);
    }
    return line.c_str(); // a NUL ends the text of its line
}

std::string ModemName(const std::string& line) {
    return line.substr(0, line.find(fieldSeparator));
}
