#include "startup.h"

#include "comobject.h"
#include "diagnostics/runtime.h"
#include "TarnComm.h"

int TARNAPI InitTarnCommObjects(void) {
    StartRunTimeReports();
    return RegisterObjectClass(ThisModule());
}

void ShutDownTarnCommObjects() {
    UnregisterObjectClass(ThisModule());
    StopRunTimeReports();
}
