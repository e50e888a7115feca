#include "protocollist.h"

#include "core/dialogitems.h"
#include "TarnComm.h"

namespace {

constexpr const char* protocolNames[] = {
    "XModem Checksum", "XModem CRC", "XModem 1K", "YModem", "YModem-G", "ZModem", "Kermit",
};
static_assert(std::size(protocolNames) == TARN_PROTOCOL_KERMIT + 1);

} // namespace

void FillProtocols(HWND hDlg, int nItem, int nProtocol) {
    for (const char* szName : protocolNames)
        AddRow(hDlg, nItem, szName);
    SelectRow(hDlg, nItem, nProtocol);
}

int SelectedProtocol(HWND hDlg, int nItem, int nProtocol) {
    const int row = SelectedRow(hDlg, nItem);
    return row == noRow ? nProtocol : row;
}
