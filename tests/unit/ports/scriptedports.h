// The ports that this program's machine has: a double of the one call that the scan makes.
#pragma once

#include "core/portprobe.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

class ScriptedPorts {
  public:
    // No port, nothing asked yet, no failure.
    static void Reset();
    static void Plug(const std::string& name, PortKind kind = PortKind::Serial);
    static void Unplug(const std::string& name);
    // Runs in each call, for failures of a driver.
    static void OnProbe(std::function<void(const std::string& name)> action);

    // What was asked since the last look.
    static std::vector<std::string> TakeAsked();
    static size_t AskedCount();
};

// "COM<highest>" down to "COM1".
std::vector<std::string> PortNamesFrom(int highest);

} // namespace host
