// Modems, their computers and the exchange in a time that the test makes.
#pragma once

#include "commands.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

class Simulation {
  public:
    explicit Simulation(const std::vector<std::string>& numbers = {"5550001", "5550002", "5550003"})
        : lab_(numbers), heard_(numbers.size()), reads_(numbers.size(), true) {
        Settle();
    }

    Nanoseconds Time() const { return now_; }
    Modem& At(std::size_t i) { return lab_.At(i); }

    // What the computer writes, as far as the modem takes it: the count that it took.
    std::size_t Type(std::size_t i, const std::string& text) {
        const std::size_t count = std::min(text.size(), lab_.At(i).Room());
        lab_.At(i).Receive({reinterpret_cast<const std::uint8_t*>(text.data()), count}, now_);
        Settle();
        return count;
    }
    void SetDtr(std::size_t i, bool on) {
        lab_.At(i).SetDtr(on, now_);
        Settle();
    }
    std::string Control(const std::string& command) {
        const std::string reply = ExecuteCommand(lab_, command, now_);
        Settle();
        return reply;
    }
    void StopReading(std::size_t i) { reads_[i] = false; }
    void ReadAgain(std::size_t i) {
        reads_[i] = true;
        Settle();
    }

    void Run(Nanoseconds time) {
        RunUntil([] { return false; }, time);
    }

    // How long it took, kNever if it did not come within the limit.
    template <typename Condition>
    Nanoseconds RunUntil(const Condition& condition, Nanoseconds limit = 600 * kSecond) {
        const Nanoseconds start = now_;
        while (!condition()) {
            if (now_ >= start + limit)
                return kNever;
            now_ = std::min(std::max(next_, now_ + 1), start + limit);
            Settle();
        }
        return now_ - start;
    }

    // All that has come since the last look.
    std::string Heard(std::size_t i) { return std::exchange(heard_[i], ""); }
    // How long until the modem has said the text; what it said before is over then.
    Nanoseconds Await(std::size_t i, const std::string& text) {
        const Nanoseconds time = RunUntil([&] { return heard_[i].find(text) != std::string::npos; });
        EXPECT_NE(time, kNever) << text << " instead of " << heard_[i];
        heard_[i].clear();
        return time;
    }
    // The reply to a line with echo, less the echo.
    std::string Reply(std::size_t i, const std::string& line) {
        Heard(i);
        Type(i, line + "\r");
        const std::string heard = Heard(i);
        EXPECT_EQ(heard.substr(0, line.size() + 1), line + "\r");
        return heard.substr(std::min(heard.size(), line.size() + 1));
    }
    // "name=value" of the state.
    std::string State(std::size_t i, const std::string& name) {
        const std::string report = Control(std::to_string(i) + " state") + " ";
        const std::size_t at = report.find(" " + name + "=");
        if (at == std::string::npos)
            return "?";
        const std::size_t from = at + name.size() + 2;
        return report.substr(from, report.find(' ', from) - from);
    }

    // Modem 0 calls modem 1, which answers at its first ring.
    void ConnectTwo() {
        Type(1, "ATS0=1\r");
        Type(0, "ATDT5550002\r");
        Await(0, "CONNECT 14400\r\n");
        EXPECT_EQ(State(1, "mode"), "online");
        Heard(1);
    }

  private:
    void Settle() {
        next_ = lab_.Advance(now_);
        for (std::size_t i = 0; i < heard_.size(); i++)
            Collect(i);
    }
    void Collect(std::size_t i) {
        ByteQueue& queue = lab_.At(i).ForComputer();
        while (reads_[i] && !queue.Empty()) {
            heard_[i].append(reinterpret_cast<const char*>(queue.All().data()), queue.Size());
            queue.Pop(queue.Size());
            next_ = lab_.Advance(now_);
        }
    }

    Lab lab_;
    std::vector<std::string> heard_;
    std::vector<bool> reads_;
    Nanoseconds now_ = 0;
    Nanoseconds next_ = 0;
};

inline std::string Framed(const std::string& words) {
    return "\r\n" + words + "\r\n";
}
