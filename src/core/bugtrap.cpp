// The dialog procedure that shows one of the misuse texts, for programs that bring its template.
#include "bugtrap.h"

#include "TarnComm.h"

namespace {

constexpr int continueControl = IDOK;
constexpr int ignoreControl = 1000;
constexpr int debugControl = 1001;
constexpr int textControl = 1003;
constexpr int frameControl = 1005;

bool ignoreFurther = false; // set by the user, read by nobody

template <class Object>
class GdiObject {
  public:
    void Reset(Object object = nullptr) {
        if (object_)
            DeleteObject(object_);
        object_ = object;
    }
    Object Get() const { return object_; }

  private:
    Object object_ = nullptr;
};

// One dialog shows at a time, on the thread that misused the module.
GdiObject<HFONT> textFont;
GdiObject<HBRUSH> faceBrush;
GdiObject<HBRUSH> shadowBrush;

void UseNormalWeight(HWND hDialog) {
    LOGFONTA font = {};
    const auto dialogFont = reinterpret_cast<HFONT>(SendMessageA(hDialog, WM_GETFONT, 0, 0));
    if (!GetObjectA(dialogFont, sizeof font, &font))
        return;
    font.lfWeight = FW_NORMAL;
    textFont.Reset(CreateFontIndirectA(&font));
    SendDlgItemMessageA(hDialog, textControl, WM_SETFONT, reinterpret_cast<WPARAM>(textFont.Get()), FALSE);
}

void CentreOnScreen(HWND hDialog) {
    RECT box = {};
    GetWindowRect(hDialog, &box);
    const int left = (GetSystemMetrics(SM_CXSCREEN) - (box.right - box.left)) / 2;
    const int top = (GetSystemMetrics(SM_CYSCREEN) - (box.bottom - box.top)) / 2;
    SetWindowPos(hDialog, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void OnInitialise(HWND hDialog, const char* text) {
    SetDlgItemTextA(hDialog, textControl, text ? text : "");
    UseNormalWeight(hDialog);
    faceBrush.Reset(CreateSolidBrush(GetSysColor(COLOR_BTNFACE)));
    shadowBrush.Reset(CreateSolidBrush(GetSysColor(COLOR_BTNSHADOW)));
    CentreOnScreen(hDialog);
}

void OnCommand(HWND hDialog, int control) {
    switch (control) {
    case continueControl:
        EndDialog(hDialog, 0);
        break;
    case ignoreControl:
        ignoreFurther = true;
        EndDialog(hDialog, 0);
        break;
    case debugControl:
        EndDialog(hDialog, 1);
        break;
    default:
        break;
    }
}

void OnDrawFrame(const DRAWITEMSTRUCT& item) {
    RECT box = item.rcItem;
    FillRect(item.hDC, &box, shadowBrush.Get());
    DrawEdge(item.hDC, &box, EDGE_SUNKEN, BF_RECT);
}

void OnDestroy() {
    textFont.Reset();
    faceBrush.Reset();
    shadowBrush.Reset();
}

} // namespace

INT_PTR TARNAPI BugTrapDlgProc(HWND hDialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        OnInitialise(hDialog, reinterpret_cast<const char*>(lParam));
        return TRUE;
    case WM_COMMAND:
        OnCommand(hDialog, LOWORD(wParam));
        return TRUE;
    case WM_DRAWITEM:
        if (wParam != frameControl)
            return FALSE;
        OnDrawFrame(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_DESTROY:
        OnDestroy();
        return FALSE;
    default:
        return FALSE;
    }
}
