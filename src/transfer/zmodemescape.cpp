// The bytes of ZModem frames: what is hidden from the line behind ZDLE, and what is taken off it.
#include "zmodemframing.h"

#include "core/ascii.h"

namespace {

constexpr int highBit = 0x80;
constexpr int controlShift = 0x40; // makes a control character a letter, and back
constexpr int controlBits = 31;
constexpr int byteFF = 0xFF;
constexpr int cancelsInEscape = 4; // CAN after a ZDLE; as many are a cancel

// What stands for 0x7F and 0xFF behind ZDLE.
constexpr int escaped7F = 'l';
constexpr int escapedFF = 'm';

constexpr size_t maskOfFF = 32; // in Zsendmask

constexpr bool IsFlowControl(int c) {
    return (c & ~highBit) == ascii::DC1 || (c & ~highBit) == ascii::DC3;
}

// Who decides that a byte goes out behind ZDLE.
enum class EscapeRule : unsigned char { Plain, Always, AsControl, AsFF };

consteval std::array<EscapeRule, 256> MakeEscapeRules() {
    std::array<EscapeRule, 256> rules = {};
    for (int c = 0; c < 256; ++c) {
        EscapeRule& rule = rules[static_cast<size_t>(c)];
        if (IsFlowControl(c) || c == ZDLE)
            rule = EscapeRule::Always;
        else if (c == byteFF)
            rule = EscapeRule::AsFF;
        else if ((c & ~highBit) <= controlBits)
            rule = EscapeRule::AsControl;
    }
    return rules;
}

constexpr std::array<EscapeRule, 256> escapeRules = MakeEscapeRules();

// The value of one lower-case hexadecimal digit, or -1.
int HexValue(int digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return ReadError;
}

} // namespace

void ZModemFraming::SetEscapes(const unsigned char* lpMask) {
    for (size_t i = 0; i < Zsendmask.size(); ++i)
        Zsendmask[i] = lpMask[i / 8] >> i % 8 & 1;
}

void ZModemFraming::SendEscaped(int c) {
    c &= 0xFF;
    const EscapeRule rule = escapeRules[static_cast<size_t>(c)];
    if (rule == EscapeRule::Plain) {
        line_.PutRaw(c);
        return;
    }
    const bool isFF = rule == EscapeRule::AsFF;
    const bool escape = rule == EscapeRule::Always || Zctlesc ||
                        Zsendmask[isFF ? maskOfFF : static_cast<size_t>(c & controlBits)];
    if (escape) {
        line_.PutRaw(ZDLE);
        c = isFF ? escapedFF : c ^ controlShift;
    }
    line_.PutRaw(c);
}

// The next byte after one that was dropped. A far end that sends nothing but such bytes can't hold the user.
int ZModemFraming::ReadAfterDropped() {
    return line_.Aborted() ? ReadTimeout : line_.ReadLine(Rxtimeout);
}

// Goes on where ReadEscaped met a control character.
int ZModemFraming::ReadControl(int c) {
    while (!(c & notControl)) {
        if (c == ZDLE)
            return ReadAfterZdle();
        if (!IsFlowControl(c) && !Zctlesc)
            return c;
        c = ReadAfterDropped();
    }
    return c;
}

int ZModemFraming::ReadAfterZdle() {
    int c = line_.ReadLine(Rxtimeout);
    for (;;) {
        for (int i = 1; i < cancelsInEscape && c == ascii::CAN; ++i)
            c = line_.ReadLine(Rxtimeout);
        const bool dropped = IsFlowControl(c) || (Zctlesc && !(c & notControl) && c != ascii::CAN);
        if (!dropped)
            break;
        c = ReadAfterDropped();
    }
    switch (c) {
    case ascii::CAN:
        return GotCancel;
    case ZCRCE:
    case ZCRCG:
    case ZCRCQ:
    case ZCRCW:
        return c + EscapedFlag;
    case escaped7F:
        return 0x7F;
    case escapedFF:
        return byteFF;
    default:
        break;
    }
    if (c < 0)
        return c;
    return (c & notControl) == controlShift ? c ^ controlShift : ReadError;
}

int ZModemFraming::Read7Bit() {
    int c = line_.ReadLine(Rxtimeout);
    for (;; c = ReadAfterDropped()) {
        if (c < 0)
            return c;
        c &= ~highBit;
        if (c == ascii::CR || c == ascii::LF || c == ZDLE)
            return c;
        const bool dropped = IsFlowControl(c) || (Zctlesc && !(c & notControl));
        if (!dropped)
            return c;
    }
}

int ZModemFraming::ReadHex() {
    int value = 0;
    for (int i = 0; i < 2; ++i) {
        const int c = Read7Bit();
        if (c < 0)
            return c;
        const int digit = HexValue(c);
        if (digit < 0)
            return ReadError;
        value = value << 4 | digit;
    }
    return value;
}
