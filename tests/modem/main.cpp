// tarnmodem: modems at the far ends of tarnline's cables, and a telephone exchange between them. README.md
// tells how to use it.
#include "cable_end.h"
#include "commands.h"
#include "control.h"
#include "daemon.h"
#include "options.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <sys/epoll.h>

namespace {

// DTR is looked at so often, as nothing tells of its changes.
constexpr Nanoseconds kSignalInterval = 5 * kMillisecond;

class Program {
  public:
    explicit Program(const Options& options) : lab_(options.numbers) {
        if (!options.transcript.empty() && !transcript_.Open(options.transcript, Now()))
            throw std::runtime_error("cannot write " + options.transcript);
        for (std::size_t i = 0; i < lab_.Size(); i++)
            ends_.push_back(std::make_unique<CableEnd>(loop_, options.folder, i));
    }

    EventLoop& Loop() { return loop_; }

    // Moves what there is and returns when to come again.
    Nanoseconds Pump() {
        const Nanoseconds now = Now();
        lab_.Advance(now); // before the bytes, as a silence may have ended
        bool more = false;
        for (std::size_t i = 0; i < ends_.size(); i++)
            more = ends_[i]->Read(lab_.At(i), transcript_, now) || more;
        const Nanoseconds next = lab_.Advance(now);
        for (std::size_t i = 0; i < ends_.size(); i++)
            ends_[i]->Write(lab_.At(i), transcript_, now);
        return more ? now : std::min(next, now + kSignalInterval);
    }

    // A command sees what had come before it; its reply comes after what it does.
    std::string Execute(const std::string& line) {
        Settle();
        transcript_.Note(line, Now());
        const std::string reply = ExecuteCommand(lab_, line, Now());
        Settle();
        transcript_.Flush();
        return reply;
    }

  private:
    // As many rounds as a full queue needs; a computer that never stops sending ends them, too.
    static constexpr int kRounds = 64;

    void Settle() {
        for (int round = 0; round < kRounds; round++)
            if (Pump() > Now())
                return;
    }

    EventLoop loop_;
    Lab lab_;
    Transcript transcript_;
    std::vector<std::unique_ptr<CableEnd>> ends_;
};

void Run(const Options& options, int endSignal) {
    Program program(options);
    ControlServer control(program.Loop(), [&](const std::string& line) { return program.Execute(line); });
    bool stop = false;
    program.Loop().Add(endSignal, EPOLLIN, [&stop](std::uint32_t) { stop = true; });
    program.Pump();
    const ControlFile ready(options.folder, "modems", control.Port());
    while (!stop)
        program.Loop().RunOnce(program.Pump());
}

} // namespace

int main(int count, char** words) {
    const pid_t parent = getppid();
    Options options;
    if (!ParseOptions(count, words, options))
        return 2;
    return RunDaemon("tarnmodem", parent, options.withParent,
                     [&](int endSignal) { Run(options, endSignal); });
}
