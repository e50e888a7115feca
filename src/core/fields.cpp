// The flat functions that only store or read a field of the record. Each family is one rule; a row gives the
// name, the type and the field.
#include "live.h"
#include "portstate.h"
#include "TarnComm.h"
#include "ticksource.h"
#include "wall.h"

#include <algorithm>
#include <cstdio>

namespace {

template <class Value>
Value ValueOf(const Value& field) {
    return field;
}

template <class Value>
Value ValueOf(const std::atomic<Value>& field) {
    return field;
}

template <auto Field>
auto Read(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    return record ? ValueOf(record->*Field) : decltype(ValueOf(record->*Field)){};
}

template <auto Field, class Value>
COMCTL* Store(HWND hWnd, Value value) {
    COMCTL* record = RecordOf(hWnd);
    if (record)
        record->*Field = value;
    return record;
}

template <auto Field, class Value>
void StoreThenRebuild(HWND hWnd, Value value) {
    BehindWall("SetField", [&] {
        if (COMCTL* record = Store<Field>(hWnd, value))
            RebuildDeviceState(*record, Speed::Leave);
    });
}

template <auto Field, class Value>
void StoreThenTick(HWND hWnd, Value value) {
    BehindWall("SetField", [&] {
        if (COMCTL* record = Store<Field>(hWnd, value))
            SetUpTick(*record);
    });
}

template <auto Field, class Value>
void StoreWhileClosed(HWND hWnd, Value value) {
    COMCTL* record = RecordOf(hWnd);
    if (record && !record->bPortOpen)
        record->*Field = value;
}

} // namespace

// The exported names have to be spelled out for the linker; these rows are the only place where they are.
#define GETTER(Type, Name, Field)                                                                            \
    Type TARNAPI Get##Name(HWND hWnd) {                                                                      \
        return Read<&COMCTL::Field>(hWnd);                                                                   \
    }
#define SETTER(Rule, Type, Name, Field)                                                                      \
    void TARNAPI Set##Name(HWND hWnd, Type value) {                                                          \
        Rule<&COMCTL::Field>(hWnd, value);                                                                   \
    }
#define PAIR(Rule, Type, Name, Field) GETTER(Type, Name, Field) SETTER(Rule, Type, Name, Field)

// Stored, and nothing else
PAIR(Store, int, AutoZModem, bAutoZModem)
PAIR(Store, int, Backspace, nBackspace)
PAIR(Store, int, CommEcho, bCommEcho)
PAIR(Store, LONG, CommLong, lCommLong)
PAIR(Store, int, DialMode, nDialMode)
PAIR(Store, LONG, DialTimeOut, lDialTimeOut)
PAIR(Store, HWND, DialogParent, hDialogParent)
PAIR(Store, int, Echo, bEcho)
PAIR(Store, int, EndOfLineMode, nEndOfLineMode)
PAIR(Store, int, InputEcho, bInputEcho)
PAIR(Store, LONG, InputTimeOut, lInputTimeOut)
PAIR(Store, LONG, Notification, lNotification)
PAIR(Store, int, NullDiscard, bNullDiscard)
PAIR(Store, LONG, OutputTimeOut, lOutputTimeOut)
PAIR(Store, int, Protocol, nProtocol)
PAIR(Store, int, ResumeMethod, nResumeMethod)
PAIR(Store, int, ShutDown, bShutDown)
PAIR(Store, int, TransferDialogType, nTransferDialogType)
SETTER(Store, TarnEventHandler, EventHandler, lpfnEventHandler)
SETTER(Store, HWND, EventWindow, hEventWindow)
SETTER(Store, TarnIdleHandler, IdleLoop, lpfnIdleLoop)
// Writes the limit of GetLineInput although its getter reads the driver's; kept so, see the tests.
SETTER(Store, LONG, DriverInputTimeOut, lInputTimeOut)

// Stored, then the device state is rebuilt
PAIR(StoreThenRebuild, LONG, CarrierTimeOut, lCarrierTimeOut)
PAIR(StoreThenRebuild, LONG, CTSTimeOut, lCTSTimeOut)
PAIR(StoreThenRebuild, LONG, DSRTimeOut, lDSRTimeOut)
PAIR(StoreThenRebuild, int, DiscardNulls, bNullDiscard)
PAIR(StoreThenRebuild, int, Handshaking, nHandshaking)
SETTER(StoreThenRebuild, LONG, InputDriverTimeOut, lDriverInputTimeOut)
GETTER(LONG, DriverInputTimeOut, lDriverInputTimeOut)
GETTER(int, ParityReplace, nParityReplace)
GETTER(int, DTR, bDTR)
GETTER(int, RTS, bRTS)

// Stored, then timer set-up runs
PAIR(StoreThenTick, int, AutoProcess, nAutoProcess)
PAIR(StoreThenTick, LONG, Interval, lInterval)
PAIR(StoreThenTick, int, CaptureMode, nCaptureMode)
GETTER(int, RThreshold, nRThreshold)
GETTER(int, SThreshold, nSThreshold)

// Stored only while the port is closed
PAIR(StoreWhileClosed, int, InBufferSize, cbInBuffer)
PAIR(StoreWhileClosed, int, OutBufferSize, cbOutBuffer)

// Read only
GETTER(int, PortOpen, bPortOpen)
GETTER(HANDLE, CommID, hComm)
GETTER(LONG, SettingsBaud, lBaud)
GETTER(int, LastCommEvent, nLastEvent)

#undef PAIR
#undef SETTER
#undef GETTER

void TARNAPI SetParityReplace(HWND hWnd, int nParityReplace) {
    StoreThenRebuild<&COMCTL::nParityReplace>(hWnd, std::max(nParityReplace, -1));
}

void TARNAPI SetRThreshold(HWND hWnd, int nRThreshold) {
    if (nRThreshold >= 0)
        StoreThenTick<&COMCTL::nRThreshold>(hWnd, nRThreshold);
}

void TARNAPI SetSThreshold(HWND hWnd, int nSThreshold) {
    if (nSThreshold >= 0)
        StoreThenTick<&COMCTL::nSThreshold>(hWnd, nSThreshold);
}

int TARNAPI GetBusy(HWND hWnd) {
    return Read<&COMCTL::nBusy>(hWnd) != 0;
}
