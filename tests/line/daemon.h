// What the lab's programs in the background share: the file that says "ready", how they are ended.
#pragma once

#include "unique_fd.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <system_error>

// The file that says "ready" and where: written aside and moved, so that a reader never sees half of it.
class ControlFile {
  public:
    ControlFile(const std::filesystem::path& folder, const std::string& name, int port)
        : path_(folder / name) {
        const std::filesystem::path fresh = folder / (name + ".new");
        std::ofstream(fresh) << port << '\n';
        std::filesystem::rename(fresh, path_);
    }
    ~ControlFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    ControlFile(const ControlFile&) = delete;
    ControlFile& operator=(const ControlFile&) = delete;

  private:
    std::filesystem::path path_;
};

// Readable when the program is to end.
inline UniqueFd EndSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&set, number);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return UniqueFd(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
}

// False if the parent had gone before it could be watched.
inline bool FollowParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    return getppid() == parent;
}

// The body of main: runs the work until the signal to end, which it gets as a file. 0, or 1 with a word on
// stderr.
template <typename Work>
int RunDaemon(const char* program, pid_t parent, bool withParent, Work&& work) {
    const UniqueFd endSignal = EndSignals();
    if (withParent && !FollowParent(parent))
        return 0;
    try {
        work(endSignal.Get());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
        return 1;
    }
    return 0;
}
