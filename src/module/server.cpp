// The four entries by which the system makes the module's objects and registers them.
#include "com/classfactory.h"
#include "com/modulefile.h"
#include "com/registration.h"
#include "control/TarnCommCtl.h"

#include <olectl.h>

namespace {

// What a host can make. The script extension comes from its control only.
constexpr ClassRow classes[] = {
    {&CLSID_TarnComm, CreateClass<CTarnCommCtl>},
};

constexpr CoclassRegistration registrations[] = {
    {.id = &CLSID_TarnComm,
     .name = L"Tarn Comm Control",
     .progId = L"TarnLink.TarnComm",
     .isControl = true,
     .miscStatus = L"131473",
     .toolboxBitmap = L"101"},
};

ModuleRegistration ThisModule() {
    return {ModulePath(), &LIBID_TarnLink, L"1.0", registrations};
}

} // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
    return GetClassObject(classes, id, iid, object);
}

STDAPI DllCanUnloadNow() {
    return CanUnloadNow();
}

STDAPI DllRegisterServer() {
    return AsResult([] { return RegisterModule(ThisModule()); });
}

STDAPI DllUnregisterServer() {
    return AsResult([] { return UnregisterModule(ThisModule()); });
}
