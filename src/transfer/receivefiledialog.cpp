#include "receivefiledialog.h"

#include "filedialogs.h"

#include <shlobj.h>

#include <memory>

namespace {

struct ShellFree {
    void operator()(ITEMIDLIST* pidl) const { CoTaskMemFree(pidl); }
};
using BrowsedFolder = std::unique_ptr<ITEMIDLIST, ShellFree>;

} // namespace

CReceiveFileDialog::CReceiveFileDialog(HWND hOwner, int nGivenProtocol, const char* szGivenPath)
    : CPathDialog(hOwner, ReceiveFileTemplate, ReceiveFile_Folder, nGivenProtocol, szGivenPath) {}

bool CReceiveFileDialog::Browse() {
    std::array<char, MAX_PATH> szChosen = {}; // also takes the name that the shell shows
    BROWSEINFOA question = {};
    question.hwndOwner = Window();
    question.pszDisplayName = szChosen.data();
    question.lpszTitle = "Receive Folder";
    question.ulFlags = BIF_RETURNONLYFSDIRS;
    const BrowsedFolder folder(SHBrowseForFolderA(&question));
    if (!folder || !SHGetPathFromIDListA(folder.get(), szChosen.data()))
        return false;
    szPath = szChosen;
    return true;
}
