// SGR, select graphic rendition: what each parameter does to the current colour and flags.
#pragma once

#include "core/comctl.h"

#include <span>

struct RenditionRow {
    int parameter;
    const char* meaning;
    void (*act)(COMCTL& record);
};

std::span<const RenditionRow> RenditionRows();

void RunRendition(COMCTL& record);
