// The dialog beside a dial: its messages are served by a loop that knows nothing of dialogs.
#include "dialogtest.h"

#include "modem/dialdialog.h"

using namespace dialogs;

namespace {

class DialDialog : public DialogTest {
  protected:
    DialDialog() {
        dialog.Create();
        host::PumpUntil([&] { return GetFocus() == Button(); }, 1000);
    }

    HWND Button() const { return GetDlgItem(dialog.Window(), IDCANCEL); }

    bool Cancelled(int times = 1) {
        return host::PumpUntil([&] { return cancels >= times; }) && cancels == times;
    }

    // A key as the system delivers it.
    static void Key(HWND hWnd, WPARAM key, LPARAM flags = 0) {
        PostMessageA(hWnd, WM_KEYDOWN, key, 1 | flags);
        PostMessageA(hWnd, WM_KEYUP, key, 1 | static_cast<LPARAM>(0xC0000000));
    }

    // Everything that is waiting now was dealt with.
    static void Settle() {
        PostThreadMessageA(GetCurrentThreadId(), WM_APP, 0, 0);
        host::Pump(30);
    }

    int cancels = 0;
    CDialDialog dialog{owner.get(), [this] { ++cancels; }};
};

TEST_F(DialDialog, TellsThatItDials) {
    EXPECT_EQ(TextOf(dialog.Window()), "Dial");
    EXPECT_EQ(ItemText(dialog.Window(), 246), "Dialing...");
    EXPECT_TRUE(IsWindowVisible(dialog.Window()));
    EXPECT_EQ(cancels, 0);
}

TEST_F(DialDialog, FocusIsOnCancel) {
    EXPECT_EQ(GetFocus(), Button());
}

TEST_F(DialDialog, IsCancelledByTheMouse) {
    PostMessageA(Button(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    PostMessageA(Button(), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    EXPECT_TRUE(Cancelled());
}

TEST_F(DialDialog, IsCancelledByKeysAtTheButton) {
    int times = 0;
    for (const WPARAM key : {VK_ESCAPE, VK_RETURN, VK_SPACE}) {
        Key(Button(), key);
        EXPECT_TRUE(Cancelled(++times)) << key;
    }
}

TEST_F(DialDialog, IsCancelledByKeysAtTheDialogItself) {
    int times = 0;
    for (const WPARAM key : {VK_ESCAPE, VK_RETURN}) {
        Key(dialog.Window(), key);
        EXPECT_TRUE(Cancelled(++times)) << key;
    }
}

TEST_F(DialDialog, IsCancelledByItsCloseBox) {
    PostMessageA(dialog.Window(), WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_TRUE(Cancelled());
}

TEST_F(DialDialog, KeyThatStartedTheDialCancelsNothing) {
    constexpr LPARAM wasDown = 1 << 30;
    for (const HWND hWnd : {Button(), dialog.Window()}) {
        Key(hWnd, VK_RETURN, wasDown);
        Key(hWnd, VK_ESCAPE, wasDown);
        Key(hWnd, VK_SPACE, wasDown);
        Key(hWnd, 'A');
    }
    Settle();
    EXPECT_EQ(cancels, 0);
}

TEST_F(DialDialog, SpaceThatIsHeldCancelsOnce) {
    PostMessageA(Button(), WM_KEYDOWN, VK_SPACE, 1);
    PostMessageA(Button(), WM_KEYDOWN, VK_SPACE, 1 | 1 << 30);
    Key(Button(), VK_SPACE, 1 << 30);
    EXPECT_TRUE(Cancelled());
    Settle();
    EXPECT_EQ(cancels, 1);
}

TEST_F(DialDialog, OtherButtonsCancelNothing) {
    Notify(dialog.Window(), IDOK, BN_CLICKED);
    EXPECT_EQ(cancels, 0);
    EXPECT_NE(dialog.Window(), nullptr);
}

TEST_F(DialDialog, StaysUntilTheDialIsOver) {
    Press(dialog.Window(), IDCANCEL);
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(IsWindowVisible(dialog.Window()));
    Press(dialog.Window(), IDCANCEL);
    EXPECT_EQ(cancels, 2);
    dialog.Close();
    EXPECT_EQ(dialog.Window(), nullptr);
}

TEST_F(DialDialog, MayGoWhileItIsCancelled) {
    std::unique_ptr<CDialDialog> other;
    bool cancelled = false;
    other = std::make_unique<CDialDialog>(owner.get(), [&] {
        other.reset();
        cancelled = true;
    });
    ASSERT_TRUE(other->Create());
    const HWND hOther = other->Window();
    PostMessageA(GetDlgItem(hOther, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 1);
    EXPECT_TRUE(host::PumpUntil([&] { return cancelled; }));
    EXPECT_FALSE(IsWindow(hOther));
}

TEST_F(DialDialog, OwnerMayGoWhileItIsCancelled) {
    CDialDialog other(owner.get(), [&] { owner.reset(); });
    ASSERT_TRUE(other.Create());
    PostMessageA(GetDlgItem(other.Window(), IDCANCEL), WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_TRUE(host::PumpUntil([&] { return !owner; }));
    EXPECT_EQ(other.Window(), nullptr);
    EXPECT_EQ(dialog.Window(), nullptr);
}

TEST_F(DialDialog, WithoutAnyoneToTellCancelDoesNothing) {
    CDialDialog other(owner.get(), nullptr);
    ASSERT_TRUE(other.Create());
    Press(other.Window(), IDCANCEL);
    EXPECT_TRUE(doubles::reports.empty());
}

} // namespace
