// A user at one of the system's own dialogs, which opens on this thread.
#pragma once

#include "support/every.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace host {

struct TitleSearch {
    std::string title;
    HWND other;
    HWND found;
};

inline BOOL CALLBACK KeepTitled(HWND hWnd, LPARAM parameter) {
    auto& search = *reinterpret_cast<TitleSearch*>(parameter);
    char title[256] = {};
    char kind[32] = {};
    GetWindowTextA(hWnd, title, sizeof title);
    GetClassNameA(hWnd, kind, sizeof kind);
    if (hWnd != search.other && IsWindowVisible(hWnd) && search.title == title &&
        std::string(kind) == "#32770")
        search.found = hWnd;
    return !search.found;
}

// The visible dialog of this title, other than the one that may have the same.
inline HWND DialogTitled(const std::string& title, HWND other = nullptr) {
    TitleSearch search = {title, other, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), KeepTitled, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

// Acts once in the dialog when it opens. One that stays is cancelled, which fails the test; so does one that
// never opens.
class SystemDialogUser {
  public:
    SystemDialogUser(std::function<HWND()> find, std::function<void(HWND hDlg)> act)
        : find_(std::move(find)), act_(std::move(act)), turns_(20, [this] { Turn(); }) {}
    ~SystemDialogUser() { EXPECT_TRUE(acted_) << "no dialog opened"; }
    SystemDialogUser(const SystemDialogUser&) = delete;
    SystemDialogUser& operator=(const SystemDialogUser&) = delete;

  private:
    static constexpr DWORD limitMilliseconds = 30000;

    void Turn() {
        const HWND hDlg = find_();
        if (!hDlg)
            return;
        if (!acted_) {
            acted_ = true;
            sinceActed_ = Clock();
            act_(hDlg);
        } else if (sinceActed_.Gone() > limitMilliseconds) {
            ADD_FAILURE() << "the dialog stays";
            PostMessageA(hDlg, WM_COMMAND, IDCANCEL, 0);
            sinceActed_ = Clock();
        }
    }

    std::function<HWND()> find_;
    std::function<void(HWND hDlg)> act_;
    bool acted_ = false;
    Clock sinceActed_;
    Every turns_;
};

// The name of a file in the system's dialog, as it is typed; then the button.
inline void TypeFileName(HWND hDlg, const std::string& name) {
    constexpr int listOfNames = 0x47C;
    constexpr int plainName = 0x480;
    const int item = GetDlgItem(hDlg, listOfNames) ? listOfNames : plainName;
    EXPECT_TRUE(SetDlgItemTextA(hDlg, item, name.c_str()));
    PostMessageA(hDlg, WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(GetDlgItem(hDlg, IDOK)));
}

inline void PressCancel(HWND hDlg) {
    PostMessageA(hDlg, WM_COMMAND, IDCANCEL, reinterpret_cast<LPARAM>(GetDlgItem(hDlg, IDCANCEL)));
}

} // namespace host
