#include "coreobject.h"

#include "core/live.h"
#include "diagnostics/wiretap.h"

namespace host {

void SetTransferStatusOf(HWND object, int status) {
    if (COMCTL* record = RecordOf(object))
        record->nTransferStatus = status;
}

bool LogsAll(HWND object) {
    const COMCTL* record = RecordOf(object);
    return record && record->bWireTapInput && record->bWireTapOutput && record->bWireTapTransfer;
}

bool LogsNothing(HWND object) {
    const COMCTL* record = RecordOf(object);
    return record && !record->bWireTapInput && !record->bWireTapOutput && !record->bWireTapTransfer;
}

void StartLogAnew() {
    ResetWireTap();
}

} // namespace host
