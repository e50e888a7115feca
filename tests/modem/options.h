// The command line of tarnmodem.
#pragma once

#include <string>
#include <vector>

struct Options {
    std::string folder;
    std::vector<std::string> numbers;
    bool withParent = false;
    std::string transcript;
};

// False after having said what is wrong on stderr.
bool ParseOptions(int count, char** words, Options& options);
