// The life of a dialog: how it ends, with and without its owner.
#include "dialogtest.h"

#include "core/dialogrows.h"
#include "core/handle.h"

#include <stdexcept>
#include <thread>

using namespace dialogs;

namespace {

class Plain final : public CMyDialog {
  public:
    explicit Plain(HWND hOwner, int nTemplate = DialTemplate) : CMyDialog(hOwner, nTemplate) {}

    Texts told;
    User onInit;
    User onButton;

  private:
    bool OnInitDialog() override {
        told.push_back("init");
        if (onInit)
            onInit(Window());
        return true;
    }
    bool OnCommand(int nControl, int nNotification) override {
        if (nNotification == BN_CLICKED)
            told.push_back("command " + std::to_string(nControl));
        if (onButton)
            onButton(Window());
        return CMyDialog::OnCommand(nControl, nNotification);
    }
};

using MyDialog = DialogTest;

TEST_F(MyDialog, EndsWithTheButtonThatWasPressed) {
    for (const int button : {IDOK, IDCANCEL}) {
        Plain dialog(owner.get());
        EXPECT_EQ(Play(dialog, [&](HWND hDlg) { Notify(hDlg, button, BN_CLICKED); }), button);
        EXPECT_EQ(dialog.told, Texts({"init", "command " + std::to_string(button)}));
        EXPECT_EQ(dialog.Window(), nullptr);
        EXPECT_TRUE(IsWindowEnabled(owner.get()));
    }
}

TEST_F(MyDialog, OtherControlsEndNothing) {
    Plain dialog(owner.get());
    const INT_PTR result = Play(dialog, [&](HWND hDlg) {
        Notify(hDlg, 99, BN_CLICKED);
        EXPECT_TRUE(IsWindow(hDlg));
        Notify(hDlg, IDCANCEL, BN_CLICKED);
    });
    EXPECT_EQ(result, IDCANCEL);
}

struct KeyRow {
    WPARAM key;
    INT_PTR result;
};

TEST_F(MyDialog, KeysOfAModalDialog) {
    for (const KeyRow& row : {KeyRow{VK_ESCAPE, IDCANCEL}, KeyRow{VK_RETURN, IDCANCEL}}) {
        Plain dialog(owner.get());
        EXPECT_EQ(Play(dialog,
                       [&](HWND hDlg) { PostMessageA(GetDlgItem(hDlg, IDCANCEL), WM_KEYDOWN, row.key, 1); }),
                  row.result);
    }
}

TEST_F(MyDialog, OwnerIsDisabledMeanwhile) {
    Plain dialog(owner.get());
    const INT_PTR result = Play(dialog, [&](HWND hDlg) {
        EXPECT_FALSE(IsWindowEnabled(owner.get()));
        EXPECT_EQ(GetWindow(hDlg, GW_OWNER), owner.get());
        Notify(hDlg, IDCANCEL, BN_CLICKED);
    });
    EXPECT_EQ(result, IDCANCEL);
}

TEST_F(MyDialog, MissingTemplateIsAFailure) {
    Plain dialog(owner.get(), 9999);
    EXPECT_EQ(dialog.DoModal(), -1);
    EXPECT_FALSE(dialog.Create());
    EXPECT_EQ(dialog.Window(), nullptr);
}

TEST_F(MyDialog, OwnerThatGoesTakesTheDialogWithIt) {
    Plain dialog(owner.get());
    const INT_PTR result = Play(dialog, [&](HWND) { DestroyWindow(owner.release()); });
    EXPECT_NE(result, IDOK);
    EXPECT_EQ(dialog.Window(), nullptr);
}

// No timer of this thread wakes the loop once the other thread has sent its message.
TEST_F(MyDialog, OwnerThatGoesByAnotherThreadsMessageEndsTheWait) {
    constexpr DWORD limitMilliseconds = 10000;
    Plain dialog(owner.get());
    const HWND hOwner = owner.release();
    const DWORD waiting = GetCurrentThreadId();
    const EventHandle returned = ManualResetEvent();
    bool inTime = false;
    std::thread other;
    const auto close = [&] {
        SendMessageA(hOwner, WM_CLOSE, 0, 0);
        inTime = WaitForSingleObject(returned.get(), limitMilliseconds) == WAIT_OBJECT_0;
        PostThreadMessageA(waiting, WM_NULL, 0, 0);
    };
    std::unique_ptr<host::Every> once;
    once = host::When([&] { return dialog.Window() && IsWindowVisible(dialog.Window()); },
                      [&] {
                          once->Stop();
                          other = std::thread(close);
                      });
    EXPECT_NE(dialog.DoModal(), IDOK);
    SetEvent(returned.get());
    other.join();
    EXPECT_TRUE(inTime);
    EXPECT_FALSE(IsWindow(hOwner));
}

TEST_F(MyDialog, ModelessStaysUntilItIsClosed) {
    Plain dialog(owner.get());
    ASSERT_TRUE(dialog.Create());
    const HWND hDlg = dialog.Window();
    EXPECT_TRUE(IsWindowVisible(hDlg));
    EXPECT_TRUE(IsWindowEnabled(owner.get()));
    dialog.Close();
    EXPECT_FALSE(IsWindow(hDlg));
    EXPECT_EQ(dialog.Window(), nullptr);
    dialog.Close();
    ASSERT_TRUE(dialog.Create());
    Notify(dialog.Window(), IDOK, BN_CLICKED);
    EXPECT_EQ(dialog.Window(), nullptr);
}

TEST_F(MyDialog, CloseEndsAModalDialogToo) {
    Plain dialog(owner.get());
    EXPECT_NE(Play(dialog, [&](HWND) { dialog.Close(); }), IDOK);
    EXPECT_EQ(dialog.Window(), nullptr);
    EXPECT_TRUE(IsWindowEnabled(owner.get()));
}

TEST_F(MyDialog, OwnerThatWasDisabledStaysSo) {
    for (const bool closes : {true, false}) {
        SCOPED_TRACE(closes);
        EnableWindow(owner.get(), FALSE);
        Plain dialog(owner.get());
        EXPECT_NE(Play(dialog,
                       [&](HWND hDlg) {
                           if (closes)
                               dialog.Close();
                           else
                               Notify(hDlg, IDCANCEL, BN_CLICKED);
                       }),
                  IDOK);
        EXPECT_FALSE(IsWindowEnabled(owner.get()));
    }
}

TEST_F(MyDialog, CloseEndsWhatTheDialogHasOpened) {
    Plain dialog(owner.get());
    const INT_PTR result = Play(dialog, [&](HWND hDlg) {
        Plain nested(hDlg);
        EXPECT_NE(Play(nested, [&](HWND) { dialog.Close(); }), IDOK);
        EXPECT_EQ(nested.Window(), nullptr);
    });
    EXPECT_NE(result, IDOK);
    EXPECT_EQ(dialog.Window(), nullptr);
    EXPECT_TRUE(IsWindowEnabled(owner.get()));
}

TEST_F(MyDialog, ObjectThatGoesTakesItsWindowAlong) {
    HWND hDlg = nullptr;
    {
        Plain dialog(owner.get());
        ASSERT_TRUE(dialog.Create());
        hDlg = dialog.Window();
    }
    EXPECT_FALSE(IsWindow(hDlg));
}

TEST_F(MyDialog, ModelessGoesWithItsOwner) {
    Plain dialog(owner.get());
    ASSERT_TRUE(dialog.Create());
    owner.reset();
    EXPECT_EQ(dialog.Window(), nullptr);
}

TEST_F(MyDialog, ExceptionsStayInside) {
    Plain dialog(owner.get());
    dialog.onInit = [](HWND) { throw std::runtime_error("init"); };
    dialog.onButton = [](HWND) { throw std::runtime_error("button"); };
    const INT_PTR result = Play(dialog, [&](HWND hDlg) {
        Notify(hDlg, 99, BN_CLICKED);
        dialog.onButton = nullptr;
        Notify(hDlg, IDCANCEL, BN_CLICKED);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_GE(doubles::reports.size(), 2u);
    EXPECT_EQ(doubles::reports.front(), "CMyDialog::Procedure");
}

TEST_F(MyDialog, QuitEndsTheDialogAndIsPutBack) {
    Plain dialog(owner.get());
    EXPECT_NE(Play(dialog, [](HWND) { PostQuitMessage(7); }), IDOK);
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

// The steps of filling

struct Walk {
    Texts done;
    bool fails = true;
    void First() { done.push_back("first"); }
    void Second() {
        if (fails)
            throw std::runtime_error("second");
        done.push_back("second");
    }
    void Third() { done.push_back("third"); }
};

TEST_F(MyDialog, StepThatFailsIsNamedAndEndsTheWalk) {
    const InitStep<Walk> steps[] = {{"One", &Walk::First}, {"Two", &Walk::Second}, {"Three", &Walk::Third}};
    Walk walk;
    RunSteps(walk, steps, "Exception in Walk:");
    EXPECT_EQ(walk.done, Texts({"first"}));
    EXPECT_EQ(doubles::reports, Texts({"Exception in Walk: Two"}));
    walk.fails = false;
    RunSteps(walk, steps, "Exception in Walk:");
    EXPECT_EQ(walk.done, Texts({"first", "first", "second", "third"}));
    EXPECT_EQ(doubles::reports.size(), 1u);
}

TEST_F(MyDialog, ReportOfAStepIsCutAt256Characters) {
    const std::string name(400, 'n');
    const InitStep<Walk> steps[] = {{name.c_str(), &Walk::Second}};
    Walk walk;
    RunSteps(walk, steps, "Exception in Walk:");
    EXPECT_EQ(doubles::reports, Texts({("Exception in Walk: " + name).substr(0, 255)}));
}

} // namespace
