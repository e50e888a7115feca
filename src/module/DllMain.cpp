#include "com/olecontrol.h"
#include "com/typeinfo.h"
#include "control/controlproperties.h"
#include "core/startup.h"
#include "TarnComm.h"

// The calls for each thread stay on: the compiler's run-time frees what a thread had in them.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        InitTarnCommObjects();
        break;
    case DLL_PROCESS_DETACH:
        // At the end of the process the system takes everything back, and other threads are gone in mid-step.
        if (!processEnds) {
            UnregisterControlWindow(ControlWindowClass);
            ForgetTypeInfo();
            ShutDownTarnCommObjects();
        }
        break;
    default:
        break;
    }
    return TRUE;
}
