#include "propertypage.h"

#include "modulefile.h"
#include "raised.h"
#include "wall.h"

#include <olectl.h>

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <string>
#include <utility>

using Microsoft::WRL::ComPtr;

namespace {

HWND MakeDialog(const PageFacts& facts, HWND parent, DLGPROC procedure, LPARAM parameter) {
    return CreateDialogParamW(ModuleInstance(), MAKEINTRESOURCEW(facts.dialogTemplate), parent, procedure,
                              parameter);
}

HRESULT LastFailure() {
    const DWORD error = GetLastError();
    return error ? HRESULT_FROM_WIN32(error) : E_FAIL;
}

// In pixels; a template counts in units of its font, so that a dialog has to be made of it.
bool MeasureTemplate(const PageFacts& facts, SIZE& size) {
    const HWND dialog = MakeDialog(facts, GetDesktopWindow(), nullptr, 0);
    RECT outer = {};
    const bool measured = dialog && GetWindowRect(dialog, &outer);
    if (dialog)
        DestroyWindow(dialog);
    size = {outer.right - outer.left, outer.bottom - outer.top};
    return measured;
}

// The caller's to free; null without memory.
LPOLESTR GiveText(const wchar_t* text) {
    const size_t size = (std::wcslen(text) + 1) * sizeof(wchar_t);
    auto* given = static_cast<LPOLESTR>(CoTaskMemAlloc(size));
    if (given)
        std::copy_n(text, size / sizeof(wchar_t), given);
    return given;
}

void MoveTo(HWND dialog, const RECT& place) {
    SetWindowPos(dialog, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

// What a control tells when its user has changed it.
struct ChangeRow {
    const wchar_t* windowClass;
    int notification;
};
constexpr ChangeRow changes[] = {
    {L"Button", BN_CLICKED},
    {L"Edit", EN_CHANGE},
    {L"ComboBox", CBN_SELCHANGE},
    {L"ComboBox", CBN_EDITCHANGE},
};

bool IsChange(HWND control, int notification) {
    wchar_t name[32] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return std::ranges::any_of(changes, [&](const ChangeRow& row) {
        return row.notification == notification && lstrcmpiW(row.windowClass, name) == 0;
    });
}

// A list tells of a row that was chosen before its own edit shows it; what is read then must not be the last
// one.
void ShowChosenRow(HWND list) {
    const LRESULT row = SendMessageW(list, CB_GETCURSEL, 0, 0);
    if (row >= 0)
        SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
}

// Keys

bool IsPressed(int key) {
    return GetKeyState(key) < 0;
}

// The frame's own: its buttons, and the way to its other pages.
bool IsFramesKey(WPARAM key) {
    switch (key) {
    case VK_RETURN:
    case VK_ESCAPE:
        return true;
    case VK_TAB:
    case VK_PRIOR:
    case VK_NEXT:
        return IsPressed(VK_CONTROL);
    default:
        return false;
    }
}

// An open list is closed by keys that are the frame's otherwise.
bool IsWanted(const MSG& message) {
    const LRESULT wanted =
        SendMessageW(message.hwnd, WM_GETDLGCODE, message.wParam, reinterpret_cast<LPARAM>(&message));
    return wanted & DLGC_WANTMESSAGE;
}

// From the last control, or back from the first, the focus goes on to the frame's controls.
bool TabLeaves(HWND dialog, HWND focus) {
    const HWND start = GetNextDlgTabItem(dialog, nullptr, FALSE);
    const HWND end = GetNextDlgTabItem(dialog, start, TRUE);
    const HWND edge = IsPressed(VK_SHIFT) ? start : end;
    return !edge || focus == edge || IsChild(edge, focus);
}

// What was typed into a control is none of its texts, and a text may show its ampersands.
bool HasText(HWND control) {
    const LRESULT code = SendMessageW(control, WM_GETDLGCODE, 0, 0);
    if (code & DLGC_BUTTON)
        return true;
    return (code & DLGC_STATIC) && !(GetWindowLongW(control, GWL_STYLE) & SS_NOPREFIX);
}

bool HasMnemonic(HWND control, wchar_t letter) {
    if (!IsWindowVisible(control) || !IsWindowEnabled(control) || !HasText(control))
        return false;
    wchar_t text[128] = {};
    GetWindowTextW(control, text, static_cast<int>(std::size(text)));
    for (const wchar_t* at = text; (at = std::wcschr(at, L'&')) != nullptr && at[1]; at += 2)
        if (at[1] != L'&' && std::towlower(at[1]) == std::towlower(letter))
            return true;
    return false;
}

bool AnyHasMnemonic(HWND dialog, wchar_t letter) {
    for (HWND each = GetWindow(dialog, GW_CHILD); each; each = GetWindow(each, GW_HWNDNEXT))
        if (HasMnemonic(each, letter))
            return true;
    return false;
}

bool IsForPage(HWND dialog, const MSG& message) {
    switch (message.message) {
    case WM_KEYDOWN:
        if (IsFramesKey(message.wParam))
            return IsWanted(message);
        return message.wParam != VK_TAB || !TabLeaves(dialog, message.hwnd);
    case WM_SYSCHAR:
        return AnyHasMnemonic(dialog, static_cast<wchar_t>(message.wParam));
    default:
        return message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    }
}

} // namespace

HRESULT PropertyPage::SetPageSite(IPropertyPageSite* site) {
    const ComPtr<IPropertyPage> held(this);
    if (site && site_)
        return E_UNEXPECTED;
    const ComPtr<IPropertyPageSite> before(std::exchange(site_, ComPtr<IPropertyPageSite>(site)));
    return S_OK;
}

HRESULT PropertyPage::Activate(HWND parent, LPCRECT place, BOOL) {
    return AsResult([&]() -> HRESULT {
        const ComPtr<IPropertyPage> held(this);
        if (!place)
            return E_POINTER;
        if (dialog_)
            return E_UNEXPECTED;
        dialog_ = MakeDialog(Facts(), parent, Procedure, reinterpret_cast<LPARAM>(this));
        if (!dialog_)
            return LastFailure();
        MoveTo(dialog_, *place);
        const HRESULT filled = AsResult([this] {
            Fill();
            return S_OK;
        });
        if (FAILED(filled))
            DropDialog();
        return filled;
    });
}

HRESULT PropertyPage::Deactivate() {
    const ComPtr<IPropertyPage> held(this);
    if (!dialog_)
        return E_UNEXPECTED;
    DropDialog();
    return S_OK;
}

// Help files are none of the pages'.
HRESULT PropertyPage::GetPageInfo(PROPPAGEINFO* info) {
    if (!info)
        return E_POINTER;
    *info = {};
    info->cb = sizeof *info;
    return AsResult([&]() -> HRESULT {
        if (!MeasureTemplate(Facts(), info->size))
            return LastFailure();
        const LPOLESTR title = GiveText(Facts().title);
        const LPOLESTR docString = GiveText(Facts().docString);
        if (!title || !docString) {
            CoTaskMemFree(title);
            CoTaskMemFree(docString);
            return E_OUTOFMEMORY;
        }
        info->pszTitle = title;
        info->pszDocString = docString;
        return S_OK;
    });
}

HRESULT PropertyPage::SetObjects(ULONG count, IUnknown** objects) {
    return AsResult([&]() -> HRESULT {
        const ComPtr<IPropertyPage> held(this);
        if (count && !objects)
            return E_POINTER;
        Objects given(objects, objects + count);
        objects_.swap(given);
        Fill();
        return S_OK;
    });
}

HRESULT PropertyPage::Show(UINT command) {
    if (!dialog_)
        return E_UNEXPECTED;
    if (command != SW_SHOW && command != SW_SHOWNORMAL && command != SW_HIDE)
        return E_INVALIDARG;
    ShowWindow(dialog_, static_cast<int>(command));
    return S_OK;
}

HRESULT PropertyPage::Move(LPCRECT place) {
    if (!place)
        return E_POINTER;
    if (!dialog_)
        return E_UNEXPECTED;
    MoveTo(dialog_, *place);
    return S_OK;
}

HRESULT PropertyPage::IsPageDirty() {
    return dirty_ ? S_OK : S_FALSE;
}

// Without a dialog there is nothing that could be passed on. The page is clean before the first object hears
// anything, so that a change in between counts.
HRESULT PropertyPage::Apply() {
    return AsResult([&]() -> HRESULT {
        const ComPtr<IPropertyPage> held(this);
        if (!dialog_)
            return E_UNEXPECTED;
        const Objects objects = objects_; // one of them may make the frame give others
        dirty_ = false;
        try {
            return OnApply(objects);
        } catch (...) { // what was not passed on is still to be applied
            dirty_ = true;
            throw;
        }
    });
}

HRESULT PropertyPage::Help(LPCOLESTR) {
    return E_NOTIMPL;
}

HRESULT PropertyPage::TranslateAccelerator(MSG* message) {
    if (!message)
        return E_POINTER;
    const ComPtr<IPropertyPage> held(this);
    if (!dialog_ || !IsChild(dialog_, message->hwnd) || !IsForPage(dialog_, *message))
        return S_FALSE;
    return IsDialogMessageW(dialog_, message) ? S_OK : S_FALSE;
}

void PropertyPage::LetGo() {
    DropDialog();
    const Objects objects(std::move(objects_));
    const ComPtr<IPropertyPageSite> site(std::move(site_));
}

INT_PTR CALLBACK PropertyPage::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        return FALSE; // the focus stays with the frame
    }
    auto* page = reinterpret_cast<PropertyPage*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!page)
        return FALSE;
    if (message == WM_COMMAND)
        AsResult([&] {
            page->OnCommand(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
            return S_OK;
        });
    if (message == WM_NCDESTROY)
        page->dialog_ = nullptr;
    return FALSE;
}

// The frame hears of it last, since it may do anything then.
void PropertyPage::OnCommand(int item, int notification, HWND control) {
    if (filling_ || !IsChange(control, notification))
        return;
    const ComPtr<IPropertyPage> held(this);
    {
        const Raised filling(filling_); // the page's own changes are part of the user's
        if (notification == CBN_SELCHANGE)
            ShowChosenRow(control);
        OnChanged(item);
    }
    Soil();
}

void PropertyPage::Fill() {
    if (!dialog_)
        return;
    const Raised filling(filling_);
    const ComPtr<IUnknown> first(objects_.empty() ? nullptr : objects_.front());
    OnFill(first.Get());
    dirty_ = false;
}

void PropertyPage::DropDialog() {
    if (const HWND dropped = std::exchange(dialog_, nullptr)) {
        SetWindowLongPtrW(dropped, DWLP_USER, 0);
        DestroyWindow(dropped);
    }
}

void PropertyPage::Soil() {
    dirty_ = true;
    const ComPtr<IPropertyPageSite> site(site_);
    if (site)
        site->OnStatusChange(PROPPAGESTATUS_DIRTY | PROPPAGESTATUS_VALIDATE);
}
