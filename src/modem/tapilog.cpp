#include "tapilog.h"

#include "diagnostics/wiretap.h"

#include <cstdarg>
#include <cstdio>

void LogTapi(const char* szFormat, ...) {
    char text[128];
    va_list arguments;
    va_start(arguments, szFormat);
    std::vsnprintf(text, sizeof text, szFormat, arguments);
    va_end(arguments);
    LogText(text);
}
