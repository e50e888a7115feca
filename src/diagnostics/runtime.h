// Reports of the module about itself: warnings and failed assertions. They go to "wiretap2.txt" in the
// Windows folder and to the log. Reporting never stops the program. Any thread may report.
#pragma once

enum class ReportKind { Warning, Assertion };

// Makes the file anew and keeps it open, for others to read. Module attach and detach only.
void StartRunTimeReports();
void StopRunTimeReports();

void Report(ReportKind kind, const char* szText);

// Reports a condition that doesn't hold, with the place that asked. Returns the condition: what to do without
// it is the caller's business.
bool Ensure(bool condition, const char* szText, const char* szFile = __builtin_FILE(),
            unsigned nLine = __builtin_LINE());
