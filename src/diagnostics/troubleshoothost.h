// What the troubleshooter asks of the control that opens it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct TroubleShootModem {
    std::string name;
    std::string provider;
    DWORD maximumSpeed; // bits per second
};

// What the dialog asks of its control, and sets when it ends.
class TroubleShootHost {
  public:
    virtual std::vector<TroubleShootModem> Modems() = 0;
    virtual bool WireTap() = 0;
    virtual std::string CaptureFilename() = 0;
    // on: the log with everything in it; off: the setter is called all the same, and decides.
    virtual void SetWireTap(bool on) = 0;
    virtual void SetCaptureFilename(const std::string& name) = 0;

  protected:
    ~TroubleShootHost() = default;
};
