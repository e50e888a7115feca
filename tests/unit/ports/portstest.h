// A machine of its own for each test, and a CTapiApp with the tests' exchange behind it.
#pragma once

#include "modem/portlist.h"
#include "scriptedports.h"
#include "support/nocalls.h"
#include "telephony/exchange.h"

#include <gmock/gmock.h>

namespace host {

class PortsTest : public testing::Test {
  protected:
    PortsTest() {
        ExchangeReset();
        ScriptedPorts::Reset();
        ForgetHighestPort();
    }
    ~PortsTest() override { ScriptedPorts::Reset(); }

    static constexpr DWORD rest = 2000; // ms between two scans

    // The list as it is when it may be read anew.
    std::vector<std::string> Scan() {
        list.PortAddPorts(nullptr, now += rest);
        return list.Names();
    }

    PortList list;
    DWORD now = 0;
};

inline DWORD AddModem(const char* name) {
    return ExchangeAddLine(name, "", 0x10, nullptr, nullptr);
}

} // namespace host
