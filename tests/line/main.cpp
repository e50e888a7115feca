// tarnline: virtual null-modem cables between pairs of ptys. README.md tells how to use it.
#include "commands.h"
#include "control.h"
#include "daemon.h"
#include "options.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <sys/epoll.h>
#include <sys/prctl.h>

namespace {

// Keeps the loop's files in step with the ptys, which come and go by command.
class PtyWatch {
  public:
    PtyWatch(EventLoop& loop, Wires& wires) : loop_(loop), wires_(wires), watched_(wires.size() * 2, -1) {}

    void Start() {
        for (std::size_t i = 0; i < watched_.size(); i++)
            Follow(i);
    }

    // Before a command that may close a pty: its number may come back as another file.
    void Stop() {
        for (int& fd : watched_) {
            if (fd >= 0)
                loop_.Remove(fd);
            fd = -1;
        }
    }

  private:
    void Follow(std::size_t i) {
        Wire& wire = *wires_[i / 2];
        const int end = static_cast<int>(i % 2);
        watched_[i] = wire.Master(end);
        if (watched_[i] < 0)
            return;
        loop_.Add(watched_[i], EPOLLIN | EPOLLOUT | EPOLLET, [&wire, end](std::uint32_t events) {
            if (events & EPOLLIN)
                wire.SetReadable(end);
        });
    }

    EventLoop& loop_;
    Wires& wires_;
    std::vector<int> watched_;
};

void MakeWires(const Options& options, Wires& wires) {
    for (unsigned i = 0; i < options.cables; i++) {
        const std::string suffix = options.cables > 1 ? std::to_string(i) : "";
        wires.push_back(std::make_unique<Wire>(options.folder, suffix, i, options.wire));
        if (!options.transcript.empty() && !wires.back()->Record().Open(options.transcript + suffix, Now()))
            throw std::runtime_error("cannot write " + options.transcript + suffix);
    }
}

Nanoseconds PumpAll(Wires& wires) {
    Nanoseconds next = kNever;
    for (const auto& wire : wires)
        next = std::min(next, wire->Pump());
    return next;
}

// A command sees what was written to an unpaced cable before it was sent.
void SettleBeforeCommand(Wires& wires) {
    for (const auto& wire : wires) {
        for (const int end : {0, 1})
            wire->SetReadable(end);
        wire->Pump();
    }
}

void Run(const Options& options, int endSignal) {
    prctl(PR_SET_TIMERSLACK, 1000UL); // ns: a slice of the pacing is a thousand times that
    std::filesystem::create_directories(options.folder);
    EventLoop loop;
    Wires wires;
    MakeWires(options, wires);
    PtyWatch watch(loop, wires);
    watch.Start();
    ControlServer control(loop, [&](const std::string& line) {
        SettleBeforeCommand(wires);
        watch.Stop();
        const std::string reply = ExecuteCommand(wires, line);
        watch.Start();
        return reply;
    });
    bool stop = false;
    loop.Add(endSignal, EPOLLIN, [&stop](std::uint32_t) { stop = true; });
    const ControlFile ready(options.folder, "control", control.Port());
    while (!stop)
        loop.RunOnce(PumpAll(wires));
}

} // namespace

int main(int count, char** words) {
    const pid_t parent = getppid();
    Options options;
    if (!ParseOptions(count, words, options))
        return 2;
    return RunDaemon("tarnline", parent, options.withParent, [&](int endSignal) { Run(options, endSignal); });
}
