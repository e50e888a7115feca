// What stands in place of the system's dialogs for a file, and keeps what they were asked with. A program has
// in one of its sources
//
//     using host::DoubleGetOpenFileNameA;
//     extern "C" {
//     TARN_IMPORT_DOUBLE(GetOpenFileNameA, 4)
//     }
//
// and the same for GetSaveFileNameA, if it saves.
#pragma once

#include "support/importdouble.h"

#include <commdlg.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace host {

struct FileQuestion {
    bool isSave;
    HWND owner;
    HINSTANCE module;
    std::string filter; // with its NULs
    std::string name;
    DWORD nameSize;
    std::string title;
    std::string extension;
    DWORD flags;
    bool hasMore; // than the fields above
};

using FileAnswer = std::function<bool(OPENFILENAMEA& choice)>;

// The system's own dialogs are shown while there is no answer.
struct FileQuestions {
    std::vector<FileQuestion> asked;
    FileAnswer answer;
};
inline FileQuestions fileQuestions;

// Texts up to an empty one.
inline std::string WithNuls(const char* filter) {
    const char* end = filter;
    while (*end)
        end += std::strlen(end) + 1;
    return {filter, end};
}

inline BOOL AskForFile(bool isSave, OPENFILENAMEA& choice) {
    EXPECT_EQ(choice.lStructSize, sizeof choice);
    fileQuestions.asked.push_back({isSave, choice.hwndOwner, choice.hInstance, WithNuls(choice.lpstrFilter),
                                   choice.lpstrFile, choice.nMaxFile, choice.lpstrTitle,
                                   choice.lpstrDefExt ? choice.lpstrDefExt : "", choice.Flags,
                                   choice.lpstrInitialDir || choice.lpfnHook || choice.lpTemplateName});
    if (const FileAnswer answer = fileQuestions.answer)
        return answer(choice);
    const char* function = isSave ? "GetSaveFileNameA" : "GetOpenFileNameA";
    return Platform<decltype(&::GetOpenFileNameA)>("comdlg32.dll", function)(&choice);
}

inline BOOL WINAPI DoubleGetOpenFileNameA(OPENFILENAMEA* choice) {
    return AskForFile(false, *choice);
}

inline BOOL WINAPI DoubleGetSaveFileNameA(OPENFILENAMEA* choice) {
    return AskForFile(true, *choice);
}

inline FileAnswer ChoosesFile(const std::string& name) {
    return [name](OPENFILENAMEA& choice) {
        EXPECT_LT(name.size(), choice.nMaxFile);
        std::strcpy(choice.lpstrFile, name.c_str());
        return true;
    };
}

// What a user has typed before Cancel is of no account.
inline bool CancelsFile(OPENFILENAMEA& choice) {
    std::strcpy(choice.lpstrFile, "C:\\typed");
    return false;
}

} // namespace host
