// The log files as other programs see them, and the debugger output of this process.
#pragma once

#include "core/handle.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <string>

namespace logfiles {

inline std::string WindowsFolderFile(const char* name) {
    char folder[MAX_PATH] = {};
    GetWindowsDirectoryA(folder, MAX_PATH);
    return std::string(folder) + "\\" + name;
}

inline std::string WireTapPath() {
    return WindowsFolderFile("wiretap.txt");
}

// Shares everything, so that it also reads files that their writer keeps open.
inline std::string ReadWholeFile(const std::string& path) {
    const DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, shareAll, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    std::string content;
    if (!file)
        return content;
    char block[4096];
    DWORD count = 0;
    while (ReadFile(file.get(), block, sizeof block, &count, nullptr) && count)
        content.append(block, count);
    return content;
}

inline bool FileExists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// A thread of the module that is still writing its line keeps the file for a moment.
inline void RemoveLog() {
    for (const DWORD start = GetTickCount(); GetTickCount() - start < 5000; Sleep(1))
        if (DeleteFileA(WireTapPath().c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND)
            return;
    ADD_FAILURE() << "the log can't be removed";
}

// Every time stamp becomes "<time> ".
inline std::string Untimed(const std::string& text) {
    static const std::regex stamp(R"(\d\d:\d\d:\d\d\.\d\d\d )");
    return std::regex_replace(text, stamp, "<time> ");
}

inline constexpr size_t StampLength = 13; // "12:34:56.789 "

// What stands in the log after the stamp of a banner without a version, time stamps replaced.
inline std::string Messages() {
    const std::string content = ReadWholeFile(WireTapPath());
    return content.size() < StampLength ? "" : Untimed(content.substr(StampLength));
}

// Collects what this process sends to the debugger; onText runs inside the sender's call.
class DebuggerOutput {
  public:
    explicit DebuggerOutput(std::function<void()> onText = {}) : onText_(std::move(onText)) {
        current_ = this;
        registration_ = AddVectoredExceptionHandler(1, OnException);
    }
    ~DebuggerOutput() {
        RemoveVectoredExceptionHandler(registration_);
        current_ = nullptr;
    }
    DebuggerOutput(const DebuggerOutput&) = delete;
    DebuggerOutput& operator=(const DebuggerOutput&) = delete;

    const std::string& Text() const { return text_; }

  private:
    static LONG CALLBACK OnException(EXCEPTION_POINTERS* exception) {
        constexpr DWORD debuggerPrint = 0x40010006; // parameters: length with the NUL, text
        const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
        if (record.ExceptionCode != debuggerPrint || !current_)
            return EXCEPTION_CONTINUE_SEARCH;
        current_->text_.append(reinterpret_cast<const char*>(record.ExceptionInformation[1]),
                               record.ExceptionInformation[0] - 1);
        if (current_->onText_)
            current_->onText_();
        return EXCEPTION_CONTINUE_SEARCH;
    }

    inline static DebuggerOutput* current_ = nullptr;
    std::function<void()> onText_;
    std::string text_;
    void* registration_;
};

} // namespace logfiles
