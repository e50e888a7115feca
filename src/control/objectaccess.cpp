#include "objectaccess.h"

#include "core/live.h"
#include "core/notify.h"
#include "core/port.h"
#include "core/rooms.h"
#include "core/Tc-lkup.h"
#include "TarnComm.h"

#include <mutex>

namespace {

ControlRoom controlRoom;

void FireCommEvent(CTarnCommCtl& control, int code) {
    controlRoom.fireCommEvent(control, code);
}

void FireLookUp(COMCTL& record, const char* text, int count) {
    controlRoom.fireLookUp(*record.lpControl, text, count);
}

bool IsConnected(const CTarnCommCtl& control) {
    return controlRoom.isConnected(control);
}

} // namespace

void AttachControl(HWND hObject, CTarnCommCtl* control) {
    if (COMCTL* record = RecordOf(hObject))
        record->lpControl = control;
}

CTarnCommCtl* ControlOf(HWND hObject) {
    const COMCTL* record = RecordOf(hObject);
    return record ? record->lpControl : nullptr;
}

void GiveCallToObject(HWND hObject, HANDLE hComm) {
    SetCommID(hObject, hComm);
    COMCTL* record = RecordOf(hObject);
    if (record && record->bPortOpen)
        PrepareDevice(*record);
}

void NotifyObject(HWND hObject, int code) {
    Notify(hObject, code);
}

void ClearPendingError(HWND hObject) {
    if (COMCTL* record = RecordOf(hObject))
        record->nPendingError = 0;
}

int LookUpMatchOf(HWND hObject) {
    constexpr int none = -1;
    const COMCTL* record = RecordOf(hObject);
    return record ? GetLookUpMatch(*record) : none;
}

const char* ErrorTextOf(int code) {
    return ErrorText(code);
}

std::string TransferMessageOf(HWND hObject) {
    const COMCTL* record = RecordOf(hObject);
    if (!record)
        return "";
    std::scoped_lock guard(TransferLock());
    return record->szTransferStatus;
}

bool ConnectControlRoom(const ControlRoom& room) {
    controlRoom = room;
    upperRooms.fireCommEvent = FireCommEvent;
    upperRooms.fireLookUp = FireLookUp;
    upperRooms.isConnected = IsConnected;
    return true;
}
