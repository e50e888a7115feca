#include "TroubleShootLoggingDialog.h"

#include "logpath.h"
#include "troubleshootitems.h"
#include "troubleshootpaint.h"

#include <shellapi.h>

namespace {

bool OpenLog(HWND hOwner, const char* szPath) {
    constexpr INT_PTR lastFailure = 32;
    const HINSTANCE result = ShellExecuteA(hOwner, "open", szPath, nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > lastFailure;
}

bool RemoveLog(const char* szPath) {
    if (DeleteFileA(szPath))
        return true;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

} // namespace

struct CTroubleshootLoggingDialog::Log {
    const char* szFile;
    const char* szViewTitle;
    const char* szViewFailure;
    const char* szResetTitle;
    const char* szResetFailure;
};

const CTroubleshootLoggingDialog::Log CTroubleshootLoggingDialog::wireTapLog = {
    "WireTap.txt",
    "View WireTap Log",
    "The WireTap log is currently empty.",
    "Reset WireTap Log",
    "The WireTap log file could not be cleared.\r\nIt may be in use by another application.",
};

const CTroubleshootLoggingDialog::Log CTroubleshootLoggingDialog::terminalLog = {
    terminalLogName,
    "View Terminal Log",
    "The terminal log is currently empty.",
    "Reset Terminal Log",
    "The terminal log file could not be cleared.\r\nIt may be in use by another application.",
};

const CommandRow<CTroubleshootLoggingDialog> CTroubleshootLoggingDialog::commands[] = {
    {Logging_ViewWireTap, BN_CLICKED, &CTroubleshootLoggingDialog::OnViewWireTap},
    {Logging_ResetWireTap, BN_CLICKED, &CTroubleshootLoggingDialog::OnResetWireTap},
    {Logging_ViewTerminal, BN_CLICKED, &CTroubleshootLoggingDialog::OnViewTerminal},
    {Logging_ResetTerminal, BN_CLICKED, &CTroubleshootLoggingDialog::OnResetTerminal},
};

LogFileActions SystemLogFileActions() {
    return {OpenLog, RemoveLog};
}

CTroubleshootLoggingDialog::CTroubleshootLoggingDialog(HWND hFrame, LoggingMarks marks,
                                                       LogFileActions fileActions)
    : CMyDialog(hFrame, TroubleShootLoggingTemplate), before(marks), actions(std::move(fileActions)) {}

bool CTroubleshootLoggingDialog::OnInitDialog() {
    page.Set(Window(), [](UINT uMsg, WPARAM wParam, LPARAM) { return PageColors(uMsg, wParam); });
    CheckDlgButton(Window(), Logging_WireTap, before.wireTap ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(Window(), Logging_Terminal, before.capture ? BST_CHECKED : BST_UNCHECKED);
    return false;
}

bool CTroubleshootLoggingDialog::OnCommand(int nControl, int nNotification) {
    return RunCommand(*this, commands, nControl, nNotification);
}

LoggingMarks CTroubleshootLoggingDialog::Marks() const {
    return {IsDlgButtonChecked(Window(), Logging_WireTap) == BST_CHECKED,
            IsDlgButtonChecked(Window(), Logging_Terminal) == BST_CHECKED};
}

void CTroubleshootLoggingDialog::OnViewWireTap() {
    View(wireTapLog);
}

void CTroubleshootLoggingDialog::OnResetWireTap() {
    Reset(wireTapLog);
}

void CTroubleshootLoggingDialog::OnViewTerminal() {
    View(terminalLog);
}

void CTroubleshootLoggingDialog::OnResetTerminal() {
    Reset(terminalLog);
}

void CTroubleshootLoggingDialog::View(const Log& log) {
    if (!actions.open(Window(), PathInWindowsFolder(log.szFile).data()))
        Report(log.szViewFailure, log.szViewTitle);
}

void CTroubleshootLoggingDialog::Reset(const Log& log) {
    if (!actions.remove(PathInWindowsFolder(log.szFile).data()))
        Report(log.szResetFailure, log.szResetTitle);
}

// The page may have gone while the system looked for a program.
void CTroubleshootLoggingDialog::Report(const char* szText, const char* szTitle) {
    if (Window())
        MessageBoxA(GetAncestor(Window(), GA_ROOT), szText, szTitle, MB_OK);
}
