// The modems behind the ports, and the combo box of both.
#include "portstest.h"

namespace {

using host::AddModem;
using host::NoCalls;
using host::ScriptedPorts;
using testing::ElementsAre;

constexpr DWORD voice = 4; // a line for people

class PortModems : public host::PortsTest {
  protected:
    NoCalls owner;
};

TEST_F(PortModems, ComeBehindThePortsInTheServicesOrder) {
    ScriptedPorts::Plug("COM2");
    AddModem("Zeta");
    AddModem("Alpha");
    const CTapiApp telephony(owner);
    list.PortAddPorts(&telephony, 0);
    EXPECT_THAT(list.Names(), ElementsAre("COM2", "Zeta", "Alpha"));
}

TEST_F(PortModems, LinesForPeopleAndNamelessOnesAreLeftOut) {
    ExchangeAddLine("Desk", "", voice, nullptr, nullptr);
    AddModem("Alpha");
    AddModem("");
    ExchangeAddLine("Hall", "", voice, nullptr, nullptr);
    AddModem("Beta");
    const CTapiApp telephony(owner);
    list.PortAddPorts(&telephony, 0);
    EXPECT_THAT(list.Names(), ElementsAre("Alpha", "Beta"));
}

TEST_F(PortModems, ModemsAreNoPorts) {
    AddModem("Alpha");
    const CTapiApp telephony(owner);
    list.PortAddPorts(&telephony, 0);
    ScriptedPorts::TakeAsked();
    list.PortAddPorts(&telephony, rest);
    EXPECT_EQ(ScriptedPorts::TakeAsked(), host::PortNamesFrom(4)) << "there was no port";
}

TEST_F(PortModems, WithoutTelephonyThePortsAreListed) {
    ScriptedPorts::Plug("COM2");
    AddModem("Alpha");
    ExchangeFail("lineInitializeExA", static_cast<LONG>(0x80000048), INFINITE);
    const CTapiApp telephony(owner);
    ASSERT_TRUE(telephony.IsDisabled());
    list.PortAddPorts(&telephony, 0);
    EXPECT_THAT(list.Names(), ElementsAre("COM2"));
}

TEST_F(PortModems, AServiceThatFailsLeavesThePorts) {
    ScriptedPorts::Plug("COM2");
    AddModem("Alpha");
    const CTapiApp telephony(owner);
    ExchangeFail("lineGetDevCapsA", static_cast<LONG>(0x80000048), INFINITE);
    list.PortAddPorts(&telephony, 0);
    EXPECT_THAT(list.Names(), ElementsAre("COM2"));
}

} // namespace
