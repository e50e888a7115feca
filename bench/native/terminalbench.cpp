// Prints what the terminal's engine and two others do with the same bytes, and what a scrolled line costs.
#include "../terminalstream.h"
#include "terminalside.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int runs = 5; // of each, by turns; the best counts
constexpr size_t streamSize = 16'000'000;
constexpr int historyRows = 1000;

constexpr std::array depths = {0, 1000, 20'000}; // rows of scrollback

double Seconds(Clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

struct Side {
    const char* name;
    std::function<std::unique_ptr<TerminalSide>()> make;
};

const std::array sides = {
    Side{"vt100", [] { return OurSide(OurEmulation::Vt100, historyRows); }},
    Side{"ansi", [] { return OurSide(OurEmulation::Ansi, historyRows); }},
    Side{"libvterm", [] { return VtermSide(historyRows); }},
    Side{"libtsm", [] { return TsmSide(historyRows); }},
};

struct Outcome {
    double seconds;
    std::vector<std::string> rows;
};

Outcome Run(const Side& side, const std::string& stream) {
    const auto terminal = side.make();
    const auto start = Clock::now();
    FeedPieces(stream, [&](const char* bytes, int count) { terminal->Write(bytes, count); });
    return {Seconds(Clock::now() - start), terminal->Rows()};
}

// False: the screens differ, so that the sides didn't do the same.
bool CompareRates(const char* streamName, const std::string& stream) {
    std::array<double, sides.size()> best;
    best.fill(1e9);
    std::vector<std::string> rows;
    for (int run = 0; run < runs; ++run) {
        for (size_t i = 0; i < sides.size(); ++i) {
            Outcome outcome = Run(sides[i], stream);
            best[i] = std::min(best[i], outcome.seconds);
            if (rows.empty())
                rows = outcome.rows;
            if (outcome.rows != rows) {
                std::fprintf(stderr, "%s: %s ends with another screen\n", streamName, sides[i].name);
                return false;
            }
        }
    }
    for (size_t i = 0; i < sides.size(); ++i)
        std::printf("%s_%s_MBps %.1f\n", streamName, sides[i].name,
                    static_cast<double>(stream.size()) / 1e6 / best[i]);
    return true;
}

// Seconds for each line of a stream that scrolls with nearly every one.
double LineCost(int depth, const std::string& stream) {
    const auto lines = std::count(stream.begin(), stream.end(), '\n');
    return Run({"", [depth] { return OurSide(OurEmulation::Vt100, depth); }}, stream).seconds /
           static_cast<double>(lines);
}

// The longest that a single line takes, each timed by itself.
double WorstLine(int depth, const std::string& stream) {
    const auto terminal = OurSide(OurEmulation::Vt100, depth);
    Clock::duration worst{};
    for (size_t begin = 0; begin < stream.size();) {
        const size_t end = stream.find('\n', begin) + 1;
        const auto start = Clock::now();
        terminal->Write(stream.data() + begin, static_cast<int>(end - begin));
        worst = std::max(worst, Clock::now() - start);
        begin = end;
    }
    return Seconds(worst);
}

// By turns, so that a slow moment of the machine counts for none of them.
template <class Measure>
void PrintLeast(const char* name, double unit, const std::string& stream, Measure measure) {
    std::array<double, depths.size()> least;
    least.fill(1e9);
    for (int run = 0; run < runs; ++run)
        for (size_t i = 0; i < depths.size(); ++i)
            least[i] = std::min(least[i], measure(depths[i], stream));
    for (size_t i = 0; i < depths.size(); ++i)
        std::printf("%s_%d %.1f\n", name, depths[i], least[i] / unit);
}

std::string LineFeeds() {
    return std::string(streamSize / 16, '\n');
}

} // namespace

int main() {
    try {
        const std::string plain = PlainLines(streamSize);
        if (!CompareRates("plain", plain) || !CompareRates("mix", ScreenWork(streamSize)))
            return 1;
        PrintLeast("line_ns", 1e-9, plain, LineCost);
        PrintLeast("feed_ns", 1e-9, LineFeeds(), LineCost);
        PrintLeast("worst_us", 1e-6, plain, WorstLine);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
