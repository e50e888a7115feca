#include "TroubleShootDialog.h"

#include "com/raised.h"
#include "logpath.h"
#include "troubleshootitems.h"

namespace {

constexpr TroubleShootPage pages[] = {TroubleShootPage::Welcome, TroubleShootPage::Ports,
                                      TroubleShootPage::Modems, TroubleShootPage::Libraries,
                                      TroubleShootPage::Logging};

void PlacePage(HWND hFrame, CMyDialog& page) {
    const RECT box = TroubleShootPageBox(hFrame);
    if (page.Create())
        SetWindowPos(page.Window(), nullptr, box.left, box.top, box.right - box.left, box.bottom - box.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

TroubleShootSources SystemTroubleShootSources() {
    return {ProbePort, FindLoadedLibrary, SystemLogFileActions()};
}

const InitStep<CTroubleShootDialog> CTroubleShootDialog::initSteps[] = {
    {"Welcome", &CTroubleShootDialog::AddWelcome}, {"Serial ports", &CTroubleShootDialog::AddPorts},
    {"Modems", &CTroubleShootDialog::AddModems},   {"DLL versions", &CTroubleShootDialog::AddLibraries},
    {"Logging", &CTroubleShootDialog::AddLogging},
};

CTroubleShootDialog::CTroubleShootDialog(HWND hOwner, TroubleShootHost& asked, TroubleShootSources from)
    : CMyDialog(hOwner, TroubleShootTemplate), host(asked), sources(std::move(from)) {}

// A page that can't be filled takes neither another one with it nor the panel, which has the way out.
bool CTroubleShootDialog::OnInitDialog() {
    for (const auto& step : initSteps)
        RunSteps(*this, std::array{step}, "Exception in CTroubleShootDialog::OnInitDialog:");
    AddPanel();
    Show(TroubleShootPage::Welcome);
    panel.TakeFocus();
    return false;
}

// Enter means nothing to the frame itself.
bool CTroubleShootDialog::OnCommand(int nControl, int nNotification) {
    if (nControl == IDCANCEL) {
        End(IDCANCEL);
        return true;
    }
    return logging && logging->OnCommand(nControl, nNotification);
}

void CTroubleShootDialog::AddWelcome() {
    AddList(TroubleShootPage::Welcome, WelcomeRows());
}

void CTroubleShootDialog::AddPorts() {
    AddList(TroubleShootPage::Ports, PortRows(sources.probePort));
}

void CTroubleShootDialog::AddModems() {
    AddList(TroubleShootPage::Modems, ModemRows(host.Modems()));
}

void CTroubleShootDialog::AddLibraries() {
    AddList(TroubleShootPage::Libraries, LibraryRows(sources.findLibrary));
}

void CTroubleShootDialog::AddLogging() {
    const LoggingMarks marks = {host.WireTap(), !host.CaptureFilename().empty()};
    logging = std::make_unique<CTroubleshootLoggingDialog>(Window(), marks, sources.logFiles);
    PlacePage(Window(), *logging);
}

void CTroubleShootDialog::AddPanel() {
    panel.Create(Window(), [this](TroubleShootPage page) { Choose(page); });
}

void CTroubleShootDialog::AddList(TroubleShootPage page, const TroubleShootRows& rows) {
    auto& list = lists[static_cast<size_t>(page)];
    list = std::make_unique<CTroubleShootListDialog>(Window(), rows);
    PlacePage(Window(), *list);
}

// Null for a page that couldn't be filled.
HWND CTroubleShootDialog::WindowOf(TroubleShootPage page) const {
    if (page == TroubleShootPage::Logging)
        return logging ? logging->Window() : nullptr;
    const auto& list = lists[static_cast<size_t>(page)];
    return list ? list->Window() : nullptr;
}

void CTroubleShootDialog::Choose(TroubleShootPage page) {
    if (page == TroubleShootPage::Exit)
        Exit();
    else
        Show(page);
}

void CTroubleShootDialog::Show(TroubleShootPage shown) {
    constexpr UINT alone = SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;
    HDWP changes = BeginDeferWindowPos(static_cast<int>(std::size(pages)));
    for (const TroubleShootPage page : pages) {
        const UINT visible = page == shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW;
        if (const HWND hPage = WindowOf(page); hPage && changes)
            changes = DeferWindowPos(changes, hPage, nullptr, 0, 0, 0, 0, alone | visible);
    }
    if (changes)
        EndDeferWindowPos(changes);
}

// The host may end the dialog, or its owner, while it is told, and the user may choose Exit again.
void CTroubleShootDialog::Exit() {
    if (bExits)
        return;
    const Raised exits(bExits);
    if (logging && logging->Window()) {
        const LoggingMarks marks = logging->Marks();
        host.SetWireTap(marks.wireTap);
        host.SetCaptureFilename(marks.capture ? PathInWindowsFolder(terminalLogName).data() : "");
    }
    if (Window())
        End(IDOK);
}
