// Which ports the machine's list names, what a scan asks for them, and when there is one.
#include "portstest.h"

#include <stdexcept>

namespace {

using host::PortNamesFrom;
using host::ScriptedPorts;
using testing::ElementsAre;
using testing::IsEmpty;

class PortListScan : public host::PortsTest {};

TEST_F(PortListScan, FirstAsksFor128Ports) {
    EXPECT_THAT(Scan(), IsEmpty());
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(128));
}

TEST_F(PortListScan, ListsFromHighToLowAndStartsFromTheHighestNextTime) {
    ScriptedPorts::Plug("COM1");
    ScriptedPorts::Plug("COM3");
    EXPECT_THAT(Scan(), ElementsAre("COM3", "COM1"));
    ScriptedPorts::TakeAsked();
    EXPECT_THAT(Scan(), ElementsAre("COM3", "COM1"));
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(3));
}

TEST_F(PortListScan, WithoutPortsAsksForFourNextTime) {
    Scan();
    ScriptedPorts::TakeAsked();
    ScriptedPorts::Plug("COM2");
    ScriptedPorts::Plug("COM5");
    EXPECT_THAT(Scan(), ElementsAre("COM2"));
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(4));
    Scan();
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(4)) << "the highest is of the first scan";
}

struct HighestCase {
    const char* name;
    int port;
};

class HighestPort : public host::PortsTest, public testing::WithParamInterface<HighestCase> {};

TEST_P(HighestPort, IsWhereLaterScansStart) {
    ScriptedPorts::Plug("COM" + std::to_string(GetParam().port));
    Scan();
    ScriptedPorts::TakeAsked();
    EXPECT_THAT(Scan(), ElementsAre("COM" + std::to_string(GetParam().port)));
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(GetParam().port));
}

INSTANTIATE_TEST_SUITE_P(Rows, HighestPort,
                         testing::Values(HighestCase{"Lowest", 1}, HighestCase{"LastOfOneDigit", 9},
                                         HighestCase{"TwoDigits", 10}, HighestCase{"Highest", 128}),
                         [](const auto& row) { return row.param.name; });

TEST_F(PortListScan, NoneIsAbove128) {
    ScriptedPorts::Plug("COM129");
    EXPECT_THAT(Scan(), IsEmpty());
}

TEST_F(PortListScan, APortAboveTheHighestIsNotSeen) {
    ScriptedPorts::Plug("COM3");
    Scan();
    ScriptedPorts::Plug("COM7");
    EXPECT_THAT(Scan(), ElementsAre("COM3"));
}

TEST_F(PortListScan, TheHighestStaysWhenItsPortGoes) {
    ScriptedPorts::Plug("COM9");
    ScriptedPorts::Plug("COM1");
    Scan();
    ScriptedPorts::Unplug("COM9");
    EXPECT_THAT(Scan(), ElementsAre("COM1"));
    ScriptedPorts::TakeAsked();
    Scan();
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(9));
}

TEST_F(PortListScan, WhenAllPortsGoFourAreAskedFor) {
    ScriptedPorts::Plug("COM9");
    Scan();
    ScriptedPorts::Unplug("COM9");
    EXPECT_THAT(Scan(), IsEmpty());
    ScriptedPorts::TakeAsked();
    Scan();
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(4));
}

TEST_F(PortListScan, ListsSerialPortsOnly) {
    ScriptedPorts::Plug("COM8", PortKind::Modem);
    ScriptedPorts::Plug("COM7", PortKind::Unknown);
    ScriptedPorts::Plug("COM6", PortKind::Serial);
    EXPECT_THAT(Scan(), ElementsAre("COM6"));
    ScriptedPorts::TakeAsked();
    Scan();
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(6)) << "others count for nothing";
}

TEST_F(PortListScan, AllListsOfTheProcessShareTheHighest) {
    ScriptedPorts::Plug("COM3");
    Scan();
    ScriptedPorts::TakeAsked();
    PortList other;
    other.PortAddPorts(nullptr, 0);
    EXPECT_THAT(other.Names(), ElementsAre("COM3"));
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(3));
}

TEST_F(PortListScan, ForgettingTheHighestStartsAnew) {
    ScriptedPorts::Plug("COM3");
    Scan();
    ForgetHighestPort();
    ScriptedPorts::TakeAsked();
    Scan();
    EXPECT_EQ(ScriptedPorts::TakeAsked(), PortNamesFrom(128));
}

struct AgeCase {
    const char* name;
    DWORD first; // ms
    DWORD second;
    bool scans;
};

class PortListAge : public host::PortsTest, public testing::WithParamInterface<AgeCase> {};

TEST_P(PortListAge, DecidesAboutAnotherScan) {
    ScriptedPorts::Plug("COM1");
    list.PortAddPorts(nullptr, GetParam().first);
    ScriptedPorts::Unplug("COM1");
    ScriptedPorts::TakeAsked();
    list.PortAddPorts(nullptr, GetParam().second);
    EXPECT_EQ(ScriptedPorts::AskedCount() > 0, GetParam().scans);
    EXPECT_EQ(list.Names().empty(), GetParam().scans);
}

const AgeCase ages[] = {
    {"AtOnce", 5000, 5000, false},
    {"JustBelow", 5000, 6999, false},
    {"JustEnough", 5000, 7000, true},
    {"Later", 5000, 100000, true},
    {"FirstAtTheClocksZero", 0, 1999, false},
    {"ShortlyBeforeTheClocksEnd", 0xFFFFFF00, 0xFFFFFF80, false},
    {"AcrossTheClocksEndSoon", 0xFFFFFF00, 0x100, false},
    {"AcrossTheClocksEndLater", 0xFFFFFF00, 0x800, true},
};

INSTANTIATE_TEST_SUITE_P(Rows, PortListAge, testing::ValuesIn(ages),
                         [](const auto& row) { return row.param.name; });

TEST_F(PortListScan, TheAgeIsCountedFromTheLastScanNotTheLastLook) {
    list.PortAddPorts(nullptr, 1000);
    list.PortAddPorts(nullptr, 2500);
    ScriptedPorts::TakeAsked();
    list.PortAddPorts(nullptr, 3000);
    EXPECT_GT(ScriptedPorts::AskedCount(), 0u);
}

// A driver that fails ends the scan, not the program; what was found so far stays.
using Failure = void (*)();

struct FailureCase {
    const char* name;
    Failure fail;
};

class FailingDriver : public host::PortsTest, public testing::WithParamInterface<FailureCase> {
  protected:
    void FailAt(const std::string& port) {
        ScriptedPorts::OnProbe([this, port](const std::string& asked) {
            if (asked == port)
                GetParam().fail();
        });
    }
};

const FailureCase failures[] = {
    {"Throws", [] { throw std::runtime_error("driver"); }},
    {"Faults", [] { RaiseException(0xC0000005, 0, 0, nullptr); }},
};

TEST_P(FailingDriver, EndsTheScan) {
    ScriptedPorts::Plug("COM5");
    ScriptedPorts::Plug("COM1");
    FailAt("COM3");
    EXPECT_THAT(Scan(), ElementsAre("COM5"));
}

TEST_P(FailingDriver, DoesNotStopTheModems) {
    host::AddModem("Alpha");
    host::NoCalls owner;
    const CTapiApp telephony(owner);
    FailAt("COM128");
    list.PortAddPorts(&telephony, 0);
    EXPECT_THAT(list.Names(), ElementsAre("Alpha"));
}

INSTANTIATE_TEST_SUITE_P(Rows, FailingDriver, testing::ValuesIn(failures),
                         [](const auto& row) { return row.param.name; });

} // namespace
