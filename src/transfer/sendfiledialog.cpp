#include "sendfiledialog.h"

#include "core/comobject.h"
#include "filedialogs.h"

#include <commdlg.h>

namespace {

constexpr char filter[] = "All Files (*.*)\0*.*\0";

} // namespace

CSendFileDialog::CSendFileDialog(HWND hOwner, int nGivenProtocol, const char* szGivenPath)
    : CPathDialog(hOwner, SendFileTemplate, SendFile_Path, nGivenProtocol, szGivenPath) {}

bool CSendFileDialog::Browse() {
    OPENFILENAMEA choice = {};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = Window();
    choice.hInstance = ThisModule();
    choice.lpstrFilter = filter;
    choice.lpstrFile = szPath.data();
    choice.nMaxFile = static_cast<DWORD>(szPath.size());
    choice.lpstrTitle = "Send File";
    choice.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST;
    return GetOpenFileNameA(&choice);
}
