#include "runtime.h"

#include "core/handle.h"
#include "logpath.h"
#include "wiretap.h"

#include <cstdio>
#include <cstring>

namespace {

FileHandle reportFile;

constexpr size_t reportSize = 1024; // characters of one report, with the NUL; more is cut

const char* KindText(ReportKind kind) {
    switch (kind) {
    case ReportKind::Warning:
        return "Warning";
    case ReportKind::Assertion:
        return "Assertion failed";
    }
    return "";
}

const char* BaseName(const char* szPath) {
    const char* name = szPath;
    for (const char* c = szPath; *c; ++c) {
        if (*c == '/' || *c == '\\')
            name = c + 1;
    }
    return name;
}

void WriteLine(const char* szText) {
    if (!reportFile)
        return;
    char line[reportSize + 2];
    const int length = std::snprintf(line, sizeof line, "%s\r\n", szText);
    DWORD written = 0;
    WriteFile(reportFile.get(), line, static_cast<DWORD>(length), &written, nullptr);
}

} // namespace

void StartRunTimeReports() {
    reportFile.reset(CreateFileA(PathInWindowsFolder("wiretap2.txt").data(), GENERIC_WRITE, FILE_SHARE_READ,
                                 nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH,
                                 nullptr));
}

void StopRunTimeReports() {
    reportFile.reset();
}

void Report(ReportKind kind, const char* szText) {
    char text[reportSize];
    std::snprintf(text, sizeof text, "%s: %s", KindText(kind), szText ? szText : "");
    WriteLine(text);
    LogText(text);
}

bool Ensure(bool condition, const char* szText, const char* szFile, unsigned nLine) {
    if (condition)
        return true;
    char text[reportSize];
    std::snprintf(text, sizeof text, "%s, file %s, line %u", szText, BaseName(szFile), nLine);
    Report(ReportKind::Assertion, text);
    return false;
}
