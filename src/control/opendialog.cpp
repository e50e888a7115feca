#include "opendialog.h"

#include "com/raised.h"
#include "core/mydialog.h"

#include <memory>
#include <string_view>
#include <utility>

namespace {

struct Unhook {
    void operator()(HHOOK hook) const { UnhookWindowsHookEx(hook); }
};
using Hook = std::unique_ptr<HHOOK__, Unhook>;

thread_local HWND* noted = nullptr; // where the next dialog of this thread is to be noted

bool IsDialog(HWND window) {
    char kind[16] = {};
    GetClassNameA(window, kind, sizeof kind);
    return std::string_view(kind) == "#32770";
}

LRESULT CALLBACK NoteDialog(int code, WPARAM wParam, LPARAM lParam) {
    const auto window = reinterpret_cast<HWND>(wParam);
    if (code == HCBT_CREATEWND && noted && IsDialog(window))
        *std::exchange(noted, nullptr) = window;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// The system's dialogs don't tell their windows: notes the first one that is made while this lives. One that
// is opened inside of it comes later.
class DialogNote {
  public:
    explicit DialogNote(HWND& window)
        : before_(std::exchange(noted, &window)),
          hook_(SetWindowsHookExA(WH_CBT, NoteDialog, nullptr, GetCurrentThreadId())) {}
    ~DialogNote() { noted = before_; }
    DialogNote(const DialogNote&) = delete;
    DialogNote& operator=(const DialogNote&) = delete;

  private:
    HWND* before_;
    Hook hook_;
};

} // namespace

bool OpenDialog::ShowAlone(const std::function<bool()>& show) {
    if (bShown)
        return false;
    const Raised shown(bShown);
    bClosed = false;
    const bool confirmed = show();
    return confirmed && !bClosed;
}

bool OpenDialog::Show(CMyDialog& dialog) {
    return ShowAlone([&] {
        pDialog = &dialog;
        const bool confirmed = dialog.DoModal() == IDOK;
        pDialog = nullptr;
        return confirmed;
    });
}

bool OpenDialog::Show(const std::function<bool()>& systemDialog) {
    return ShowAlone([&] {
        const DialogNote note(hSystemDialog);
        const bool confirmed = systemDialog();
        hSystemDialog = nullptr;
        return confirmed;
    });
}

// A question that the system's dialog asks its user ends before it.
void OpenDialog::Close() {
    bClosed = true;
    if (pDialog)
        pDialog->Close();
    if (!hSystemDialog)
        return;
    EndDialog(GetLastActivePopup(hSystemDialog), IDCANCEL);
    EndDialog(hSystemDialog, 0);
}
