#include "line_process.h"

#include "clock.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <random>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

std::string MakeFolder() {
    std::string name = (fs::temp_directory_path() / "tarnline-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    return name;
}

pid_t Start(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawn(&pid, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error("cannot start " + words[0]);
    return pid;
}

} // namespace

LineProcess::LineProcess(const std::vector<std::string>& options) : folder_(MakeFolder()) {
    std::vector<std::string> words = {TARNLINE_PROGRAM, "--with-parent", "--dir", folder_};
    words.insert(words.end(), options.begin(), options.end());
    pid_ = Start(words);
    if (!WaitUntil([this] { return fs::exists(ControlFile()); }))
        throw std::runtime_error("tarnline did not get ready");
}

LineProcess::~LineProcess() {
    Stop();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

int LineProcess::Stop() {
    if (pid_ < 0)
        return -1;
    kill(pid_, SIGTERM);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

UniqueFd LineProcess::Open(const std::string& name) const {
    return UniqueFd(open(Path(name).c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

bool WaitFor(bool (*condition)(const void*), const void* argument, int seconds) {
    const Nanoseconds limit = Now() + seconds * kSecond;
    while (!condition(argument)) {
        if (Now() > limit)
            return false;
        poll(nullptr, 0, 1); // gives the processor away between two looks
    }
    return true;
}

Block ReadBlock(int fd, std::size_t count, int seconds) {
    const Nanoseconds limit = Now() + seconds * kSecond;
    Block block(count);
    std::size_t have = 0;
    while (have < count) {
        const Nanoseconds left = limit - Now();
        pollfd ask{fd, POLLIN, 0};
        if (left <= 0 || poll(&ask, 1, static_cast<int>(left / kMillisecond) + 1) <= 0)
            break;
        const ssize_t got = read(fd, block.data() + have, count - have);
        if (got <= 0)
            break;
        have += static_cast<std::size_t>(got);
    }
    block.resize(have);
    return block;
}

Block ReadPresent(int fd) {
    Block all;
    for (;;) {
        pollfd ask{fd, POLLIN, 0};
        std::uint8_t buffer[4096];
        if (poll(&ask, 1, 0) <= 0)
            return all;
        const ssize_t got = read(fd, buffer, sizeof buffer);
        if (got <= 0)
            return all;
        all.insert(all.end(), buffer, buffer + got);
    }
}

bool WriteBlock(int fd, const Block& block) {
    std::size_t done = 0;
    while (done < block.size()) {
        const ssize_t count =
            write(fd, block.data() + done, std::min<std::size_t>(block.size() - done, 65536));
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

Block RandomBlock(std::size_t count, unsigned seed) {
    std::mt19937 generator(seed);
    Block block(count);
    std::generate(block.begin(), block.end(), [&] { return static_cast<std::uint8_t>(generator()); });
    return block;
}
