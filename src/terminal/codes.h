// The codes of one byte behind ESC, as VT52 and VT100 have them; each emulation has a table of its own.
#pragma once

#include "core/comctl.h"

#include <span>

struct CodeRow {
    char code;
    const char* name; // as its terminal's manual calls it
    const char* meaning;
    void (*act)(COMCTL& record);
};

std::span<const CodeRow> Vt52Codes();
std::span<const CodeRow> Vt100Codes();

inline const CodeRow* FindCode(std::span<const CodeRow> rows, char code) {
    for (const CodeRow& row : rows)
        if (row.code == code)
            return &row;
    return nullptr;
}
