#include "coreobject.h"

#include "core/live.h"
#include "diagnostics/wiretap.h"

namespace host {

void SetTransferStatusOf(HWND object, int status) {
    if (COMCTL* record = RecordOf(object))
        record->nTransferStatus = status;
}

void StartLogAnew() {
    ResetWireTap();
}

} // namespace host
