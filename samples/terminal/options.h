// What the command line asks of the terminal program.
#pragma once

#include <string>

struct Options {
    std::string port = "COM1";
    std::string settings = "115200,n,8,1";
    int emulation = 0;
    int rows = 25;
    int columns = 80;
    int scrollRows = 1000;
    std::string captureFile; // empty: none
    bool echo = false;
    std::string problem; // empty: the command line was understood
};

Options ReadOptions(int count, char** words);
