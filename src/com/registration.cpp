#include "registration.h"

#include "registryrows.h"
#include "wall.h"

namespace {

// One hive's classes, open for writing.
LSTATUS OpenClasses(HKEY root, RegistryKey& classes) {
    return classes.Create(root, L"Software\\Classes");
}

HRESULT RegisterBelow(HKEY root, const ModuleRegistration& module) {
    const RegistryRows rows = RowsOf(module);
    RegistryKey classes;
    LSTATUS error = OpenClasses(root, classes);
    if (error == ERROR_SUCCESS)
        error = WriteRows(classes.Get(), rows);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(error));
}

HRESULT UnregisterBelow(HKEY root, const ModuleRegistration& module) {
    const RegistryRows rows = RowsOf(module);
    RegistryKey classes;
    LSTATUS error = classes.Open(root, L"Software\\Classes", KEY_READ);
    if (error == ERROR_FILE_NOT_FOUND)
        return S_OK;
    if (error != ERROR_SUCCESS || !HoldsAny(classes.Get(), rows))
        return HRESULT_FROM_WIN32(static_cast<DWORD>(error));
    error = OpenClasses(root, classes);
    if (error == ERROR_SUCCESS)
        error = DeleteRows(classes.Get(), rows);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(error));
}

constexpr HRESULT denied = __HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);

} // namespace

HRESULT RegisterModule(const ModuleRegistration& module) noexcept {
    return AsResult([&] {
        const HRESULT result = RegisterBelow(HKEY_LOCAL_MACHINE, module);
        return result == denied ? RegisterBelow(HKEY_CURRENT_USER, module) : result;
    });
}

HRESULT UnregisterModule(const ModuleRegistration& module) noexcept {
    return AsResult([&] {
        const HRESULT ofUser = UnregisterBelow(HKEY_CURRENT_USER, module);
        const HRESULT ofMachine = UnregisterBelow(HKEY_LOCAL_MACHINE, module);
        return FAILED(ofMachine) ? ofMachine : ofUser;
    });
}
