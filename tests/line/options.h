// The command line of tarnline.
#pragma once

#include "wire.h"

#include <string>

struct Options {
    std::string folder;
    unsigned cables = 1;
    bool withParent = false;
    std::string transcript;
    WireSettings wire;
};

// False after having said what is wrong on stderr.
bool ParseOptions(int count, char** words, Options& options);
