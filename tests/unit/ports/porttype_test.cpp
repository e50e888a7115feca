// What kind a port's name is of: by the system, or by the telephony service where the system doesn't know it.
#include "control/TarnCommCtl.h"
#include "portstest.h"

#include <comdef.h>

namespace {

using host::ScriptedPorts;

struct SubtypeRow {
    DWORD subtype;
    PortKind kind;
};

constexpr SubtypeRow subtypes[] = {
    {PST_UNSPECIFIED, PortKind::Unknown},
    {PST_RS232, PortKind::Serial},
    {PST_PARALLELPORT, PortKind::Unknown},
    {PST_RS422, PortKind::Serial},
    {PST_RS423, PortKind::Serial},
    {PST_RS449, PortKind::Serial},
    {PST_MODEM, PortKind::Modem},
    {7, PortKind::Unknown},
    {PST_FAX, PortKind::Unknown},
    {PST_SCANNER, PortKind::Unknown},
    {PST_NETWORK_BRIDGE, PortKind::Unknown},
    {PST_LAT, PortKind::Unknown},
    {PST_TCPIP_TELNET, PortKind::Unknown},
    {PST_X25, PortKind::Unknown},
    {0xFFFFFFFF, PortKind::Unknown},
};

TEST(PortKinds, AreThatOfTheProvidersSubtype) {
    for (const SubtypeRow& row : subtypes)
        EXPECT_EQ(KindOfProvider(row.subtype), row.kind) << row.subtype;
}

struct TypeRow {
    const char* name;
    const wchar_t* port;
    PortType type;
};

constexpr TypeRow types[] = {
    {"a serial port", L"COM1", PortType_Serial},
    {"a modem that the system knows", L"COM2", PortType_Modem},
    {"another device", L"COM3", PortType_Unknown},
    {"a line of the service", L"Line Modem", PortType_Modem},
    {"a line, case aside", L"LINE MODEM", PortType_Modem},
    {"a serial port with a line's name", L"Twin", PortType_Serial},
    {"another device with a line's name", L"Odd Twin", PortType_Unknown},
    {"no such name", L"COM4", PortType_Unknown},
    {"an empty name", L"", PortType_Unknown},
    {"no name", nullptr, PortType_Unknown},
};

class GetPortType : public host::PortsTest {
  protected:
    GetPortType() { CoInitialize(nullptr); }
    ~GetPortType() override { CoUninitialize(); }
};

TEST_F(GetPortType, AsksTheSystemFirst) {
    ScriptedPorts::Plug("COM1");
    ScriptedPorts::Plug("COM2", PortKind::Modem);
    ScriptedPorts::Plug("COM3", PortKind::Unknown);
    ScriptedPorts::Plug("Twin");
    ScriptedPorts::Plug("Odd Twin", PortKind::Unknown);
    for (const char* line : {"Line Modem", "Twin", "Odd Twin"})
        host::AddModem(line);
    ComPtr<CTarnCommCtl> control;
    ASSERT_EQ(NewObject(control), S_OK);
    for (const TypeRow& row : types) {
        PortType type = row.type == PortType_Serial ? PortType_Modem : PortType_Serial; // another
        const _bstr_t port(row.port);
        EXPECT_EQ(control->GetPortType(port, &type), S_OK) << row.name;
        EXPECT_EQ(type, row.type) << row.name;
    }
    EXPECT_EQ(control->GetPortType(_bstr_t(L"COM1"), nullptr), E_POINTER);
}

} // namespace
