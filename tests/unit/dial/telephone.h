// Two comm objects, each at a modem of the lab, and the telephone exchange between these.
#pragma once

#include "support/line.h"

#include "core/live.h"

#include <cstdio>
#include <memory>

namespace host {

inline constexpr const char* nearNumber = "5551001";
inline constexpr const char* farNumber = "5551002";
inline constexpr const char* busyNumber = "5550100";
inline constexpr const char* unansweredNumber = "5550101";
inline constexpr const char* voiceNumber = "5550102";
inline constexpr const char* deadNumber = "5550103";

// One computer: the object, its modem's controls, its cable.
struct Subscriber {
    Subscriber(const char* portName, int index)
        : port(portName), modem(InLineFolder("modems"), index), cable(InLineFolder("control"), index) {
        cable.Reset();
        modem.Do("reset");
        modem.Do("cadence 100 100"); // ms; a ring need not take its two seconds and four here
        modem.Do("setup 100");
        SetModemOptions(object, hayesOptions);
        SetDialTimeOut(object, 20000);
    }

    static std::string InLineFolder(const char* name) {
        const char* folder = std::getenv("TARN_LINE_DIR");
        return std::string(folder ? folder : ".") + "\\" + name;
    }

    void Open() { ASSERT_EQ(object.Open(port), ""); }

    // A word of the modem's report: State("mode").
    std::string State(const std::string& name) {
        const std::string report = " " + modem.Do("state") + " ";
        const size_t found = report.find(" " + name + "=");
        if (found == std::string::npos)
            return "none";
        const size_t from = found + name.size() + 2;
        return report.substr(from, report.find(' ', from) - from);
    }

    bool Becomes(const std::string& name, const std::string& value) {
        return PumpUntil([&] { return State(name) == value; });
    }

    // Reads until this has come, or the limit passed: all that came.
    std::string ReadUntil(const std::string& end, DWORD limitMilliseconds = 5000) {
        std::string read;
        PumpUntil(
            [&] {
                char bytes[256];
                const int count = GetInput(object, bytes, sizeof bytes);
                read.append(bytes, static_cast<size_t>(count));
                return read.find(end) != std::string::npos;
            },
            limitMilliseconds);
        return read;
    }

    void Say(const std::string& text) { Output(object, text.data(), static_cast<int>(text.size())); }

    const char* port;
    CommObject object;
    Cable modem;
    Cable cable;
};

class Telephone : public testing::Test {
  protected:
    void SetUp() override {
        caller.Open();
        callee.Open();
    }

    // The far modem answers by itself; the near one calls it. A connection whose words have been read.
    void Connect() {
        ASSERT_EQ(InitModemForAnswer(callee.object), 1);
        callee.modem.Do("cadence 20 20");
        ASSERT_EQ(Dial(caller.object, farNumber), TARN_DIAL_CONNECTED);
        ASSERT_EQ(caller.ReadUntil("\n"), " 14400\r\n");
        ASSERT_NE(callee.ReadUntil("CONNECT 14400\r\n"), "");
        ASSERT_TRUE(PumpUntil([&] { return GetCarrier(caller.object) && GetCarrier(callee.object); }));
    }

    Subscriber caller{"COM11", 0};
    Subscriber callee{"COM12", 1};
};

} // namespace host
