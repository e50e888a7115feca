// Here somebody always listens.
#include "diagnostics/debugtext.h"

#include <windows.h>

void DebugText(const char* szText) {
    OutputDebugStringA(szText);
}
