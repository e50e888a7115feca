// CTroubleShootDialog: a window for users that shows what the machine offers, the libraries, ports and
// modems, and switches logging on, so that a problem can be reported.
#pragma once

#include "core/mydialog.h"
#include "troubleshoothost.h"
#include "TroubleShootListDialog.h"
#include "TroubleShootLoggingDialog.h"
#include "troubleshootpanel.h"

#include <array>
#include <memory>

// Where the pages have it from.
struct TroubleShootSources {
    PortLookUp probePort;
    LibraryLookUp findLibrary;
    LogFileActions logFiles;
};
TroubleShootSources SystemTroubleShootSources();

// Ends with IDOK by Exit, which alone sets anything at the host; with IDCANCEL when it is closed.
class CTroubleShootDialog final : public CMyDialog {
  public:
    // The host must outlive the dialog.
    CTroubleShootDialog(HWND hOwner, TroubleShootHost& host,
                        TroubleShootSources sources = SystemTroubleShootSources());

  private:
    static const InitStep<CTroubleShootDialog> initSteps[];
    static constexpr size_t listPages = 4;

    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    void AddWelcome();
    void AddPorts();
    void AddModems();
    void AddLibraries();
    void AddLogging();
    void AddPanel();

    void AddList(TroubleShootPage page, const TroubleShootRows& rows);
    HWND WindowOf(TroubleShootPage page) const;
    void Choose(TroubleShootPage page);
    void Show(TroubleShootPage page);
    void Exit();

    TroubleShootHost& host;
    TroubleShootSources sources;
    std::array<std::unique_ptr<CTroubleShootListDialog>, listPages> lists;
    std::unique_ptr<CTroubleshootLoggingDialog> logging;
    TroubleShootPanel panel;
    bool bExits = false; // the host is being told
};
