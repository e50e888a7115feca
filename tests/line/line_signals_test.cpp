// Modem signals, breaks and error counts as a process with the preload library sees them, in 64 and 32 bits.
#include "cable.h"
#include "line_process.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace {

struct Width {
    const char* name;
    const char* helper;
};

void PrintTo(const Width& width, std::ostream* out) {
    *out << width.name;
}

struct PipeCloser {
    void operator()(std::FILE* file) const { pclose(file); }
};
using Pipe = std::unique_ptr<std::FILE, PipeCloser>;

std::string ReadLine(std::FILE* pipe) {
    std::array<char, 256> line{};
    if (!std::fgets(line.data(), line.size(), pipe))
        return "(end)";
    std::string text = line.data();
    return text.substr(0, text.find('\n'));
}

class LineSignals : public testing::TestWithParam<Width> {
  protected:
    Pipe Start(const std::string& end, const std::string& words,
               const std::string& library = "libtarnsignals.so") {
        const std::string command = "LD_PRELOAD='" TARN_LINE_PRELOAD "/$LIB/" + library +
                                    "' TARN_LINE_STATE='" + process.Folder() + "' '" + GetParam().helper +
                                    "' '" + process.Path(end) + "' " + words + " 2>&1";
        return Pipe(popen(command.c_str(), "r"));
    }
    std::string Ask(const std::string& end, const std::string& words) {
        return ReadLine(Start(end, words).get());
    }

    LineProcess process;
    Cable cable{process.ControlFile()};
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Widths, LineSignals,
                         testing::Values(Width{"x86_64", TARN_LINE_HELPER64},
                                         Width{"i386", TARN_LINE_HELPER32}),
                         [](const auto& row) { return std::string(row.param.name); });

// Answers of "get" are: dtr rts cts dsr dcd ri.
TEST_P(LineSignals, BothEndsStartWithTheirLinesUp) {
    EXPECT_EQ(Ask("a", "get"), "1 1 1 1 1 0");
}

TEST_P(LineSignals, DtrDrivesDsrAndCarrierOfTheOtherEnd) {
    EXPECT_EQ(Ask("a", "-dtr get"), "0 1 1 1 1 0");
    EXPECT_EQ(Ask("b", "get"), "1 1 1 0 0 0");
    EXPECT_EQ(cable.Signal("b.dsr"), 0);
    EXPECT_EQ(cable.Signal("b.dcd"), 0);
    EXPECT_EQ(Ask("a", "+dtr get"), "1 1 1 1 1 0");
    EXPECT_EQ(Ask("b", "get"), "1 1 1 1 1 0");
}

TEST_P(LineSignals, RtsDrivesCtsOfTheOtherEnd) {
    EXPECT_EQ(Ask("b", "-rts get"), "1 0 1 1 1 0");
    EXPECT_EQ(Ask("a", "get"), "1 1 0 1 1 0");
    // frame overrun parity buffer break cts dsr dcd ring
    EXPECT_EQ(Ask("a", "counts"), "0 0 0 0 0 2 1 1 0"); // the ends came up one after the other
}

TEST_P(LineSignals, CarrierAndRingByCommand) {
    cable.Carrier('a', "off");
    cable.Ring('a', true);
    EXPECT_EQ(Ask("a", "get"), "1 1 1 1 0 1");
    cable.Do("lines b dtr=off rts=off");
    cable.Carrier('a', "on");
    cable.Ring('a', false);
    EXPECT_EQ(Ask("a", "get"), "1 1 0 0 1 0");
    cable.Carrier('a', "follow");
    EXPECT_EQ(Ask("a", "get"), "1 1 0 0 0 0");
}

TEST_P(LineSignals, ErrorsAreCountedAtTheEndThatReceivesThem) {
    cable.Error('b', "frame");
    cable.Do("error b overrun 2");
    cable.Do("error b parity 3");
    cable.Do("error b buffer 4");
    cable.Do("break b 5");
    EXPECT_EQ(Ask("b", "counts").substr(0, 9), "1 2 3 4 5");
    EXPECT_EQ(Ask("a", "counts").substr(0, 9), "0 0 0 0 0");
    EXPECT_EQ(cable.Signal("b.parity"), 3);
}

TEST_P(LineSignals, ABreakReachesTheOtherEndOnce) {
    EXPECT_EQ(Ask("a", "break get"), "1 1 1 1 1 0");
    EXPECT_EQ(cable.Signal("b.break"), 1);
    EXPECT_EQ(cable.Signal("a.break"), 0);
    EXPECT_EQ(Ask("a", "sendbreak get"), "1 1 1 1 1 0");
    EXPECT_EQ(cable.Signal("b.break"), 2);
}

TEST_P(LineSignals, AWaitEndsWhenTheLineChanges) {
    const Pipe waiting = Start("a", "wait");
    ASSERT_EQ(ReadLine(waiting.get()), "waiting");
    // The helper is in its wait some time after it said so, so the line changes until it has noticed.
    std::string answer;
    std::atomic<bool> answered = false;
    std::thread reader([&] {
        answer = ReadLine(waiting.get());
        answered = true;
    });
    bool up = true;
    EXPECT_TRUE(WaitUntil([&] {
        up = !up;
        cable.Do(up ? "lines b rts=on" : "lines b rts=off");
        return answered.load();
    }));
    reader.join();
    EXPECT_EQ(answer, "changed");
}

TEST_P(LineSignals, AfterAHangUpRequestsFailAndAfterARestoreTheyWork) {
    cable.HangUp('a');
    cable.Restore('a');
    EXPECT_EQ(Ask("a", "get"), "1 1 1 1 1 0");
    EXPECT_EQ(Ask("b", "-rts get"), "1 0 1 1 1 0");
    EXPECT_EQ(Ask("a", "get"), "1 1 0 1 1 0");
}

TEST_P(LineSignals, OtherTerminalsAreLeftAlone) {
    const Pipe other(popen(("LD_PRELOAD='" TARN_LINE_PRELOAD "/$LIB/libtarnsignals.so' TARN_LINE_STATE='" +
                            process.Folder() + "' '" + GetParam().helper + "' /dev/null get 2>&1")
                               .c_str(),
                           "r"));
    EXPECT_EQ(ReadLine(other.get()), "get: Inappropriate ioctl for device");
}

TEST_P(LineSignals, KeepBytesMakesAFlushHarmless) {
    const UniqueFd a = process.Open("a");
    ASSERT_TRUE(WriteBlock(a.Get(), Block(100, 'k')));
    ASSERT_TRUE(WaitUntil([&] { return cable.Stat("ab.out") == 100; }));
    EXPECT_EQ(ReadLine(Start("b", "flush", "libkeepbytes.so").get()), "100");
    EXPECT_EQ(ReadLine(Start("b", "flush").get()), "0");
}
