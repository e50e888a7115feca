// The page that switches logs on, shows and empties them.
#include "troubleshootuser.h"

#include "core/handle.h"

using namespace troubleshooter;

namespace {

class TroubleShootLoggingPage : public testing::Test {
  protected:
    // The machine's own files.
    void RemoveLogs() {
        for (const char* name : {"WireTap.txt", "CommTerminal.txt"})
            DeleteFileA(WindowsFile(name).c_str());
    }
    TroubleShootLoggingPage() { RemoveLogs(); }
    ~TroubleShootLoggingPage() override { RemoveLogs(); }

    Machine machine;
    dialogs::Window owner = dialogs::MakeOwner();
};

TEST_F(TroubleShootLoggingPage, TakesAndGivesItsMarks) {
    for (const LoggingMarks marks : {LoggingMarks{false, false}, LoggingMarks{true, false},
                                     LoggingMarks{false, true}, LoggingMarks{true, true}}) {
        CTroubleshootLoggingDialog page(owner.get(), marks);
        ASSERT_TRUE(page.Create());
        EXPECT_EQ(dialogs::IsChecked(page.Window(), 282), marks.wireTap);
        EXPECT_EQ(dialogs::IsChecked(page.Window(), 285), marks.capture);
        Press(page.Window(), 282);
        EXPECT_EQ(page.Marks().wireTap, !marks.wireTap);
        EXPECT_EQ(page.Marks().capture, marks.capture);
        Press(page.Window(), 285);
        EXPECT_EQ(page.Marks().capture, !marks.capture);
    }
}

struct ButtonRow {
    int button;
    const char* action;
    const char* file;
    const char* title;
    const char* failure;
};

const ButtonRow buttonRows[] = {
    {283, "open ", "WireTap.txt", "View WireTap Log", "The WireTap log is currently empty."},
    {284, "remove ", "WireTap.txt", "Reset WireTap Log",
     "The WireTap log file could not be cleared.\r\nIt may be in use by another application."},
    {286, "open ", "CommTerminal.txt", "View Terminal Log", "The terminal log is currently empty."},
    {287, "remove ", "CommTerminal.txt", "Reset Terminal Log",
     "The terminal log file could not be cleared.\r\nIt may be in use by another application."},
};

TEST_F(TroubleShootLoggingPage, ButtonsActOnTheirFiles) {
    for (const ButtonRow& row : buttonRows) {
        SCOPED_TRACE(row.title);
        machine.logActions.clear();
        CTroubleshootLoggingDialog page(owner.get(), {}, machine.Sources().logFiles);
        ASSERT_TRUE(page.Create());
        Texts seen;
        const auto box = WhenBox(row.title, seen);
        Press(page.Window(), row.button);
        EXPECT_EQ(machine.logActions, Texts({row.action + WindowsFile(row.file)}));
        EXPECT_EQ(seen, Texts());
    }
}

TEST_F(TroubleShootLoggingPage, FailureIsReported) {
    machine.logActionsFail = true;
    for (const ButtonRow& row : buttonRows) {
        SCOPED_TRACE(row.title);
        CTroubleshootLoggingDialog page(owner.get(), {}, machine.Sources().logFiles);
        ASSERT_TRUE(page.Create());
        Texts seen;
        const auto box = WhenBox(row.title, seen);
        Press(page.Window(), row.button);
        EXPECT_EQ(seen, Texts({row.failure}));
    }
}

// The system's own actions

FileHandle MakeFile(const char* name, DWORD share) {
    return FileHandle(CreateFileA(WindowsFile(name).c_str(), GENERIC_WRITE, share, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

TEST_F(TroubleShootLoggingPage, MissingFileIsNoErrorOfReset) {
    const LogFileActions actions = SystemLogFileActions();
    EXPECT_TRUE(actions.remove(WindowsFile("WireTap.txt").c_str()));
    EXPECT_TRUE(actions.remove(WindowsFile("no folder\\WireTap.txt").c_str()));
}

TEST_F(TroubleShootLoggingPage, FileIsRemovedByReset) {
    ASSERT_TRUE(MakeFile("CommTerminal.txt", 0));
    CTroubleshootLoggingDialog page(owner.get(), {});
    ASSERT_TRUE(page.Create());
    Press(page.Window(), 287);
    EXPECT_EQ(GetFileAttributesA(WindowsFile("CommTerminal.txt").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(TroubleShootLoggingPage, FileInUseIsReportedByReset) {
    const FileHandle file = MakeFile("WireTap.txt", FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_TRUE(file);
    CTroubleshootLoggingDialog page(owner.get(), {});
    ASSERT_TRUE(page.Create());
    Texts seen;
    const auto box = WhenBox("Reset WireTap Log", seen);
    Press(page.Window(), 284);
    EXPECT_EQ(seen, Texts({buttonRows[1].failure}));
    EXPECT_NE(GetFileAttributesA(WindowsFile("WireTap.txt").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(TroubleShootLoggingPage, MissingFileIsReportedByView) {
    CTroubleshootLoggingDialog page(owner.get(), {});
    ASSERT_TRUE(page.Create());
    for (const ButtonRow& row : {buttonRows[0], buttonRows[2]}) {
        Texts seen;
        const auto box = WhenBox(row.title, seen);
        Press(page.Window(), row.button);
        EXPECT_EQ(seen, Texts({row.failure}));
    }
}

TEST_F(TroubleShootLoggingPage, OwnerMayGoWhileALogIsOpened) {
    LogFileActions actions;
    actions.open = [&](HWND, const char*) {
        owner.reset();
        return false;
    };
    CTroubleshootLoggingDialog page(owner.get(), {}, actions);
    ASSERT_TRUE(page.Create());
    Texts seen;
    const auto box = WhenBox("View WireTap Log", seen);
    Press(page.Window(), 283);
    EXPECT_EQ(page.Window(), nullptr);
    EXPECT_EQ(seen, Texts());
}

// The template

TEST_F(TroubleShootLoggingPage, HasItsTexts) {
    CTroubleshootLoggingDialog page(owner.get(), {});
    ASSERT_TRUE(page.Create());
    Texts found;
    for (HWND hItem = GetWindow(page.Window(), GW_CHILD); hItem; hItem = GetWindow(hItem, GW_HWNDNEXT))
        found.push_back(dialogs::TextOf(hItem));
    EXPECT_EQ(
        found,
        Texts({"Logging helps your software manufacturer determine the exact cause of the problem you are "
               "experiencing.",
               "Please the options below, please run a session where the problem occurs.  Afterwards, please "
               "send the log files, which will be located in your Windows directory, to your software "
               "manufacturer.",
               "Log communications activity to WireTap.txt", "View Log", "Reset Log",
               "Log terminal activity to CommTerminal.txt", "View Log", "Reset Log"}));
}

// Of wrapped texts the height counts, of the others the width beside the check mark or the button's edge.
TEST_F(TroubleShootLoggingPage, CutsNoText) {
    constexpr int besideText = 20;
    CTroubleshootLoggingDialog page(owner.get(), {});
    ASSERT_TRUE(page.Create());
    const HDC dc = GetDC(page.Window());
    SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(page.Window(), WM_GETFONT, 0, 0)));
    for (HWND hItem = GetWindow(page.Window(), GW_CHILD); hItem; hItem = GetWindow(hItem, GW_HWNDNEXT)) {
        const std::string text = dialogs::TextOf(hItem);
        const SIZE size = SizeOf(hItem);
        const bool isWrapped = size.cy > 30;
        RECT box = {0, 0, size.cx, 0};
        DrawTextA(dc, text.c_str(), -1, &box, DT_CALCRECT | (isWrapped ? DT_WORDBREAK : DT_SINGLELINE));
        EXPECT_LE(box.bottom, size.cy) << text;
        EXPECT_LE(box.right + (isWrapped ? 0 : besideText), size.cx) << text;
    }
    ReleaseDC(page.Window(), dc);
}

} // namespace
