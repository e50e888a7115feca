#include "receivefiledialog.h"

#include "core/dialogitems.h"
#include "filedialogs.h"
#include "protocollist.h"

#include <shlobj.h>

#include <cstdio>
#include <memory>

namespace {

constexpr INT_PTR confirmed = 1;
constexpr INT_PTR cancelled = 0;

struct ShellFree {
    void operator()(ITEMIDLIST* pidl) const { CoTaskMemFree(pidl); }
};
using BrowsedFolder = std::unique_ptr<ITEMIDLIST, ShellFree>;

} // namespace

const CommandRow<CReceiveFileDialog> CReceiveFileDialog::commands[] = {
    {IDOK, BN_CLICKED, &CReceiveFileDialog::OnOK},
    {IDCANCEL, BN_CLICKED, &CReceiveFileDialog::OnCancel},
    {FileDialog_Browse, BN_CLICKED, &CReceiveFileDialog::OnBrowse},
};

CReceiveFileDialog::CReceiveFileDialog(HWND hOwner, int nGivenProtocol, const char* szGivenPath)
    : CMyDialog(hOwner, ReceiveFileTemplate), nProtocol(nGivenProtocol), szPath() {
    std::snprintf(szPath.data(), szPath.size(), "%s", szGivenPath ? szGivenPath : "");
}

bool CReceiveFileDialog::OnInitDialog() {
    LimitEdit(Window(), ReceiveFile_Folder, szPath.size());
    SetDlgItemTextA(Window(), ReceiveFile_Folder, szPath.data());
    FillProtocols(Window(), FileDialog_Protocol, nProtocol);
    return true;
}

bool CReceiveFileDialog::OnCommand(int nControl, int nNotification) {
    return RunCommand(*this, commands, nControl, nNotification);
}

void CReceiveFileDialog::OnOK() {
    ReadPath();
    nProtocol = SelectedProtocol(Window(), FileDialog_Protocol, nProtocol);
    End(confirmed);
}

void CReceiveFileDialog::OnCancel() {
    End(cancelled);
}

// The focus stays with the button, unlike in CSendFileDialog; kept so, see
// ReceiveFile.FocusStaysAfterBrowsing. The owner may go while the shell asks, and this window with it.
void CReceiveFileDialog::OnBrowse() {
    ReadPath();
    char szChosen[MAX_PATH] = {}; // also takes the name that the shell shows
    BROWSEINFOA question = {};
    question.hwndOwner = Window();
    question.pszDisplayName = szChosen;
    question.lpszTitle = "Receive Folder";
    question.ulFlags = BIF_RETURNONLYFSDIRS;
    const BrowsedFolder folder(SHBrowseForFolderA(&question));
    if (!folder || !Window() || !SHGetPathFromIDListA(folder.get(), szChosen))
        return;
    std::snprintf(szPath.data(), szPath.size(), "%s", szChosen);
    SetDlgItemTextA(Window(), ReceiveFile_Folder, szPath.data());
}

void CReceiveFileDialog::ReadPath() {
    GetDlgItemTextA(Window(), ReceiveFile_Folder, szPath.data(), static_cast<int>(szPath.size()));
}
