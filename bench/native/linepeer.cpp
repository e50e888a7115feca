// The far end of a line that a program under Wine is measured on.
//
//     linepeer sink PATH BYTES      sends the start byte, reads and checks them, prints the rate; sends the
//     quit byte linepeer source PATH BYTES    waits for the start byte, then sends as fast as the line takes
//     them linepeer echo PATH COUNT      sends a byte, waits for it to come back; prints the round trip
//     linepeer send PATH COUNT      sends filler bytes that nobody answers
//     linepeer quit PATH            sends the byte that ends the other program
//
// PATH is a pty. Bytes of sink and source count up from 0. A line that stands still for ten seconds is a
// failure.
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int standstill = 10000; // ms
constexpr char fillerByte = 'e';
constexpr char startByte = 'G';
constexpr char quitByte = 'Q';
constexpr int warmUps = 50; // round trips that are not counted

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

class Pty {
  public:
    explicit Pty(const char* path) : file_(open(path, O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        if (file_ < 0)
            throw std::system_error(errno, std::generic_category(), path);
        termios state{};
        tcgetattr(file_, &state);
        cfmakeraw(&state);
        tcsetattr(file_, TCSANOW, &state);
    }
    ~Pty() { close(file_); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    std::size_t Read(char* bytes, std::size_t size) {
        for (;;) {
            const ssize_t count = read(file_, bytes, size);
            if (count > 0)
                return static_cast<std::size_t>(count);
            WaitAfter(count, POLLIN);
        }
    }

    void Write(const char* bytes, std::size_t size) {
        while (size) {
            const ssize_t count = write(file_, bytes, size);
            if (count <= 0) {
                WaitAfter(count, POLLOUT);
                continue;
            }
            bytes += count;
            size -= static_cast<std::size_t>(count);
        }
    }

    void Drop() { tcflush(file_, TCIFLUSH); }

  private:
    void WaitAfter(ssize_t result, short event) {
        if (result < 0 && errno != EAGAIN && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "line");
        pollfd wanted{file_, event, 0};
        if (!poll(&wanted, 1, standstill))
            throw std::runtime_error("the line stands still");
    }

    int file_;
};

// Bytes of both directions count up from 0, so that one that is lost or doubled is seen.
void CheckBytes(const char* bytes, std::size_t size, long long position) {
    for (std::size_t i = 0; i < size; ++i)
        if (static_cast<unsigned char>(bytes[i]) != ((position + static_cast<long long>(i)) & 0xFF))
            throw std::runtime_error("wrong byte near " + std::to_string(position));
}

// The other program waits for the start byte, so that nothing is under way when the clock starts.
void Sink(Pty& pty, long long total) {
    std::vector<char> buffer(1 << 16);
    long long position = 0;
    const auto start = Clock::now();
    pty.Write(&startByte, 1);
    while (position < total) {
        const std::size_t count = pty.Read(buffer.data(), buffer.size());
        CheckBytes(buffer.data(), count, position);
        position += static_cast<long long>(count);
    }
    std::printf("MBps %.3f\n", static_cast<double>(total) / 1e6 / SecondsSince(start));
    pty.Write(&quitByte, 1);
}

void Source(Pty& pty, long long total) {
    std::array<char, 4096> block; // a multiple of 256, so that each block is the same
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<char>(i & 0xFF);
    char start;
    pty.Read(&start, 1);
    for (long long left = total; left > 0;) {
        const auto count = std::min<long long>(left, static_cast<long long>(block.size()));
        pty.Write(block.data(), static_cast<std::size_t>(count));
        left -= count;
    }
}

double RoundTrip(Pty& pty) {
    char answer = 0;
    const auto start = Clock::now();
    pty.Write(&fillerByte, 1);
    pty.Read(&answer, 1);
    const double seconds = SecondsSince(start);
    if (answer != fillerByte)
        throw std::runtime_error("another byte came back");
    return seconds;
}

void Echo(Pty& pty, long long count) {
    for (int i = 0; i < warmUps; ++i)
        RoundTrip(pty);
    std::vector<double> trips;
    for (long long i = 0; i < count; ++i)
        trips.push_back(RoundTrip(pty));
    std::sort(trips.begin(), trips.end());
    const auto at = [&](std::size_t percent) { return trips[(trips.size() - 1) * percent / 100] * 1e6; };
    std::printf("median_us %.0f\np99_us %.0f\n", at(50), at(99));
}

void Send(Pty& pty, long long count) {
    const std::vector<char> bytes(static_cast<std::size_t>(count), fillerByte);
    pty.Write(bytes.data(), bytes.size());
}

void Quit(Pty& pty, long long) {
    pty.Write(&quitByte, 1);
}

struct Command {
    const char* name;
    void (*run)(Pty& pty, long long count);
    bool takesCount;
    bool dropsInput; // what an earlier run left behind is not this one's
};

constexpr Command commands[] = {
    {"sink", Sink, true, true}, {"source", Source, true, false}, {"echo", Echo, true, true},
    {"send", Send, true, true}, {"quit", Quit, false, false},
};

const Command* FindCommand(int argc, char** argv) {
    for (const Command& command : commands)
        if (argc == (command.takesCount ? 4 : 3) && !std::strcmp(argv[1], command.name))
            return &command;
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    const Command* command = FindCommand(argc, argv);
    if (!command) {
        std::fputs("linepeer sink|source|echo|send PATH COUNT, linepeer quit PATH\n", stderr);
        return 2;
    }
    try {
        Pty pty(argv[2]);
        if (command->dropsInput)
            pty.Drop();
        const long long count = command->takesCount ? std::atoll(argv[3]) : 0;
        if (command->takesCount && count <= 0)
            throw std::runtime_error("a count is a positive number");
        command->run(pty, count);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "linepeer %s: %s\n", argv[1], error.what());
        return 1;
    }
    return 0;
}
