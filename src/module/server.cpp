// The four entries by which the system makes the module's objects and registers them.
#include "com/classfactory.h"
#include "com/modulefile.h"
#include "com/registration.h"
#include "control/PropAbout.h"
#include "control/PropCommunications.h"
#include "control/PropTerminal.h"
#include "control/PropWireTap.h"
#include "control/TarnCommCtl.h"

#include <olectl.h>

namespace {

// What a host can make. The script extension comes from its control only.
constexpr ClassRow classes[] = {
    {&CLSID_TarnComm, CreateClass<CTarnCommCtl>},
    {&CLSID_PropCommunications, CreateClass<CPropCommunications>},
    {&CLSID_PropTerminal, CreateClass<CPropTerminal>},
    {&CLSID_PropWireTap, CreateClass<CPropWireTap>},
    {&CLSID_PropAbout, CreateClass<CPropAbout>},
};

constexpr CoclassRegistration registrations[] = {
    {.id = &CLSID_TarnComm,
     .name = L"Tarn Comm Control",
     .progId = L"TarnLink.TarnComm",
     .isControl = true,
     .miscStatus = L"131473",
     .toolboxBitmap = L"101"},
    {.id = &CLSID_PropCommunications, .name = L"Communications property page"},
    {.id = &CLSID_PropTerminal, .name = L"Terminal property page"},
    {.id = &CLSID_PropWireTap, .name = L"WireTap property page"},
    {.id = &CLSID_PropAbout, .name = L"About property page"},
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
