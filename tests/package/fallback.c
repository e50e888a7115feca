/* Stands in for the module where it is denied the machine's classes: it falls back on the user's. */
#include <windows.h>

__declspec(dllexport) HRESULT WINAPI DllRegisterServer(void) {
    HKEY classes;
    LSTATUS error =
        RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, NULL, 0, KEY_WRITE, NULL, &classes, NULL);
    if (error == ERROR_SUCCESS)
        RegCloseKey(classes);
    return HRESULT_FROM_WIN32((DWORD)error);
}
