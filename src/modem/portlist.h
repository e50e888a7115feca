// The names that can be given as a port: the machine's serial ports, from the highest to the lowest, then the
// modems of the telephony service. One list belongs to one owner and is used on its thread.
#pragma once

#include "TapiApp.h"

#include <optional>
#include <string>
#include <vector>

class PortList {
  public:
    // Lists them anew, unless the last time was less than 2 seconds ago: who walks through the list entry by
    // entry doesn't scan for each. No telephony: serial ports alone. now: in milliseconds.
    void PortAddPorts(const CTapiApp* telephony, DWORD now = GetTickCount());
    const std::vector<std::string>& Names() const { return names_; }

  private:
    std::vector<std::string> names_;
    std::optional<DWORD> dwLastFill; // none before the first
};

// The highest port that the first scan of this process found is where later scans start. Forgets it: the
// next scan is as the first one.
void ForgetHighestPort();
