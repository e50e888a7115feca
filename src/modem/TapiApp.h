// CTapiApp: the control's bridge to the platform's telephony service, for modems that the service names. It
// belongs to one owner and is called on the owner's thread. A thread of its own waits for the service's
// messages and turns them into the state of the call; what the owner must hear is sent to the owner's thread.
//
// A machine without the service, or one whose service fails to start, leaves the object disabled: no line, no
// location, no call. The service is Microsoft's Telephony API, version 2.0.
#pragma once

#include "callstate.h"
#include "core/handle.h"
#include "core/stoppablesend.h"
#include "core/thread.h"
#include "newswindow.h"
#include "tapiservice.h"

#include <memory>
#include <string>
#include <vector>

inline constexpr int noLine = -1;

// What a call means to its owner. All on the owner's thread; the host may run in each of them, so that the
// CTapiApp may be gone when one returns.
class CTapiOwner {
  public:
    // The call is over: gives its handle up, shows "Disconnected".
    virtual void OnDisconnected() = 0;
    // The line is idle again: no handle, and the display shows it.
    virtual void OnIdle() = 0;
    // A call that was answered carries data: takes the handle, tells of the new connection and the carrier.
    virtual void OnAnswered(HANDLE hComm) = 0;
    // An event of the comm object, by its code.
    virtual void OnNotify(int code) = 0;
    // False ends a dial: its host has gone.
    virtual bool WantsCall() const = 0;

  protected:
    ~CTapiOwner() = default;
};

// Limits of the waits, in milliseconds.
struct TapiLimits {
    DWORD silence = 120000; // of a service that owes a dial its reply, or its end; then the dial has failed
    DWORD threadEnd = 2000; // for the thread to stop; then it is terminated
};

class CTapiApp {
  public:
    explicit CTapiApp(CTapiOwner& owner, const TapiLimits& limits = {});
    virtual ~CTapiApp();
    CTapiApp(const CTapiApp&) = delete;
    CTapiApp& operator=(const CTapiApp&) = delete;

    bool IsDisabled() const { return bDisabled; }

    // Why telephony is out of use, a sentence for people; empty while it works.
    std::string StartUpError() const;

    // Lines (tapilines.cpp)

    // The version for this device; that of the start if the service names none.
    DWORD NegotiateVersion(DWORD device) const;
    bool IsDataModem(DWORD device) const;
    // The first line from this one on that takes data calls. False: there is none.
    bool FindNextDataModem(DWORD& device) const;
    // Empty if the line takes no data calls.
    std::string GetModemName(DWORD device) const;
    // False if the line takes no data calls; then the texts are empty.
    bool GetModemName(DWORD device, std::string& name, std::string& provider, DWORD& permanentId) const;
    // Bits per second; 0 if the line takes no data calls.
    DWORD GetMaximumSpeed(DWORD device) const;
    // The line with this name, case aside, or noLine.
    int FindModem(const char* szName) const;
    // The service's own dialog for the line's settings.
    void ConfigDialog(DWORD device, HWND hOwner) const;

    // Calls (tapicalls.cpp)

    // Places a call at this rate (bits per second, 0: any) and waits for its end, serving messages. False:
    // LastError says why; it may be empty.
    bool Dial(DWORD device, const char* szNumber, LONG rate);
    // Drops the call or closes the line.
    bool HangUp();
    // The data handle of the current call, or INVALID_HANDLE_VALUE.
    HANDLE GetCommHandle() const;
    std::string LastError() const;
    // The state after: whether calls are answered.
    bool SetAnswer(bool on, DWORD device);
    bool IsAnswering() const;
    bool IsDialling() const;

    // Locations and translation (tapilocations.cpp)

    std::vector<std::string> Locations() const;
    std::string GetCurrentLocationName() const; // empty if not found
    // Country 1 and an empty area code if not found.
    void GetCurrentLocationCountryIDAndAreaCode(DWORD& countryId, std::string& areaCode) const;
    int GetLocationID(const char* szName) const; // or -1
    // False: there is no such location.
    bool SetCurrentLocation(const char* szName);
    std::string TranslatePhoneNumber(DWORD device, const char* szNumber) const;
    // Adds "name (code)" for each country, with its identifier as the item's data.
    void AddCountriesToCombo(HWND hCombo) const;

    // A line's configuration as text, two letters a byte (tapiconfig.cpp)

    std::string GetDeviceConfig(DWORD device) const;
    void SetDeviceConfig(DWORD device, const char* szText);

  private:
    // What the owner is told by the telephony thread.
    enum class News : WPARAM { Disconnected, Idle, Answered, Ring, Carrier };
    enum class Pumped { On, Quit, Gone };
    static constexpr int newsBits = 8; // of a WPARAM; the rest is the call's identity
    struct ThreadTables;               // tapithread.cpp
    using Life = std::weak_ptr<const bool>;

    // Start (TapiApp.cpp)
    LONG InitializeService();
    bool StartListening();
    void LogLines() const;
    // On the owner's thread.
    void OnNews(News news, DWORD which);
    void TellOwner(News news, DWORD which);
    void TellOfAnswer();

    // Calls (tapicalls.cpp)
    HLINE OpenLine(DWORD device, DWORD privileges, LONG& result) const;
    HLINE OpenToAnswer(DWORD device) const;
    bool StartAnswering(DWORD device);
    bool StopAnswering();
    // Gives the identity of the call, or noCall.
    void PlaceCall(DWORD device, const char* szNumber, LONG rate, const Life& life, DWORD& dial);
    DWORD BeginDial(HLINE line, const std::shared_ptr<MadeCall>& made);
    bool RequestCall(HLINE line, const std::string& number, LONG rate, const Life& life, DWORD& dial);
    LONG MakeCall(HLINE line, const std::string& number, LONG rate, MadeCall& made, DWORD dial);
    std::string NumberToDial(DWORD device, const char* szNumber) const;
    void WaitForDial(const Life& life, DWORD dial);
    void WaitForReason(const Life& life, DWORD dial);
    bool IsRunning(DWORD dial) const;
    bool IsWaiting(DWORD dial) const;
    Pumped PumpMessages(const Life& life, DWORD dial) const;
    const char* WhyToGiveUp(Pumped pumped) const;
    bool FinishDial(DWORD dial);
    // What HangUp does once the owner has given its handle up, for this call or, with noCall, for whichever
    // there is. On both threads.
    bool EndCall(const char* szReason = callCanceled, DWORD which = noCall);
    bool DropCall(HCALL dropped, DWORD which, const char* szReason, bool wasEnding);
    // On both threads: notes why, if the reason is known before the call is ended.
    void NoteFailedRequest(LONG error, DWORD which);

    // The thread's body, and what it does with a message (tapithread.cpp).
    DWORD TapiThread(); // the exit code
    bool Listen();      // false: the service is gone
    void GoDeaf();
    LONG GetMessageOfService(LINEMESSAGE& message) const;
    bool ServeMessage();
    void TakeMessage(const LINEMESSAGE& message);
    // Of the call with this identity. False: it is time to stop.
    bool Tell(News news, const char* szLabel, DWORD which);
    bool HangUpFromThread(const char* szLabel, DWORD which, const char* szReason = callCanceled);
    void TakeCallState(const LINEMESSAGE& message);
    void TakeDeviceState(const LINEMESSAGE& message);
    void TakeReply(const LINEMESSAGE& message);
    void TakeClose(const LINEMESSAGE& message);
    void RequestFailed(LONG error, DWORD which, bool isDrop);
    void CallIdle(const LINEMESSAGE& message);
    void CallOffered(const LINEMESSAGE& message);
    void CallBusy(const LINEMESSAGE& message);
    void CallConnected(const LINEMESSAGE& message);
    void CallDisconnected(const LINEMESSAGE& message);
    void OpenAgain();

    CTapiOwner& pControl;
    TapiLimits limits;
    const TapiService* pService = nullptr; // null: there is none on this machine
    HLINEAPP hLineApp = 0;
    DWORD dwAPIVersion = 0x20000; // the highest wanted, then the one to be had
    DWORD dwNumDevs = 0;
    HANDLE hLineEvent = nullptr; // the service's
    EventHandle hShutdown;
    WorkerHandle hThread;
    bool bDisabled = false;
    LONG lInitResult = 0;
    CallState call; // shared with the thread, under its own lock

    int newsUnderWay = 0;             // owner's thread only
    std::shared_ptr<const bool> life; // owner's thread only; who calls the owner watches it
    std::unique_ptr<NewsWindow> newsWindow;
    std::unique_ptr<StoppableSend> ownerSend; // the thread's
};
