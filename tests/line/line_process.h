// Starts a tarnline for a native test and reads and writes its ends. Everything goes with the object.
#pragma once

#include "unique_fd.h"

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

using Block = std::vector<std::uint8_t>;

class LineProcess {
  public:
    // Returns when the cables are ready. Throws std::runtime_error when they do not become so.
    explicit LineProcess(const std::vector<std::string>& options = {});
    ~LineProcess();
    LineProcess(const LineProcess&) = delete;
    LineProcess& operator=(const LineProcess&) = delete;

    std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    std::string ControlFile() const { return Path("control"); }
    const std::string& Folder() const { return folder_; }
    UniqueFd Open(const std::string& name) const;

    // Ends tarnline by SIGTERM and returns its exit code, -1 if it did not end by itself.
    int Stop();

  private:
    std::string folder_;
    pid_t pid_ = -1;
};

// Ten seconds unless said otherwise; a condition that has not come by then is a failure.
bool WaitFor(bool (*condition)(const void*), const void* argument, int seconds = 10);
template <typename Condition>
bool WaitUntil(const Condition& condition, int seconds = 10) {
    return WaitFor([](const void* c) -> bool { return (*static_cast<const Condition*>(c))(); }, &condition,
                   seconds);
}

// As many bytes as came before the limit, at most `count`.
Block ReadBlock(int fd, std::size_t count, int seconds = 10);
// What is there now, after the kernel has moved everything across.
Block ReadPresent(int fd);
bool WriteBlock(int fd, const Block& block);
Block RandomBlock(std::size_t count, unsigned seed);
