#include "SEHException.h"

#include "exceptiontext.h"
#include "faultguard.h"
#include "runtime.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr size_t printSize = 1024; // characters of one piece of the report, with the NUL

constexpr const char* weekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};
constexpr const char* months[] = {"January", "February", "March",     "April",   "May",      "June",
                                  "July",    "August",   "September", "October", "November", "December"};

// The host program's path with its last three characters replaced: an extension of another length leaves a
// name of its own.
std::string ReportPath() {
    constexpr char extension[] = "log";
    constexpr size_t extensionLength = sizeof extension - 1;
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    path[MAX_PATH - 1] = '\0';
    const size_t length = std::strlen(path);
    if (length < extensionLength)
        return {};
    std::memcpy(path + length - extensionLength, extension, extensionLength);
    return path;
}

ULONG_PTR InstructionPointer(const CONTEXT& context) {
#ifdef _WIN64
    return context.Rip;
#else
    return context.Eip;
#endif
}

std::string ModuleAt(ULONG_PTR address) {
    MEMORY_BASIC_INFORMATION memory = {};
    if (!VirtualQuery(reinterpret_cast<const void*>(address), &memory, sizeof memory) ||
        !memory.AllocationBase)
        return "unknown";
    char path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(static_cast<HMODULE>(memory.AllocationBase), path, MAX_PATH);
    if (!length || length >= MAX_PATH)
        return "unknown";
    const char* slash = std::strrchr(path, '\\');
    return slash ? slash + 1 : path;
}

// In the system's 8-bit code page.
std::string StandardTimeName() {
    TIME_ZONE_INFORMATION zone = {};
    GetTimeZoneInformation(&zone);
    constexpr int most = 4 * static_cast<int>(std::size(zone.StandardName)); // bytes, in any code page
    char name[most] = {};
    WideCharToMultiByte(CP_ACP, 0, zone.StandardName, -1, name, most - 1, nullptr, nullptr);
    return name;
}

} // namespace

void FaultState::Take(const EXCEPTION_RECORD& theRecord, const CONTEXT& theContext) {
    record = theRecord;
    record.ExceptionRecord = nullptr; // the exceptions under it live no longer than their handler
    context = theContext;
}

CSEHException::CSEHException(unsigned nCode, EXCEPTION_POINTERS* pExcPointers)
    : m_nSeCode(nCode), m_pExcPointers(nullptr) {
    if (!pExcPointers || !pExcPointers->ExceptionRecord || !pExcPointers->ContextRecord)
        return;
    state_ = std::make_shared<FaultState>();
    state_->Take(*pExcPointers->ExceptionRecord, *pExcPointers->ContextRecord);
    m_pExcPointers = &state_->pointers;
}

CSEHException::CSEHException(const CSEHException& other)
    : m_nSeCode(other.m_nSeCode), m_pExcPointers(other.m_pExcPointers), state_(other.state_) {}

void CSEHException::Report(const char* szCatcher) {
    try {
        CallTranslated([&] {
            if (OpenReport())
                WriteReport(szCatcher);
        });
    } catch (...) {
        m_hFile.reset();
    }
}

bool CSEHException::OpenReport() {
    if (!Ensure(!m_hFile, "m_hFile == INVALID_HANDLE_VALUE"))
        return false;
    m_hFile.reset(CreateFileA(ReportPath().c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH, nullptr));
    if (!m_hFile)
        return false;
    SetFilePointer(m_hFile.get(), 0, nullptr, FILE_END);
    return true;
}

void CSEHException::WriteReport(const char* szCatcher) {
    const FaultState nothingKnown;
    const EXCEPTION_POINTERS& known = m_pExcPointers ? *m_pExcPointers : nothingKnown.pointers;
    Print("\r\n\r\n------ ");
    PrintDate();
    Print(" ------\r\n");
    Print("%s", ExceptionText(m_nSeCode));
    Print(" occured in "); // so spelled: readers of reports search for it
    PrintPlace(*known.ContextRecord);
    PrintAccess(*known.ExceptionRecord);
    Print("Caught by exception handler in %s.\r\n", szCatcher ? szCatcher : "");
}

void CSEHException::PrintDate() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    Print("%s, %s %d, %d at %d:%02d:%02d %s", weekdays[now.wDayOfWeek], months[now.wMonth - 1], now.wDay,
          now.wYear, now.wHour, now.wMinute, now.wSecond, StandardTimeName().c_str());
}

void CSEHException::PrintPlace(const CONTEXT& context) {
    const ULONG_PTR address = InstructionPointer(context);
    Print("%s", ModuleAt(address).c_str());
    Print(" at %04x:%08llx.\r\n", static_cast<unsigned>(context.SegCs),
          static_cast<unsigned long long>(address));
}

void CSEHException::PrintAccess(const EXCEPTION_RECORD& record) {
    if (m_nSeCode != EXCEPTION_ACCESS_VIOLATION || record.NumberParameters <= 1)
        return;
    Print("The access violation was a %s violation at %#08llx.\r\n",
          record.ExceptionInformation[0] ? "write" : "read",
          static_cast<unsigned long long>(record.ExceptionInformation[1]));
}

void CSEHException::Print(const char* szFormat, ...) {
    if (!Ensure(static_cast<bool>(m_hFile), "m_hFile != INVALID_HANDLE_VALUE"))
        return;
    char text[printSize] = {};
    va_list arguments;
    va_start(arguments, szFormat);
    std::vsnprintf(text, sizeof text, szFormat, arguments);
    va_end(arguments);
    DWORD written = 0;
    WriteFile(m_hFile.get(), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

void SeTranslator(unsigned nCode, EXCEPTION_POINTERS* pExcPointers) {
    const CSEHException exception(nCode, pExcPointers);
    throw CSEHException(exception);
}
