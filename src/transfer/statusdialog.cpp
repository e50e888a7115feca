#include "statusdialog.h"

#include "services.h"

#include "core/comobject.h"
#include "TarnComm.h"

#include <commctrl.h>

#include <array>
#include <cwchar>

namespace {

constexpr char terminating[] = "Terminating transfer...";

struct DirectionText {
    int nDirection;
    const char* szDirection;
    const char* szPlace;
};

constexpr std::array<DirectionText, 2> directionTexts = {
    {{XferUpload, "Uploading", "Upload from:"}, {XferDownload, "Downloading", "Download to:"}}};

// The control plays by itself what it has opened; no name closes it.
void OpenAnimation(HWND hDlg, const char* szName) {
    SendDlgItemMessageA(hDlg, Item_Animation, ACM_OPENA, reinterpret_cast<WPARAM>(ThisModule()),
                        reinterpret_cast<LPARAM>(szName));
}

INT_PTR Cancel(HWND hDlg) {
    auto* transfer = reinterpret_cast<TRANSFER*>(GetWindowLongPtrA(hDlg, DWLP_USER));
    if (!transfer)
        return FALSE;
    xfSetAbort(*transfer, 1);
    EnableWindow(GetDlgItem(hDlg, IDCANCEL), FALSE);
    SetDlgItemTextA(hDlg, Item_Status, terminating);
    return TRUE;
}

bool WasCancelled(HWND hDlg) {
    const HWND button = GetDlgItem(hDlg, IDCANCEL);
    return button && !IsWindowEnabled(button);
}

// Asks the system, not the item's thread: most of what is written for each block is there already. A longer
// text is cut when it is read, to more than is compared.
bool Shows(HWND hItem, const char* szText) {
    constexpr size_t compared = 80;
    std::array<WCHAR, compared> wanted = {};
    std::array<WCHAR, compared + 1> shown = {};
    const int characters = MultiByteToWideChar(CP_ACP, 0, szText, -1, wanted.data(), wanted.size());
    InternalGetWindowText(hItem, shown.data(), shown.size());
    return characters && !std::wcscmp(shown.data(), wanted.data());
}

void Write(HWND hDlg, int nItem, const char* szText) {
    const HWND hItem = GetDlgItem(hDlg, nItem);
    if (hItem && !Shows(hItem, szText))
        SetWindowTextA(hItem, szText);
}

// The word that the transfer is being ended stays, also when it came while another one was on its way.
void WriteStatus(HWND hDlg, const char* szText) {
    if (WasCancelled(hDlg))
        return;
    Write(hDlg, Item_Status, szText);
    if (WasCancelled(hDlg))
        Write(hDlg, Item_Status, terminating);
}

} // namespace

// Until a record was lent it leaves a wish to cancel to the system.
INT_PTR TARNAPI DlgProc(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM) {
    switch (uMsg) {
    case WM_INITDIALOG:
        OpenAnimation(hDlg, MAKEINTRESOURCEA(StatusAnimation));
        return TRUE;
    case WM_DESTROY:
        OpenAnimation(hDlg, nullptr);
        return TRUE;
    case WM_CLOSE:
        return Cancel(hDlg);
    case WM_COMMAND:
        return LOWORD(wParam) == IDCANCEL ? Cancel(hDlg) : FALSE;
    default:
        return FALSE;
    }
}

HWND CreateStatusDialog(HWND hOwner, DLGPROC lpProcedure) {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_ANIMATE_CLASS | ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    return CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(StatusTemplate), hOwner, lpProcedure, 0);
}

void DestroyStatusDialog(HWND hDlg) {
    if (hDlg)
        DestroyWindow(hDlg);
}

void OpenStatusDialog(TRANSFER& transfer) {
    const HWND hDlg = transfer.hDlg;
    if (!hDlg)
        return;
    SetWindowLongPtrA(hDlg, DWLP_USER, reinterpret_cast<LONG_PTR>(&transfer));
    for (const DirectionText& text : directionTexts) {
        if (text.nDirection != transfer.nDirection)
            continue;
        ShowItem(transfer, Item_Direction, text.szDirection);
        ShowItem(transfer, Item_Place, text.szPlace);
    }
    for (int item = Item_FileName; item <= Item_Rate; ++item)
        ShowItem(transfer, item, "");
    EnableWindow(GetDlgItem(hDlg, Item_Open), FALSE);
    ShowWindow(hDlg, SW_SHOW);
}

void ShowItem(const TRANSFER& transfer, int nItem, const char* szText) {
    if (!transfer.hDlg)
        return;
    if (nItem == Item_Status)
        WriteStatus(transfer.hDlg, szText);
    else
        Write(transfer.hDlg, nItem, szText);
}

void ShowTitle(const TRANSFER& transfer, const char* szTitle) {
    if (transfer.hDlg)
        SetWindowTextA(transfer.hDlg, szTitle);
}

void ShowPercent(const TRANSFER& transfer, int nPercent) {
    if (transfer.hDlg)
        SendDlgItemMessageA(transfer.hDlg, Item_Progress, PBM_SETPOS, static_cast<WPARAM>(nPercent), 0);
}
