// Lines of the log that carry a value.
#pragma once

void LogTapi(const char* szFormat, ...) __attribute__((format(gnu_printf, 1, 2)));
