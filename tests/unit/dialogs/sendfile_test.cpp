// The dialog that asks for a file to send: its browsing. The rest is in pathdialog_test.cpp.
#include "dialogtest.h"

#include "core/comobject.h"
#include "support/filequestion.h"
#include "support/systemdialog.h"
#include "transfer/filedialogs.h"
#include "transfer/sendfiledialog.h"

using namespace dialogs;

namespace {

using host::DoubleGetOpenFileNameA;
host::FileQuestions& browse = host::fileQuestions;

} // namespace

extern "C" {
TARN_IMPORT_DOUBLE(GetOpenFileNameA, 4)
}

namespace {

class SendFile : public DialogTest {
  protected:
    SendFile() { browse = {}; }
    ~SendFile() override { browse = {}; }

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

    CSendFileDialog dialog{owner.get(), 5, "C:\\first.txt"};
};

TEST_F(SendFile, BrowseAsksTheSystem) {
    browse.answer = host::CancelsFile;
    Look([](HWND hDlg) {
        Type(hDlg, SendFile_Path, "C:\\typed.txt");
        Press(hDlg, FileDialog_Browse);
        ASSERT_EQ(browse.asked.size(), 1u);
        const host::FileQuestion& asked = browse.asked.front();
        EXPECT_EQ(asked.owner, hDlg);
        EXPECT_EQ(asked.module, ThisModule());
        EXPECT_EQ(asked.filter, std::string("All Files (*.*)\0*.*\0", 20));
        EXPECT_EQ(asked.name, "C:\\typed.txt");
        EXPECT_EQ(asked.nameSize, 260u);
        EXPECT_EQ(asked.title, "Send File");
        EXPECT_EQ(asked.flags, 0x81000u);
        EXPECT_EQ(asked.extension, "");
        EXPECT_FALSE(asked.hasMore);
    });
}

TEST_F(SendFile, BrowsedFileIsShownAndTheFocusGoesToIt) {
    browse.answer = host::ChoosesFile("C:\\chosen.txt");
    Confirm([](HWND hDlg) {
        SetFocus(GetDlgItem(hDlg, FileDialog_Browse));
        Press(hDlg, FileDialog_Browse);
        EXPECT_EQ(ItemText(hDlg, SendFile_Path), "C:\\chosen.txt");
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, SendFile_Path));
    });
    EXPECT_EQ(Path(), "C:\\chosen.txt");
}

TEST_F(SendFile, CancelledBrowsingLeavesThePathAndMovesTheFocus) {
    browse.answer = host::CancelsFile;
    Confirm([](HWND hDlg) {
        SetFocus(GetDlgItem(hDlg, FileDialog_Browse));
        Press(hDlg, FileDialog_Browse);
        EXPECT_EQ(ItemText(hDlg, SendFile_Path), "C:\\first.txt");
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, SendFile_Path));
    });
    EXPECT_EQ(Path(), "C:\\first.txt");
}

TEST_F(SendFile, FocusOfTheButtonGoesToThePath) {
    Look([](HWND hDlg) {
        SetFocus(GetDlgItem(hDlg, FileDialog_Protocol));
        Notify(hDlg, FileDialog_Browse, 6);
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, SendFile_Path));
        EXPECT_EQ(browse.asked.size(), 0u);
    });
}

TEST_F(SendFile, KeyReachesTheButton) {
    Look([](HWND hDlg) {
        SendMessageA(hDlg, WM_NEXTDLGCTL, 0, FALSE);
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, FileDialog_Browse));
    });
}

TEST_F(SendFile, OwnerMayGoWhileTheSystemAsks) {
    browse.answer = [this](OPENFILENAMEA& choice) {
        owner.reset();
        std::strcpy(choice.lpstrFile, "C:\\chosen.txt");
        return true;
    };
    EXPECT_NE(Show([](HWND hDlg) { Press(hDlg, FileDialog_Browse); }), 1);
    EXPECT_EQ(browse.asked.size(), 1u);
}

TEST_F(SendFile, UserBrowses) {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    Confirm([&](HWND hDlg) {
        Type(hDlg, SendFile_Path, "");
        const host::SystemDialogUser user([=] { return host::DialogTitled("Send File", hDlg); },
                                          [&](HWND hSystem) { host::TypeFileName(hSystem, program); });
        Press(hDlg, FileDialog_Browse);
        EXPECT_EQ(ItemText(hDlg, SendFile_Path), program);
    });
    EXPECT_EQ(Path(), program);
}

TEST_F(SendFile, UserCancelsBrowsing) {
    Confirm([&](HWND hDlg) {
        const host::SystemDialogUser user([=] { return host::DialogTitled("Send File", hDlg); },
                                          host::PressCancel);
        Press(hDlg, FileDialog_Browse);
    });
    EXPECT_EQ(Path(), "C:\\first.txt");
}

} // namespace
