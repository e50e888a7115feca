// CTapiApp: the control's bridge to the platform's telephony service, for modems that the service names. It
// belongs to one owner and runs on the owner's thread.
//
// The service is not bound yet: every object is in the state that it has where the service fails to start,
// with no line, no location and no call.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

inline constexpr int noLine = -1;

// What it tells its owner.
class CTapiOwner {
  public:
    // The call is over; the owner gives its handle up.
    virtual void OnDisconnected() = 0;

  protected:
    ~CTapiOwner() = default;
};

class CTapiApp {
  public:
    explicit CTapiApp(CTapiOwner& owner) : m_Owner(owner) {}
    CTapiApp(const CTapiApp&) = delete;
    CTapiApp& operator=(const CTapiApp&) = delete;

    bool IsDisabled() const { return m_bDisabled; }

    // Why telephony is out of use, a sentence for people; empty while it works.
    std::string StartUpError() const;

    // The line with this name, case aside, or noLine.
    int FindModem(const char* szName) const;
    // The first line from this one on that takes data calls. False: there is none.
    bool FindNextDataModem(DWORD& device) const;
    // Empty if it is no such line.
    std::string GetModemName(DWORD device) const;

    // Places a call and waits for its end. False: LastError says why.
    bool Dial(DWORD device, const char* szNumber, LONG rate);
    bool HangUp();
    HANDLE GetCommHandle() const;
    const char* LastError() const { return m_lpszError ? m_lpszError : ""; }

    // The state after: whether calls are answered.
    bool SetAnswer(bool on, DWORD device);

    std::vector<std::string> Locations() const;
    std::string GetCurrentLocationName() const;
    bool SetCurrentLocation(const char* szName);
    std::string TranslatePhoneNumber(DWORD device, const char* szNumber) const;
    std::string GetDeviceConfig(DWORD device) const;
    void SetDeviceConfig(DWORD device, const char* szText);

  private:
    CTapiOwner& m_Owner;
    bool m_bDisabled = true;
    const char* m_lpszError = nullptr; // of the last call
};
