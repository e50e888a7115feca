#include "sendfiledialog.h"

#include "core/comobject.h"
#include "core/dialogitems.h"
#include "filedialogs.h"
#include "protocollist.h"

#include <commdlg.h>

#include <cstdio>

namespace {

constexpr INT_PTR confirmed = 1;
constexpr INT_PTR cancelled = 0;

constexpr char filter[] = "All Files (*.*)\0*.*\0";

} // namespace

const CommandRow<CSendFileDialog> CSendFileDialog::commands[] = {
    {IDOK, BN_CLICKED, &CSendFileDialog::OnOK},
    {IDCANCEL, BN_CLICKED, &CSendFileDialog::OnCancel},
    {FileDialog_Browse, BN_CLICKED, &CSendFileDialog::OnBrowse},
    {FileDialog_Browse, BN_SETFOCUS, &CSendFileDialog::FocusPath},
};

CSendFileDialog::CSendFileDialog(HWND hOwner, int nGivenProtocol, const char* szGivenPath)
    : CMyDialog(hOwner, SendFileTemplate), nProtocol(nGivenProtocol), szPath() {
    std::snprintf(szPath.data(), szPath.size(), "%s", szGivenPath ? szGivenPath : "");
}

bool CSendFileDialog::OnInitDialog() {
    LimitEdit(Window(), SendFile_Path, szPath.size());
    SetDlgItemTextA(Window(), SendFile_Path, szPath.data());
    FillProtocols(Window(), FileDialog_Protocol, nProtocol);
    return true;
}

bool CSendFileDialog::OnCommand(int nControl, int nNotification) {
    return RunCommand(*this, commands, nControl, nNotification);
}

void CSendFileDialog::OnOK() {
    ReadPath();
    nProtocol = SelectedProtocol(Window(), FileDialog_Protocol, nProtocol);
    End(confirmed);
}

void CSendFileDialog::OnCancel() {
    End(cancelled);
}

// The owner may go while the system asks, and this window with it.
void CSendFileDialog::OnBrowse() {
    ReadPath();
    OPENFILENAMEA choice = {};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = Window();
    choice.hInstance = ThisModule();
    choice.lpstrFilter = filter;
    choice.lpstrFile = szPath.data();
    choice.nMaxFile = static_cast<DWORD>(szPath.size());
    choice.lpstrTitle = "Send File";
    choice.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST;
    const bool chosen = GetOpenFileNameA(&choice);
    if (!Window())
        return;
    if (chosen)
        SetDlgItemTextA(Window(), SendFile_Path, szPath.data());
    FocusPath();
}

void CSendFileDialog::FocusPath() {
    SetFocus(GetDlgItem(Window(), SendFile_Path));
}

void CSendFileDialog::ReadPath() {
    GetDlgItemTextA(Window(), SendFile_Path, szPath.data(), static_cast<int>(szPath.size()));
}
