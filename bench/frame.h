// What both sides of the benchmarks share: the way a program is called and what it tells the script.
#pragma once

#include <string>
#include <vector>

inline constexpr char startByte = 'G';        // from this side or the other: begin
inline constexpr char quitByte = 'Q';         // from the far end: this program ends
inline constexpr unsigned standstill = 10000; // ms after which a line counts as dead

using Numbers = std::vector<long long>; // a command's arguments; the first is the number of the COM port

struct BenchCommand {
    const char* name;
    size_t arguments;
    int (*run)(const Numbers& numbers); // the program's result
    const char* usage;
};

using BenchCommands = std::vector<BenchCommand>;

int RunBench(int argc, char** argv, const BenchCommands& commands);

// Ports of one bench are every second one: the ones between are the cables' other ends.
std::string PortName(long long first, int index = 0);

// A block of bytes that count up from 0; its size is a multiple of 256, so that all blocks are the same.
std::vector<char> CountingBlock(long long size);

// Tells the script that all is set up, so that it may measure.
void PrintReady();

// The script has measured when it ends this program's input.
void AwaitEndOfInput();
