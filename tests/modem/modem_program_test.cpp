// The program itself at the ends of real cables, in real time.
#include "cable.h"
#include "clock.h"
#include "line_process.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

namespace {

// A tarnmodem at a tarnline's cables; ends with the object.
class ModemProcess {
  public:
    explicit ModemProcess(const LineProcess& line) : ready_(line.Path("modems")) {
        std::string words[] = {TARNMODEM_PROGRAM, "--with-parent", "--line",   line.Folder(),
                               "--number",        "5550001",       "--number", "5550002"};
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        EXPECT_EQ(posix_spawn(&pid_, arguments[0], nullptr, nullptr, arguments.data(), environ), 0);
        EXPECT_TRUE(WaitUntil([this] { return std::filesystem::exists(ready_); }));
    }
    ~ModemProcess() { Stop(); }
    ModemProcess(const ModemProcess&) = delete;
    ModemProcess& operator=(const ModemProcess&) = delete;

    const std::string& ControlFile() const { return ready_; }
    int Stop() {
        if (pid_ > 0)
            kill(pid_, SIGTERM);
        return ExitCode();
    }
    // Waits for its end; -1 if it did not end by itself.
    int ExitCode() {
        if (pid_ < 0)
            return -1;
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    std::string ready_;
    pid_t pid_ = -1;
};

class ModemProgram : public testing::Test {
  protected:
    ModemProgram() {
        for (Cable* modem : {&modem0, &modem1}) {
            modem->Do("setup 20");
            modem->Do("cadence 50 100");
        }
    }

    static void Type(const UniqueFd& fd, const std::string& text) {
        ASSERT_TRUE(WriteBlock(fd.Get(), Block(text.begin(), text.end())));
    }
    // Reads to the end of the text; what came in all.
    static std::string ReadTo(const UniqueFd& fd, const std::string& text) {
        std::string heard;
        while (!heard.ends_with(text)) {
            const Block byte = ReadBlock(fd.Get(), 1);
            if (byte.empty()) {
                ADD_FAILURE() << "no " << text << " in " << heard;
                break;
            }
            heard += static_cast<char>(byte[0]);
        }
        return heard;
    }
    void Connect() {
        Type(b, "ATE0S0=1S10=1\r");
        ReadTo(b, "OK\r\n");
        Type(a, "ATE0S10=1DT5550002\r");
        ReadTo(a, "CONNECT 14400\r\n");
        ReadTo(b, "CONNECT 14400\r\n");
    }

    LineProcess line{{"--cables", "2"}};
    ModemProcess modems{line};
    Cable cable0{line.ControlFile(), 0};
    Cable cable1{line.ControlFile(), 1};
    Cable modem0{modems.ControlFile(), 0};
    Cable modem1{modems.ControlFile(), 1};
    UniqueFd a = line.Open("a0");
    UniqueFd b = line.Open("a1");
};

} // namespace

TEST_F(ModemProgram, AtRestTheComputerSeesAReadyModemWithoutCarrier) {
    EXPECT_EQ(cable0.Signal("a.dsr"), 1);
    EXPECT_EQ(cable0.Signal("a.cts"), 1);
    EXPECT_EQ(cable0.Signal("a.dcd"), 0);
    EXPECT_EQ(cable0.Signal("a.ri"), 0);
    Type(a, "AT\r");
    EXPECT_EQ(ReadTo(a, "OK\r\n"), "AT\r\r\nOK\r\n");
}

TEST_F(ModemProgram, OneModemCallsTheOther) {
    Connect();
    EXPECT_EQ(cable0.Signal("a.dcd"), 1);
    EXPECT_EQ(cable1.Signal("a.dcd"), 1);
    EXPECT_EQ(modem0.Do("state").substr(0, 11), "mode=online");
}

TEST_F(ModemProgram, TheRingSignalFollowsTheRings) {
    modem1.Do("cadence 300 100");
    modem1.Do("call 2");
    EXPECT_EQ(cable1.Signal("a.ri"), 1);
    ReadTo(b, "RING\r\n");
    EXPECT_TRUE(WaitUntil([&] { return cable1.Signal("a.ri") == 0; }));
    ReadTo(b, "RING\r\n");
    EXPECT_TRUE(WaitUntil([&] { return modem1.Do("state").substr(0, 12) == "mode=command"; }));
    EXPECT_EQ(cable1.Signal("a.ri"), 0);
}

TEST_F(ModemProgram, MegabytesCrossBothWaysUnchanged) {
    Connect();
    const Block fromA = RandomBlock(4'000'000, 1);
    const Block fromB = RandomBlock(4'000'000, 2);
    Block atA;
    const Nanoseconds start = Now();
    std::thread writeA([&] { WriteBlock(a.Get(), fromA); });
    std::thread writeB([&] { WriteBlock(b.Get(), fromB); });
    std::thread readA([&] { atA = ReadBlock(a.Get(), fromB.size(), 60); });
    const Block atB = ReadBlock(b.Get(), fromA.size(), 60);
    readA.join();
    const double seconds = static_cast<double>(Now() - start) / static_cast<double>(kSecond);
    EXPECT_TRUE(atB == fromA) << atB.size() << " bytes";
    EXPECT_TRUE(atA == fromB) << atA.size() << " bytes";
    std::printf("[ MEASURED ] both ways at once: %.1f MB/s each\n", 4.0 / seconds);
    if (HasFailure()) {
        cable0.HangUp('a'); // frees the writers
        cable1.HangUp('a');
    }
    writeA.join();
    writeB.join();
}

TEST_F(ModemProgram, LoweringDtrHangsUp) {
    Connect();
    Type(a, "last words");
    cable0.Do("lines a dtr=off");
    EXPECT_EQ(ReadTo(a, "NO CARRIER\r\n"), "\r\nNO CARRIER\r\n");
    EXPECT_EQ(ReadTo(b, "NO CARRIER\r\n"), "last words\r\nNO CARRIER\r\n");
    EXPECT_TRUE(WaitUntil([&] { return cable0.Signal("a.dcd") == 0 && cable1.Signal("a.dcd") == 0; }));
}

TEST_F(ModemProgram, TheOtherPartysHangUpIsALostCarrier) {
    Connect();
    modem0.Do("hangup");
    ReadTo(a, "\r\nNO CARRIER\r\n");
    ReadTo(b, "\r\nNO CARRIER\r\n");
}

TEST_F(ModemProgram, TheSignalsComeBackAfterTheCablesReset) {
    cable0.Reset();
    EXPECT_TRUE(WaitUntil([&] { return cable0.Signal("a.dcd") == 0; }));
}

TEST_F(ModemProgram, AModemsEndCanBeHungUpAndRestored) {
    cable0.HangUp('b');
    cable0.Restore('b');
    EXPECT_TRUE(WaitUntil([&] {
        Type(a, "AT\r");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return !ReadPresent(a.Get()).empty();
    }));
}

TEST_F(ModemProgram, SigtermEndsItAndRemovesWhatItMade) {
    EXPECT_EQ(modems.Stop(), 0);
    EXPECT_FALSE(std::filesystem::exists(modems.ControlFile()));
}

TEST_F(ModemProgram, EndsWhenTheLineIsGone) {
    line.Stop();
    EXPECT_EQ(modems.ExitCode(), 1);
}
