/* Keeps a module in use until a file is gone: hold MODULE FILE. It makes FILE.held when it has the module.
 *
 * Windows lets nobody write to a loaded module. Wine 8 does, so that the handle here refuses writers in its
 * place.
 */
#include <windows.h>

#include <stdio.h>

int main(int count, char** words) {
    HMODULE module;
    HANDLE file, sign;
    char held[MAX_PATH];
    if (count != 3)
        return 1;
    module = LoadLibraryA(words[1]);
    file = CreateFileA(words[1], GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, NULL, OPEN_EXISTING, 0,
                       NULL);
    if (!module || file == INVALID_HANDLE_VALUE)
        return 2;
    snprintf(held, sizeof held, "%s.held", words[2]);
    sign = CreateFileA(held, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
    CloseHandle(sign);
    while (GetFileAttributesA(words[2]) != INVALID_FILE_ATTRIBUTES)
        Sleep(50);
    CloseHandle(file);
    FreeLibrary(module);
    return 0;
}
