// A double behind one of the platform's functions, at link time: the program calls it through its import
// pointer, and the linker takes the one that is defined here in place of the import library's. In a source:
//
//     BOOL WINAPI DoubleBeep(DWORD pitch, DWORD length);
//     extern "C" {
//     TARN_IMPORT_DOUBLE(Beep, 8) // bytes of the arguments on x86
//     }
#pragma once

#include <windows.h>

// The pointer's name as the assembler sees it.
#ifdef __i386__
#define TARN_IMPORT_NAME(Name, Bytes) asm("__imp__" #Name "@" #Bytes)
#else
#define TARN_IMPORT_NAME(Name, Bytes) asm("__imp_" #Name)
#endif
#define TARN_IMPORT_DOUBLE(Name, Bytes)                                                                      \
    decltype(&::Name) import##Name TARN_IMPORT_NAME(Name, Bytes) = &Double##Name;

namespace host {

// The platform's own function.
template <class Function>
Function Platform(const char* library, const char* name) {
    const HMODULE loaded = GetModuleHandleA(library);
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(loaded ? loaded : LoadLibraryA(library), name)));
}

} // namespace host
