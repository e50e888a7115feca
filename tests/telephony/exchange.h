// A small telephone exchange that stands in for the platform's telephony service: tests link against this
// tapi32.dll of our own, which lies beside the test program, and tell it what to do.
//
// Lines have device numbers from 0 on, in the order in which they were added. A line that is called or that
// places a call has a port, which becomes the data handle of the connected call. Everything here may be
// called on any thread; what it causes arrives as line messages, as with a real service.
#pragma once

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef TARN_EXCHANGE_BUILD
#define TARN_EXCHANGE __declspec(dllexport)
#else
#define TARN_EXCHANGE __declspec(dllimport)
#endif

// No line, no location, no country, no rule, no fault, no record; lives of applications go on.
TARN_EXCHANGE void WINAPI ExchangeReset(void);

// The next line. szPort: the port that carries its data ("COM5"), null for none. mediaModes:
// LINEMEDIAMODE_... bits. Its number on the exchange is szNumber, null for none.
TARN_EXCHANGE DWORD WINAPI ExchangeAddLine(const char* szName, const char* szProvider, DWORD mediaModes,
                                           const char* szNumber, const char* szPort);
TARN_EXCHANGE void WINAPI ExchangeAddLocation(const char* szName, const char* szAreaCode, DWORD countryId,
                                              DWORD permanentId);
TARN_EXCHANGE void WINAPI ExchangeSetCurrentLocation(DWORD permanentId);
TARN_EXCHANGE void WINAPI ExchangeAddCountry(const char* szName, DWORD countryId, DWORD countryCode);
TARN_EXCHANGE void WINAPI ExchangeSetDeviceConfig(DWORD device, const void* bytes, DWORD count);
// lineTranslateAddress gives szTo for szFrom. A number without a rule comes out as its digits alone.
TARN_EXCHANGE void WINAPI ExchangeAddTranslation(const char* szFrom, const char* szTo);

// What happens to a call of this number. A number without a rule that is a line's own calls that line; any
// other is a bad address.
enum ExchangeOutcome {
    ExchangeConnects, // a subscriber outside answers: dial tone, dialling, proceeding, ring back, connected
    ExchangeBusy,     // busy, then disconnected with LINEDISCONNECTMODE_BUSY
    ExchangeBusyStateOnly, // busy, and nothing more
    ExchangeNoAnswer,      // rings back, then disconnected with LINEDISCONNECTMODE_NOANSWER
    ExchangeDisconnects,   // disconnected with the rule's argument as mode
    ExchangeIdle,          // goes idle at once
    ExchangeRings,         // rings back for ever
    ExchangeReplyFails,    // LINE_REPLY with the rule's argument as error
    ExchangeRequestFails,  // lineMakeCall itself gives the rule's argument
    ExchangeNeverReplies,  // lineMakeCall is accepted, then silence
    ExchangeMessagesFail,  // lineGetMessage fails from then on, for all applications
};
TARN_EXCHANGE void WINAPI ExchangeAddRule(const char* szNumber, int outcome, DWORD argument);
// Milliseconds from one state of a call to the next; 10 after a reset.
TARN_EXCHANGE void WINAPI ExchangeSetPace(DWORD milliseconds);

// The line rings: LINE_LINEDEVSTATE with LINEDEVSTATE_RINGING, and an offering call for each application that
// has it open as owner. Gives the call, or 0 if no one owns the line.
TARN_EXCHANGE DWORD WINAPI ExchangeRing(DWORD device);
// The far end hangs up every call of the line: disconnected with this mode, then idle.
TARN_EXCHANGE void WINAPI ExchangeFarHangUp(DWORD device, DWORD disconnectMode);
// Any message, as the service would queue it for the application that has this line open.
TARN_EXCHANGE void WINAPI ExchangeSendMessage(DWORD device, DWORD messageId, DWORD_PTR param1,
                                              DWORD_PTR param2, DWORD_PTR param3);

// A reply to this request, for every application, whether it has a line open or not: so late a reply may
// come. A good one to a call that ExchangeNeverReplies has kept waiting writes a handle, of no call, where
// the caller wanted it.
TARN_EXCHANGE void WINAPI ExchangeSendReply(DWORD request, LONG result);
// The number of the last request that was accepted.
TARN_EXCHANGE DWORD WINAPI ExchangeLastRequest(void);

// The next times calls of this function of the service (its exported name) give this result at once and fill
// in nothing. A result of 0 is a service that answers success and does nothing. times 0 takes the fault back,
// INFINITE lasts.
TARN_EXCHANGE void WINAPI ExchangeFail(const char* szFunction, LONG result, DWORD times);
// Every structure with a variable part asks for this many bytes more than it needs, so that the caller must
// ask again; 0 after a reset.
TARN_EXCHANGE void WINAPI ExchangeDemandMore(DWORD bytes);
// The next times calls of this function end in an access violation.
TARN_EXCHANGE void WINAPI ExchangeCrash(const char* szFunction, DWORD times);
// A function blocks for this long before it works (lineShutdown, lineDrop, ...).
TARN_EXCHANGE void WINAPI ExchangeDelay(const char* szFunction, DWORD milliseconds);
// A function gives the caller's windows what other threads send, for this long, before it works: as one that
// asks another process.
TARN_EXCHANGE void WINAPI ExchangeServe(const char* szFunction, DWORD milliseconds);

// What the service was asked, one line each, since the reset or the last ExchangeClearRecord: the function's
// name and its telling arguments, such as
//   lineOpen device=0 privileges=owner media=10
//   lineSetNumRings address=0 rings=5
//   lineMakeCall number=5551234 country=0 size=176 bearer=1 maxrate=9600 media=10 flags=2 addressmode=1
//   dialtone=4000 lineAnswer / lineDrop / lineDeallocateCall / lineClose / lineShutdown lineGetID select=4
//   class=comm/datamodem lineConfigDialog device=0 class=COMM owner=1 (whether there was an owner window)
// Copies at most size - 1 characters; gives the whole length.
TARN_EXCHANGE DWORD WINAPI ExchangeRecord(char* szText, DWORD size);
TARN_EXCHANGE void WINAPI ExchangeClearRecord(void);

// What is open now: applications, lines, calls, data handles given out and not closed by the service.
struct ExchangeHoldings {
    DWORD applications;
    DWORD lines;
    DWORD calls;
};
TARN_EXCHANGE void WINAPI ExchangeGetHoldings(struct ExchangeHoldings* holdings);

#ifdef __cplusplus
}
#endif
