// The dialog that asks for a folder to receive into: its browsing. The rest is in pathdialog_test.cpp.
#include "dialogtest.h"

#include "core/comobject.h"
#include "support/importdouble.h"
#include "support/systemdialog.h"
#include "transfer/filedialogs.h"
#include "transfer/receivefiledialog.h"

#include <shlobj.h>

using namespace dialogs;

namespace {

struct Question {
    HWND owner;
    std::string title;
    UINT flags;
    bool hasMore; // than the fields above
};

// Stands in place of the shell's dialog while there is an answer.
struct Browse {
    std::vector<Question> asked;
    std::function<ITEMIDLIST*()> answer;
};
Browse browse;

ITEMIDLIST* WINAPI DoubleSHBrowseForFolderA(BROWSEINFOA* question) {
    browse.asked.push_back(
        {question->hwndOwner, question->lpszTitle, question->ulFlags, question->pidlRoot || question->lpfn});
    if (browse.answer)
        return browse.answer();
    return host::Platform<decltype(&::SHBrowseForFolderA)>("shell32.dll", "SHBrowseForFolderA")(question);
}

} // namespace

extern "C" {
TARN_IMPORT_DOUBLE(SHBrowseForFolderA, 4)
}

namespace {

std::string WindowsFolder() {
    char folder[MAX_PATH] = {};
    GetWindowsDirectoryA(folder, MAX_PATH);
    return folder;
}

ITEMIDLIST* ItemOf(const std::string& folder) {
    const std::wstring wide(folder.begin(), folder.end()); // ASCII
    ITEMIDLIST* item = nullptr;
    EXPECT_EQ(SHParseDisplayName(wide.c_str(), nullptr, &item, 0, nullptr), S_OK);
    return item;
}

class ReceiveFile : public DialogTest {
  protected:
    ReceiveFile() {
        CoInitialize(nullptr);
        browse = {};
    }
    ~ReceiveFile() override {
        browse = {};
        CoUninitialize();
    }

    INT_PTR Show(const User& user) { return Play(dialog, user); }
    void Look(const User& user) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      user(hDlg);
                      Press(hDlg, IDCANCEL);
                  }),
                  0);
    }
    void Confirm(const User& user) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      user(hDlg);
                      Press(hDlg, IDOK);
                  }),
                  1);
    }
    std::string Path() const { return dialog.szPath.data(); }

    CReceiveFileDialog dialog{owner.get(), 6, "C:\\first"};
};

TEST_F(ReceiveFile, BrowseAsksTheShell) {
    browse.answer = [] { return nullptr; };
    Look([](HWND hDlg) {
        Press(hDlg, FileDialog_Browse);
        ASSERT_EQ(browse.asked.size(), 1u);
        const Question& asked = browse.asked.front();
        EXPECT_EQ(asked.owner, hDlg);
        EXPECT_EQ(asked.title, "Receive Folder");
        EXPECT_EQ(asked.flags, 1u);
        EXPECT_FALSE(asked.hasMore);
    });
}

TEST_F(ReceiveFile, BrowsedFolderIsShown) {
    browse.answer = [] { return ItemOf(WindowsFolder()); };
    Confirm([](HWND hDlg) {
        Press(hDlg, FileDialog_Browse);
        EXPECT_EQ(ItemText(hDlg, ReceiveFile_Folder), WindowsFolder());
    });
    EXPECT_EQ(Path(), WindowsFolder());
}

// CSendFileDialog moves it to the path.
TEST_F(ReceiveFile, FocusStaysAfterBrowsing) {
    for (const bool chosen : {false, true}) {
        browse.answer = [=]() -> ITEMIDLIST* { return chosen ? ItemOf(WindowsFolder()) : nullptr; };
        Look([](HWND hDlg) {
            SetFocus(GetDlgItem(hDlg, FileDialog_Browse));
            Press(hDlg, FileDialog_Browse);
            EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, FileDialog_Browse));
            SetFocus(GetDlgItem(hDlg, FileDialog_Protocol));
            Notify(hDlg, FileDialog_Browse, 6);
            EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, FileDialog_Protocol));
        });
    }
}

TEST_F(ReceiveFile, CancelledBrowsingLeavesThePath) {
    browse.answer = [] { return nullptr; };
    Confirm([](HWND hDlg) {
        Type(hDlg, ReceiveFile_Folder, "D:\\typed");
        Press(hDlg, FileDialog_Browse);
        EXPECT_EQ(ItemText(hDlg, ReceiveFile_Folder), "D:\\typed");
    });
    EXPECT_EQ(Path(), "D:\\typed");
}

// The computer itself has none.
TEST_F(ReceiveFile, PlaceWithoutAPathLeavesThePath) {
    browse.answer = [] {
        ITEMIDLIST* item = nullptr;
        EXPECT_EQ(SHGetSpecialFolderLocation(nullptr, CSIDL_DRIVES, &item), S_OK);
        return item;
    };
    Confirm([](HWND hDlg) { Press(hDlg, FileDialog_Browse); });
    EXPECT_EQ(Path(), "C:\\first");
}

TEST_F(ReceiveFile, OwnerMayGoWhileTheShellAsks) {
    browse.answer = [this] {
        owner.reset();
        return ItemOf(WindowsFolder());
    };
    EXPECT_NE(Show([](HWND hDlg) { Press(hDlg, FileDialog_Browse); }), 1);
    EXPECT_EQ(browse.asked.size(), 1u);
}

// The shell's dialog shows the question's title in a text of its own.
HWND ShellDialog(HWND hDlg) {
    constexpr int tree = 0x3741;
    const HWND found = OpenDialogWith(tree);
    return found == hDlg ? nullptr : found;
}

TEST_F(ReceiveFile, UserBrowses) {
    const std::string folder = WindowsFolder();
    Confirm([&](HWND hDlg) {
        const host::SystemDialogUser user([=] { return ShellDialog(hDlg); },
                                          [&](HWND hShell) {
                                              SendMessageA(hShell, BFFM_SETSELECTIONA, TRUE,
                                                           reinterpret_cast<LPARAM>(folder.c_str()));
                                              PostMessageA(hShell, WM_COMMAND, IDOK, 0);
                                          });
        Press(hDlg, FileDialog_Browse);
        EXPECT_EQ(lstrcmpiA(ItemText(hDlg, ReceiveFile_Folder).c_str(), folder.c_str()), 0)
            << ItemText(hDlg, ReceiveFile_Folder);
    });
    EXPECT_EQ(lstrcmpiA(Path().c_str(), folder.c_str()), 0);
}

TEST_F(ReceiveFile, UserCancelsBrowsing) {
    Confirm([&](HWND hDlg) {
        const host::SystemDialogUser user([=] { return ShellDialog(hDlg); }, host::PressCancel);
        Press(hDlg, FileDialog_Browse);
    });
    EXPECT_EQ(Path(), "C:\\first");
}

} // namespace
