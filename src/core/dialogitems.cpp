#include "dialogitems.h"

#include <commctrl.h>
#include <uxtheme.h>

namespace {

LRESULT Tell(HWND hDlg, int nItem, UINT uMsg, WPARAM wParam, const void* lpParam) {
    return SendDlgItemMessageA(hDlg, nItem, uMsg, wParam, reinterpret_cast<LPARAM>(lpParam));
}

bool SelectFound(HWND hDlg, int nItem, UINT uMsg, const char* szText) {
    const auto row = static_cast<int>(Tell(hDlg, nItem, uMsg, static_cast<WPARAM>(noRow), szText));
    if (row < 0)
        return false;
    SelectRow(hDlg, nItem, row);
    return true;
}

} // namespace

// A theme's page has another color than the texts that stand on it, which are the dialog's own.
void AddTab(HWND hDlg, int nItem) {
    SetWindowTheme(GetDlgItem(hDlg, nItem), L" ", L" ");
    const TCITEMA tab = {};
    Tell(hDlg, nItem, TCM_INSERTITEMA, 0, &tab);
}

void TitleTab(HWND hDlg, int nItem, const char* szTitle) {
    TCITEMA tab = {};
    tab.mask = TCIF_TEXT;
    tab.pszText = const_cast<char*>(szTitle); // read only
    Tell(hDlg, nItem, TCM_SETITEMA, 0, &tab);
}

void AddRow(HWND hDlg, int nItem, const char* szText) {
    Tell(hDlg, nItem, CB_ADDSTRING, 0, szText);
}

void SelectRow(HWND hDlg, int nItem, int nRow) {
    Tell(hDlg, nItem, CB_SETCURSEL, static_cast<WPARAM>(nRow), nullptr);
}

bool SelectPrefix(HWND hDlg, int nItem, const char* szText) {
    return SelectFound(hDlg, nItem, CB_FINDSTRING, szText);
}

bool SelectText(HWND hDlg, int nItem, const char* szText) {
    return SelectFound(hDlg, nItem, CB_FINDSTRINGEXACT, szText);
}

int SelectedRow(HWND hDlg, int nItem) {
    return static_cast<int>(Tell(hDlg, nItem, CB_GETCURSEL, 0, nullptr));
}

std::string SelectedText(HWND hDlg, int nItem) {
    const int row = SelectedRow(hDlg, nItem);
    if (row < 0)
        return "";
    const LRESULT length = Tell(hDlg, nItem, CB_GETLBTEXTLEN, static_cast<WPARAM>(row), nullptr);
    if (length < 0)
        return "";
    std::string text(static_cast<size_t>(length) + 1, '\0');
    const LRESULT copied = Tell(hDlg, nItem, CB_GETLBTEXT, static_cast<WPARAM>(row), text.data());
    text.resize(copied < 0 ? 0 : static_cast<size_t>(copied));
    return text;
}

std::string ItemText(HWND hDlg, int nItem, size_t nBytes) {
    std::string text(nBytes, '\0');
    text.resize(GetDlgItemTextA(hDlg, nItem, text.data(), static_cast<int>(nBytes)));
    return text;
}

void LimitEdit(HWND hDlg, int nItem, size_t nBytes) {
    Tell(hDlg, nItem, EM_LIMITTEXT, nBytes - 1, nullptr);
}

void EnableItems(HWND hDlg, std::initializer_list<int> items, bool on) {
    for (const int item : items)
        EnableWindow(GetDlgItem(hDlg, item), on);
}
