// A user at a dialog: reads what it shows, types, chooses, presses; all by messages.
#pragma once

#include "core/mydialog.h"
#include "modem/connectiondialogs.h"
#include "support/every.h"
#include "support/host.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dialogs {

using Texts = std::vector<std::string>;
using User = std::function<void(HWND hDlg)>;

struct WindowCloser {
    using pointer = HWND;
    void operator()(HWND hWnd) const { DestroyWindow(hWnd); }
};
using Window = std::unique_ptr<HWND, WindowCloser>;

inline Window MakeOwner() {
    return Window(CreateWindowExA(0, "Static", "Owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                                  nullptr, nullptr, GetModuleHandleA(nullptr), nullptr));
}

inline LRESULT Tell(HWND hDlg, int item, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendDlgItemMessageA(hDlg, item, message, wParam, lParam);
}

inline std::string TextOf(HWND hWnd) {
    char text[512] = {};
    GetWindowTextA(hWnd, text, sizeof text);
    return text;
}

inline std::string ItemText(HWND hDlg, int item) {
    return TextOf(GetDlgItem(hDlg, item));
}

inline void Type(HWND hDlg, int item, const std::string& text) {
    SetDlgItemTextA(hDlg, item, text.c_str());
}

inline std::string Row(HWND hDlg, int item, WPARAM row) {
    char text[512] = {};
    return Tell(hDlg, item, CB_GETLBTEXT, row, reinterpret_cast<LPARAM>(text)) == CB_ERR ? "" : text;
}

inline Texts Rows(HWND hDlg, int item) {
    Texts rows;
    const auto count = static_cast<WPARAM>(Tell(hDlg, item, CB_GETCOUNT));
    for (WPARAM row = 0; row < count; ++row)
        rows.push_back(Row(hDlg, item, row));
    return rows;
}

inline int Selected(HWND hDlg, int item) {
    return static_cast<int>(Tell(hDlg, item, CB_GETCURSEL));
}

inline std::string SelectedRow(HWND hDlg, int item) {
    return Row(hDlg, item, static_cast<WPARAM>(Selected(hDlg, item)));
}

inline void Notify(HWND hDlg, int item, int notification) {
    SendMessageA(hDlg, WM_COMMAND, MAKEWPARAM(item, notification),
                 reinterpret_cast<LPARAM>(GetDlgItem(hDlg, item)));
}

inline void Press(HWND hDlg, int item) {
    Tell(hDlg, item, BM_CLICK);
}

// As a click on the row.
inline void Choose(HWND hDlg, int item, int row) {
    Tell(hDlg, item, CB_SETCURSEL, static_cast<WPARAM>(row));
    Notify(hDlg, item, CBN_SELENDOK);
}

inline bool IsEnabled(HWND hDlg, int item) {
    return IsWindowEnabled(GetDlgItem(hDlg, item));
}

inline bool IsChecked(HWND hDlg, int item) {
    return IsDlgButtonChecked(hDlg, item) == BST_CHECKED;
}

// Where the tab key leads, from an item on until it comes back or nowhere.
inline std::vector<int> TabWalk(HWND hDlg, int first) {
    constexpr size_t limit = 50;
    std::vector<int> items;
    HWND item = GetDlgItem(hDlg, first);
    do {
        items.push_back(GetDlgCtrlID(item));
        item = GetNextDlgTabItem(hDlg, item, FALSE);
    } while (item && GetDlgCtrlID(item) != first && items.size() < limit);
    return items;
}

struct DialogSearch {
    int item;
    HWND found;
};

inline BOOL CALLBACK KeepDialog(HWND hWnd, LPARAM parameter) {
    auto& search = *reinterpret_cast<DialogSearch*>(parameter);
    if (IsWindowVisible(hWnd) && GetDlgItem(hWnd, search.item))
        search.found = hWnd;
    return !search.found;
}

// The open dialog of this thread that has the item.
inline HWND OpenDialogWith(int item) {
    DialogSearch search = {item, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), KeepDialog, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

// Acts once in the dialog that has the item, when it opens.
inline std::unique_ptr<host::Every> WhenOpen(int item, const User& user) {
    return host::When([item] { return OpenDialogWith(item) != nullptr; },
                      [item, user] { user(OpenDialogWith(item)); });
}

inline constexpr INT_PTR stayed = -1000;

// Shows the dialog, lets the user act once, and gives up on a dialog that stays.
inline INT_PTR Play(CMyDialog& dialog, const User& user) {
    constexpr DWORD limitMilliseconds = 20000;
    bool acted = false;
    host::Clock sinceActed;
    const host::Every turns(5, [&] {
        const HWND hDlg = dialog.Window();
        if (!hDlg || !IsWindowVisible(hDlg))
            return;
        if (!acted) {
            acted = true;
            sinceActed = host::Clock();
            user(hDlg);
        } else if (sinceActed.Gone() > limitMilliseconds) {
            EndDialog(hDlg, stayed);
        }
    });
    const INT_PTR result = dialog.DoModal();
    EXPECT_TRUE(acted);
    EXPECT_NE(result, stayed);
    return result;
}

// For tests of one dialog: its user acts and then leaves it.
class DialogUser {
  protected:
    explicit DialogUser(INT_PTR cancelled = IDCANCEL) : cancelled_(cancelled) {}
    ~DialogUser() = default;

    // Gives the dialog's result.
    virtual INT_PTR Show(const User& user) = 0;

    void Look(const User& user) { Leave(user, IDCANCEL, cancelled_); }
    void Confirm(const User& user) { Leave(user, IDOK, IDOK); }

  private:
    void Leave(const User& user, int button, INT_PTR expected) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      user(hDlg);
                      Press(hDlg, button);
                  }),
                  expected);
    }

    INT_PTR cancelled_;
};

} // namespace dialogs
