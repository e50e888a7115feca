#include "portprobe.h"

#include <windows.h>

namespace {

// A cable is a serial port, whatever its electric side.
PortKind KindOf(DWORD providerSubtype) {
    switch (providerSubtype) {
    case PST_RS232:
    case PST_RS422:
    case PST_RS423:
    case PST_RS449:
        return PortKind::Serial;
    case PST_MODEM:
        return PortKind::Modem;
    default:
        return PortKind::Unknown;
    }
}

} // namespace

PortProbe ProbePort(const char* szPort) {
    COMMCONFIG config = {};
    config.dwSize = sizeof config;
    DWORD size = sizeof config;
    if (!szPort || !GetDefaultCommConfigA(szPort, &config, &size))
        return {false, PortKind::Unknown};
    return {true, KindOf(config.dwProviderSubType)};
}
