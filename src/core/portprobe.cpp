#include "portprobe.h"

#include <windows.h>

PortProbe ProbePort(const char* szPort) {
    COMMCONFIG config = {};
    config.dwSize = sizeof config;
    DWORD size = sizeof config;
    if (!szPort || !GetDefaultCommConfigA(szPort, &config, &size))
        return {false, PortKind::Unknown};
    const DCB& dcb = config.dcb;
    return {true, KindOfProvider(config.dwProviderSubType), {dcb.BaudRate, dcb.ByteSize, dcb.Parity}};
}
