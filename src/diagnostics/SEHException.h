// CSEHException: a processor or system exception as a C++ exception, and its report in a text file beside the
// host program ("host.exe" reports into "host.log").
//
// faultguard.h makes one out of a fault. One object reports once; two threads that report at the same time
// lose one of the reports, since the file is not shared.
#pragma once

#include "core/handle.h"

#include <memory>

// What the system tells about a fault. Never moved: the pointers point into it.
struct FaultState {
    EXCEPTION_RECORD record = {};
    CONTEXT context = {};
    EXCEPTION_POINTERS pointers = {&record, &context};

    FaultState() = default;
    FaultState(const FaultState&) = delete;
    FaultState& operator=(const FaultState&) = delete;

    void Take(const EXCEPTION_RECORD& theRecord, const CONTEXT& theContext);
};

class CSEHException {
  public:
    // Copies what the pointers point at; they may be null.
    CSEHException(unsigned nCode, EXCEPTION_POINTERS* pExcPointers);
    // A copy shares the state of the fault and has no report file yet.
    CSEHException(const CSEHException& other);
    CSEHException& operator=(const CSEHException&) = delete;
    ~CSEHException() = default;

    unsigned GetSeCode() const { return m_nSeCode; }
    EXCEPTION_POINTERS* GetExcPointers() const { return m_pExcPointers; }

    // szCatcher: the function that caught the exception. Never throws; what can't be written is lost. The
    // file stays open for as long as the object lives.
    void Report(const char* szCatcher);

  private:
    bool OpenReport();
    void WriteReport(const char* szCatcher);
    void Print(const char* szFormat, ...) __attribute__((format(gnu_printf, 2, 3)));
    void PrintDate();
    void PrintPlace(const CONTEXT& context);
    void PrintAccess(const EXCEPTION_RECORD& record);

    unsigned m_nSeCode;
    EXCEPTION_POINTERS* m_pExcPointers; // into state_, or null
    FileHandle m_hFile;
    std::shared_ptr<FaultState> state_;
};

static_assert(sizeof(FileHandle) == sizeof(HANDLE));

// Throws the exception as a CSEHException.
[[noreturn]] void SeTranslator(unsigned nCode, EXCEPTION_POINTERS* pExcPointers);
