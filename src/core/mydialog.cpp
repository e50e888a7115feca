#include "mydialog.h"

#include "comobject.h"
#include "wall.h"

#include <utility>

CMyDialog::CMyDialog(HWND hOwnerWindow, int nTemplateNumber)
    : hOwner(hOwnerWindow), nTemplate(nTemplateNumber) {}

// The window must not ask what is half gone.
CMyDialog::~CMyDialog() {
    if (hDlg)
        SetWindowLongPtrA(hDlg, DWLP_USER, 0);
    Close();
}

// The system enables the owner at the end, whatever it was before.
INT_PTR CMyDialog::DoModal() {
    const HWND top = hOwner ? GetAncestor(hOwner, GA_ROOT) : nullptr;
    bModal = true;
    bEnded = false;
    bOwnerWasEnabled = IsWindowEnabled(top);
    const INT_PTR result = DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(nTemplate), hOwner, Procedure,
                                           reinterpret_cast<LPARAM>(this));
    if (!bOwnerWasEnabled)
        EnableWindow(top, FALSE);
    return result == IDOK && !bEnded ? IDCANCEL : result; // a program that quits may get IDOK
}

bool CMyDialog::Create() {
    bModal = false;
    const HWND made = CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(nTemplate), hOwner, Procedure,
                                         reinterpret_cast<LPARAM>(this));
    if (made)
        ShowWindow(made, SW_SHOW);
    return made;
}

// The owner is ready to be the active window before the dialog goes.
void CMyDialog::Close() {
    const HWND closed = std::exchange(hDlg, nullptr);
    if (!closed)
        return;
    if (bModal && bOwnerWasEnabled)
        EnableWindow(GetWindow(closed, GW_OWNER), TRUE);
    DestroyWindow(closed);
}

bool CMyDialog::OnInitDialog() {
    return true;
}

bool CMyDialog::OnCommand(int nControl, int) {
    if (nControl != IDOK && nControl != IDCANCEL)
        return false;
    End(nControl);
    return true;
}

void CMyDialog::End(INT_PTR nResult) {
    bEnded = true;
    if (bModal)
        EndDialog(hDlg, nResult);
    else
        Close();
}

INT_PTR CMyDialog::Answer(UINT uMsg, WPARAM wParam) {
    switch (uMsg) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        return OnCommand(LOWORD(wParam), HIWORD(wParam));
    case WM_NCDESTROY:
        hDlg = nullptr;
        return FALSE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK CMyDialog::Procedure(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_INITDIALOG) {
        SetWindowLongPtrA(hWnd, DWLP_USER, lParam);
        reinterpret_cast<CMyDialog*>(lParam)->hDlg = hWnd;
    }
    // A modal loop sees that its window has gone at its next message.
    if (uMsg == WM_NCDESTROY)
        PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
    auto* dialog = reinterpret_cast<CMyDialog*>(GetWindowLongPtrA(hWnd, DWLP_USER));
    if (!dialog)
        return FALSE;
    return BehindWall("CMyDialog::Procedure", [&] { return dialog->Answer(uMsg, wParam); });
}
