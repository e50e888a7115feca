// Well-formed streams: what they do to a terminal may not depend on the pieces that they come in.
#pragma once

#include "terminal/terminal.h"

#include <string>

struct Stream {
    const char* name;
    int emulation;
    std::string bytes;
};

inline const std::string sgrWalk =
    "\033[1;31mred\033[0;44mblue\033[7mreverse\033[27;22mplain\033[8mhidden\033[m";
inline const std::string rowsOfText =
    "first row\r\nsecond row\r\n\tthird\b\bX\r\nfourth\r\nfifth\r\nsixth\r\n";

inline const Stream streams[] = {
    {"TtyText", Emulation_TTY, rowsOfText + "a long row that goes over the edge of the screen\fnew page"},
    {"TtyControls", Emulation_TTY, std::string("a\0b\ac\x01\x1A\x1B[A\x0E\x0F\x80\xFF", 15)},
    {"AnsiText", Emulation_Ansi, rowsOfText},
    {"AnsiColors", Emulation_Ansi, sgrWalk + rowsOfText},
    {"AnsiMovements", Emulation_Ansi,
     rowsOfText + "\033[H1\033[3;5H2\033[A3\033[2B4\033[10C5\033[3D6\033[99;99H7"},
    {"AnsiErase", Emulation_Ansi,
     rowsOfText + "\033[3;5H\033[K\033[A\033[1K\033[B\033[J\033[2J" + rowsOfText},
    {"AnsiRegion", Emulation_Ansi, rowsOfText + "\033[2;4r" + rowsOfText + "\033[r" + rowsOfText},
    {"AnsiAnswers", Emulation_Ansi, "abc\033[c\033[5n\033[6n\033[n\033[1c"},
    {"AnsiWidth", Emulation_Ansi, rowsOfText + "\033[?3h" + rowsOfText + "\033[?3l" + sgrWalk},
    {"AnsiSaved", Emulation_Ansi, "ab\033[s\033[5;5Hcd\033[uef\033[S\033[H\033[Ug"},
    {"AnsiUnhandled", Emulation_Ansi, "\033[5q\033[2Mabc\033(B\033c\033[4h\033[?25l"},
    {"AnsiEightBits", Emulation_Ansi, "\x9B\x31mx\xC4\xC4\033[31m\xB3"},
    {"Vt52Codes", Emulation_VT52,
     "abc\033[Dx\033[By\033[Cz\033[Hh\033[Jj\033[Kk\033[I\033[Z\033[Y!!y\033?Q\033 AA"},
    {"Vt52Text", Emulation_VT52, rowsOfText + "\033xH" + rowsOfText},
    {"Vt100Colors", Emulation_VT100, sgrWalk + rowsOfText},
    {"Vt100LineDrawing", Emulation_VT100, "\033(0lqqk\033(B\r\n\x0Elqqk\x0F\033)0lqqk\033#8"},
    {"Vt100Codes", Emulation_VT100,
     rowsOfText + "\033\067\033[31mx\033E\033D\033M\033\070y\033=\033>\033=\033c\033Hz"},
    {"Vt100EightBits", Emulation_VT100,
     "a\x9B"
     "1mb\x9B"
     "31mc\x9BmAd\x9B"
     "2;2He"},
    {"Vt100Region", Emulation_VT100,
     rowsOfText + "\033[2;4r\033M\033M" + rowsOfText + "\033[r\033M" + rowsOfText},
    {"Vt100Answers", Emulation_VT100, "\033[c\033[5n\033[6n\033[n\033[?12l"},
};
