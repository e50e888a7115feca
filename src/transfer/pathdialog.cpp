#include "pathdialog.h"

#include "core/dialogitems.h"
#include "filedialogs.h"
#include "TarnComm.h"

#include <cstdio>

namespace {

constexpr INT_PTR confirmed = 1;
constexpr INT_PTR cancelled = 0;

// A row's place is the protocol's number.
constexpr const char* protocolNames[] = {
    "XModem Checksum", "XModem CRC", "XModem 1K", "YModem", "YModem-G", "ZModem", "Kermit",
};
static_assert(std::size(protocolNames) == TARN_PROTOCOL_KERMIT + 1);

} // namespace

const CommandRow<CPathDialog> CPathDialog::commands[] = {
    {IDOK, BN_CLICKED, &CPathDialog::OnOK},
    {IDCANCEL, BN_CLICKED, &CPathDialog::OnCancel},
    {FileDialog_Browse, BN_CLICKED, &CPathDialog::OnBrowse},
    {FileDialog_Browse, BN_SETFOCUS, &CPathDialog::FocusPath},
};

CPathDialog::CPathDialog(HWND hOwner, int nTemplate, int nItem, int nGivenProtocol, const char* szGivenPath)
    : CMyDialog(hOwner, nTemplate), nProtocol(nGivenProtocol), szPath(), nPathItem(nItem) {
    std::snprintf(szPath.data(), szPath.size(), "%s", szGivenPath ? szGivenPath : "");
}

// A protocol that has no row selects none.
bool CPathDialog::OnInitDialog() {
    LimitEdit(Window(), nPathItem, szPath.size());
    SetDlgItemTextA(Window(), nPathItem, szPath.data());
    for (const char* szName : protocolNames)
        AddRow(Window(), FileDialog_Protocol, szName);
    SelectRow(Window(), FileDialog_Protocol, nProtocol);
    return true;
}

bool CPathDialog::OnCommand(int nControl, int nNotification) {
    return RunCommand(*this, commands, nControl, nNotification);
}

void CPathDialog::OnOK() {
    ReadPath();
    const int row = SelectedRow(Window(), FileDialog_Protocol);
    if (row != noRow)
        nProtocol = row;
    End(confirmed);
}

void CPathDialog::OnCancel() {
    End(cancelled);
}

void CPathDialog::OnBrowse() {
    ReadPath();
    const bool chosen = Browse();
    if (!Window())
        return;
    if (chosen)
        SetDlgItemTextA(Window(), nPathItem, szPath.data());
    FocusPath();
}

// Only CSendFileDialog has this item: in CReceiveFileDialog the focus stays with the button. Kept so, see
// ReceiveFile.FocusStaysAfterBrowsing.
void CPathDialog::FocusPath() {
    if (const HWND hItem = GetDlgItem(Window(), SendFile_Path))
        SetFocus(hItem);
}

void CPathDialog::ReadPath() {
    GetDlgItemTextA(Window(), nPathItem, szPath.data(), static_cast<int>(szPath.size()));
}
