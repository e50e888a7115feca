#include "portprobe.h"

#include <windows.h>

// A cable is a serial port, whatever its electric side.
PortKind KindOfProvider(unsigned long subtype) {
    switch (subtype) {
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
