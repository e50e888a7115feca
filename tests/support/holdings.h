// What the thread holds of windows and the process of drawing objects.
#pragma once

#include <windows.h>

namespace host {

// Where the system keeps no count, the slots are tried: the low half of a handle names its slot.
inline int GdiObjects() {
    if (const DWORD count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS))
        return static_cast<int>(count);
    int count = 0;
    for (UINT_PTR slot = 1; slot <= 0xffff; ++slot)
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(slot)) != 0;
    return count;
}

inline BOOL CALLBACK CountWindow(HWND, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

inline BOOL CALLBACK CountFamily(HWND window, LPARAM count) {
    EnumChildWindows(window, CountWindow, count);
    return CountWindow(window, count);
}

// Top-level windows of this thread and all below them.
inline int ThreadWindows() {
    int count = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountFamily, reinterpret_cast<LPARAM>(&count));
    return count;
}

} // namespace host
