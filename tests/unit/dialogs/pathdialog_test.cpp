// What the dialogs for a file to send and for a folder to receive into have in common.
#include "dialogtest.h"

#include "transfer/filedialogs.h"
#include "transfer/receivefiledialog.h"
#include "transfer/sendfiledialog.h"

using namespace dialogs;

namespace {

struct Kind {
    const char* name;
    const char* title;
    int pathItem;
    std::unique_ptr<CPathDialog, void (*)(CPathDialog*)> (*make)(HWND owner, int protocol, const char* path);
};

template <class Dialog>
std::unique_ptr<CPathDialog, void (*)(CPathDialog*)> Make(HWND owner, int protocol, const char* path) {
    return {new Dialog(owner, protocol, path), [](CPathDialog* made) { delete static_cast<Dialog*>(made); }};
}

const Kind kinds[] = {
    {"SendFile", "Send File", SendFile_Path, Make<CSendFileDialog>},
    {"ReceiveFile", "Receive file", ReceiveFile_Folder, Make<CReceiveFileDialog>},
};

constexpr int given = 5;
constexpr const char* givenPath = "C:\\first.txt";

class PathDialog : public DialogTest, public testing::WithParamInterface<Kind> {
  protected:
    INT_PTR Show(const User& user) { return Play(*dialog, user); }
    void Confirm(const User& user) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      user(hDlg);
                      Press(hDlg, IDOK);
                  }),
                  1);
    }
    std::string Path() const { return dialog->szPath.data(); }

    const int item = GetParam().pathItem;
    const std::unique_ptr<CPathDialog, void (*)(CPathDialog*)> dialog =
        GetParam().make(owner.get(), given, givenPath);
};

const Texts protocols = {"XModem Checksum", "XModem CRC", "XModem 1K", "YModem",
                         "YModem-G",        "ZModem",     "Kermit"};

TEST_P(PathDialog, ShowsWhatItWasGiven) {
    Confirm([&](HWND hDlg) {
        EXPECT_EQ(TextOf(hDlg), GetParam().title);
        EXPECT_EQ(ItemText(hDlg, item), givenPath);
        EXPECT_EQ(Rows(hDlg, FileDialog_Protocol), protocols);
        EXPECT_EQ(SelectedRow(hDlg, FileDialog_Protocol), "ZModem");
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, item));
    });
    EXPECT_EQ(Path(), givenPath);
    EXPECT_EQ(dialog->nProtocol, given);
}

TEST_P(PathDialog, PlaceInTheListIsTheProtocol) {
    for (int protocol = 0; protocol < 7; ++protocol) {
        dialog->nProtocol = protocol;
        const int next = (protocol + 1) % 7;
        Confirm([&](HWND hDlg) {
            EXPECT_EQ(Selected(hDlg, FileDialog_Protocol), protocol);
            Choose(hDlg, FileDialog_Protocol, next);
        });
        EXPECT_EQ(dialog->nProtocol, next);
    }
}

TEST_P(PathDialog, ProtocolWithoutARowStaysUnlessOneIsChosen) {
    for (const int protocol : {7, -1, 99}) {
        dialog->nProtocol = protocol;
        Confirm([](HWND hDlg) { EXPECT_EQ(Selected(hDlg, FileDialog_Protocol), -1); });
        EXPECT_EQ(dialog->nProtocol, protocol);
    }
    Confirm([](HWND hDlg) { Choose(hDlg, FileDialog_Protocol, 0); });
    EXPECT_EQ(dialog->nProtocol, 0);
}

TEST_P(PathDialog, TypedPathIsRead) {
    Confirm([&](HWND hDlg) { Type(hDlg, item, "R&D %s%n.txt"); });
    EXPECT_EQ(Path(), "R&D %s%n.txt");
}

TEST_P(PathDialog, LongPathsAreCut) {
    const std::string most(259, 'p');
    const std::string more(400, 'p');
    Confirm([&](HWND hDlg) {
        EXPECT_EQ(Tell(hDlg, item, EM_GETLIMITTEXT), 259);
        Type(hDlg, item, more);
    });
    EXPECT_EQ(Path(), most);
    EXPECT_EQ(GetParam().make(nullptr, 0, more.c_str())->szPath.data(), most);
    EXPECT_STREQ(GetParam().make(nullptr, 0, nullptr)->szPath.data(), "");
}

TEST_P(PathDialog, CancelGivesNothing) {
    const std::function<void(HWND)> ways[] = {
        [](HWND hDlg) { Press(hDlg, IDCANCEL); },
        [](HWND hDlg) { PostMessageA(hDlg, WM_CLOSE, 0, 0); },
        [&](HWND hDlg) { PostMessageA(GetDlgItem(hDlg, item), WM_KEYDOWN, VK_ESCAPE, 1); },
    };
    for (const auto& way : ways) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      Type(hDlg, item, "other");
                      Choose(hDlg, FileDialog_Protocol, 1);
                      way(hDlg);
                  }),
                  0);
        EXPECT_EQ(Path(), givenPath);
        EXPECT_EQ(dialog->nProtocol, given);
    }
}

TEST_P(PathDialog, EnterConfirms) {
    EXPECT_EQ(Show([](HWND hDlg) {
                  PostMessageA(GetDlgItem(hDlg, FileDialog_Protocol), WM_KEYDOWN, VK_RETURN, 1);
              }),
              1);
}

INSTANTIATE_TEST_SUITE_P(All, PathDialog, testing::ValuesIn(kinds),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
