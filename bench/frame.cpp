#include "frame.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

int PrintUsage(const BenchCommands& commands) {
    for (const BenchCommand& command : commands)
        std::fprintf(stderr, "%s PORT %s\n", command.name, command.usage);
    return 2;
}

} // namespace

int RunBench(int argc, char** argv, const BenchCommands& commands) {
    Numbers numbers;
    for (int i = 2; i < argc; ++i)
        numbers.push_back(std::atoll(argv[i]));
    for (const BenchCommand& command : commands) {
        if (argc < 2 || std::strcmp(argv[1], command.name) || numbers.size() != command.arguments)
            continue;
        try {
            return command.run(numbers);
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s: %s\n", command.name, error.what());
            return 1;
        }
    }
    return PrintUsage(commands);
}

std::string PortName(long long first, int index) {
    return "COM" + std::to_string(first + 2 * index);
}

std::vector<char> CountingBlock(long long size) {
    std::vector<char> block(static_cast<size_t>(size));
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<char>(i & 0xFF);
    return block;
}

void PrintReady() {
    std::puts("ready");
    std::fflush(stdout);
}

void AwaitEndOfInput() {
    while (std::getchar() != EOF) {
    }
}
