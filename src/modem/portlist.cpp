#include "portlist.h"

#include "core/portprobe.h"
#include "core/wall.h"
#include "diagnostics/faultguard.h"

#include <atomic>

namespace {

constexpr DWORD restBetweenFills = 2000; // ms
constexpr int highestName = 128;         // of the first scan
constexpr int highestOfNone = 4;         // of a machine without ports, which may still get one

std::atomic<int> nHighestPort = 0; // 0: nobody has scanned yet

bool IsSerialPort(const std::string& name) {
    const PortProbe probe = ProbePort(name.c_str());
    return probe.found && probe.kind == PortKind::Serial;
}

void AddPorts(std::vector<std::string>& names) {
    const int known = nHighestPort;
    for (int port = known ? known : highestName; port > 0; --port) {
        std::string name = "COM" + std::to_string(port);
        if (!IsSerialPort(name))
            continue;
        int none = 0;
        nHighestPort.compare_exchange_strong(none, port);
        names.push_back(std::move(name));
    }
    if (names.empty())
        nHighestPort = highestOfNone;
}

void AddModems(const CTapiApp& telephony, std::vector<std::string>& names) {
    for (DWORD device = 0; telephony.FindNextDataModem(device); ++device) {
        std::string name = telephony.GetModemName(device);
        if (!name.empty())
            names.push_back(std::move(name));
    }
}

// Drivers and providers run in both scans: a fault in the one doesn't stop the other.
template <class Scan>
void Guarded(const char* szPlace, Scan&& scan) {
    BehindWall(szPlace, [&] { CallTranslated(scan); });
}

} // namespace

void PortList::PortAddPorts(const CTapiApp* telephony, DWORD now) {
    if (dwLastFill && now - *dwLastFill < restBetweenFills)
        return;
    dwLastFill = now;
    names_.clear();
    Guarded("CComm::PortAddPorts", [this] { AddPorts(names_); });
    if (telephony)
        Guarded("CComm::PortAddModems", [&] { AddModems(*telephony, names_); });
}

void ForgetHighestPort() {
    nHighestPort = 0;
}
