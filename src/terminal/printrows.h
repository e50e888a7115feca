// The tables of the print routine, for the routine and for whoever describes it.
#pragma once

#include "core/comctl.h"

#include <span>

struct ControlRow {
    char code;
    const char* name;
    const char* meaning;
    void (*act)(COMCTL& record);
};

// All other control characters are glyphs.
std::span<const ControlRow> PrintControls();

struct LineDrawRow {
    char code;
    BYTE glyph; // code page 437
    const char* meaning;
};

std::span<const LineDrawRow> LineDrawGlyphs();
