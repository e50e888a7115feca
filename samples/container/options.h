// What the command line asks of the program.
#pragma once

#include "TarnLink.h"

#include <string>

struct Options {
    std::wstring port; // empty: the user chooses one
    std::wstring settings = L"115200,n,8,1";
    Emulation emulation = Emulation_Ansi;
    std::wstring problem; // empty: the command line was understood
};

Options ReadOptions(int count, wchar_t** words);
