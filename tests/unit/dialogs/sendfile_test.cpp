// The dialog that asks for a file to send.
#include "dialogtest.h"

#include "core/comobject.h"
#include "support/importdouble.h"
#include "support/systemdialog.h"
#include "transfer/filedialogs.h"
#include "transfer/sendfiledialog.h"

#include <commdlg.h>

using namespace dialogs;

namespace {

struct Question {
    HWND owner;
    HINSTANCE module;
    std::string filter; // with its NULs
    std::string name;
    DWORD nameSize;
    std::string title;
    DWORD flags;
    bool hasMore; // than the fields above
};

// Stands in place of the system's dialog while there is an answer.
struct Browse {
    std::vector<Question> asked;
    std::function<bool(OPENFILENAMEA& choice)> answer;
};
Browse browse;

std::string WithNuls(const char* filter) {
    const char* end = filter;
    while (*end)
        end += std::strlen(end) + 1;
    return {filter, end};
}

BOOL WINAPI DoubleGetOpenFileNameA(OPENFILENAMEA* choice) {
    EXPECT_EQ(choice->lStructSize, sizeof *choice);
    browse.asked.push_back({choice->hwndOwner, choice->hInstance, WithNuls(choice->lpstrFilter),
                            choice->lpstrFile, choice->nMaxFile, choice->lpstrTitle, choice->Flags,
                            choice->lpstrDefExt || choice->lpstrInitialDir || choice->lpfnHook});
    if (browse.answer)
        return browse.answer(*choice);
    return host::Platform<decltype(&::GetOpenFileNameA)>("comdlg32.dll", "GetOpenFileNameA")(choice);
}

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
    static void Chooses(const std::string& name) {
        browse.answer = [name](OPENFILENAMEA& choice) {
            std::strcpy(choice.lpstrFile, name.c_str());
            return true;
        };
    }
    std::string Path() const { return dialog.szPath.data(); }

    CSendFileDialog dialog{owner.get(), 5, "C:\\first.txt"};
};

const Texts protocols = {"XModem Checksum", "XModem CRC", "XModem 1K", "YModem",
                         "YModem-G",        "ZModem",     "Kermit"};

TEST_F(SendFile, ShowsWhatItWasGiven) {
    Look([](HWND hDlg) {
        EXPECT_EQ(TextOf(hDlg), "Send File");
        EXPECT_EQ(ItemText(hDlg, SendFile_Path), "C:\\first.txt");
        EXPECT_EQ(Rows(hDlg, FileDialog_Protocol), protocols);
        EXPECT_EQ(SelectedRow(hDlg, FileDialog_Protocol), "ZModem");
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, SendFile_Path));
    });
}

TEST_F(SendFile, ConfirmedAsItIsGivesTheSame) {
    Confirm([](HWND) {});
    EXPECT_EQ(Path(), "C:\\first.txt");
    EXPECT_EQ(dialog.nProtocol, 5);
}

TEST_F(SendFile, PlaceInTheListIsTheProtocol) {
    for (int protocol = 0; protocol < 7; ++protocol) {
        dialog.nProtocol = protocol;
        const int next = (protocol + 1) % 7;
        Confirm([&](HWND hDlg) {
            EXPECT_EQ(Selected(hDlg, FileDialog_Protocol), protocol);
            Choose(hDlg, FileDialog_Protocol, next);
        });
        EXPECT_EQ(dialog.nProtocol, next);
    }
}

TEST_F(SendFile, ProtocolWithoutARowStaysUnlessOneIsChosen) {
    for (const int protocol : {7, -1, 99}) {
        dialog.nProtocol = protocol;
        Confirm([](HWND hDlg) { EXPECT_EQ(Selected(hDlg, FileDialog_Protocol), -1); });
        EXPECT_EQ(dialog.nProtocol, protocol);
    }
    Confirm([](HWND hDlg) { Choose(hDlg, FileDialog_Protocol, 0); });
    EXPECT_EQ(dialog.nProtocol, 0);
}

TEST_F(SendFile, TypedPathIsRead) {
    Confirm([](HWND hDlg) { Type(hDlg, SendFile_Path, "R&D %s%n.txt"); });
    EXPECT_EQ(Path(), "R&D %s%n.txt");
}

TEST_F(SendFile, LongPathsAreCut) {
    const std::string most(259, 'p');
    Confirm([](HWND hDlg) {
        EXPECT_EQ(Tell(hDlg, SendFile_Path, EM_GETLIMITTEXT), 259);
        Type(hDlg, SendFile_Path, std::string(400, 'p'));
    });
    EXPECT_EQ(Path(), most);
    EXPECT_EQ(CSendFileDialog(nullptr, 0, std::string(400, 'p').c_str()).szPath.data(), most);
    EXPECT_STREQ(CSendFileDialog(nullptr, 0, nullptr).szPath.data(), "");
}

TEST_F(SendFile, CancelGivesNothing) {
    const std::function<void(HWND)> ways[] = {
        [](HWND hDlg) { Press(hDlg, IDCANCEL); },
        [](HWND hDlg) { PostMessageA(hDlg, WM_CLOSE, 0, 0); },
        [](HWND hDlg) { PostMessageA(GetDlgItem(hDlg, SendFile_Path), WM_KEYDOWN, VK_ESCAPE, 1); },
    };
    for (const auto& way : ways) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      Type(hDlg, SendFile_Path, "other");
                      Choose(hDlg, FileDialog_Protocol, 1);
                      way(hDlg);
                  }),
                  0);
        EXPECT_EQ(Path(), "C:\\first.txt");
        EXPECT_EQ(dialog.nProtocol, 5);
    }
}

TEST_F(SendFile, EnterSends) {
    EXPECT_EQ(Show([](HWND hDlg) {
                  PostMessageA(GetDlgItem(hDlg, FileDialog_Protocol), WM_KEYDOWN, VK_RETURN, 1);
              }),
              1);
}

TEST_F(SendFile, BrowseAsksTheSystem) {
    browse.answer = [](OPENFILENAMEA&) { return false; };
    Look([](HWND hDlg) {
        Type(hDlg, SendFile_Path, "C:\\typed.txt");
        Press(hDlg, FileDialog_Browse);
        ASSERT_EQ(browse.asked.size(), 1u);
        const Question& asked = browse.asked.front();
        EXPECT_EQ(asked.owner, hDlg);
        EXPECT_EQ(asked.module, ThisModule());
        EXPECT_EQ(asked.filter, std::string("All Files (*.*)\0*.*\0", 20));
        EXPECT_EQ(asked.name, "C:\\typed.txt");
        EXPECT_EQ(asked.nameSize, 260u);
        EXPECT_EQ(asked.title, "Send File");
        EXPECT_EQ(asked.flags, 0x81000u);
        EXPECT_FALSE(asked.hasMore);
    });
}

TEST_F(SendFile, BrowsedFileIsShownAndTheFocusGoesToIt) {
    Chooses("C:\\chosen.txt");
    Confirm([](HWND hDlg) {
        SetFocus(GetDlgItem(hDlg, FileDialog_Browse));
        Press(hDlg, FileDialog_Browse);
        EXPECT_EQ(ItemText(hDlg, SendFile_Path), "C:\\chosen.txt");
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, SendFile_Path));
    });
    EXPECT_EQ(Path(), "C:\\chosen.txt");
}

TEST_F(SendFile, CancelledBrowsingLeavesThePathAndMovesTheFocus) {
    browse.answer = [](OPENFILENAMEA&) { return false; };
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
