// CTroubleshootLoggingDialog: the page of the troubleshooter that switches logs on, shows and empties them.
#pragma once

#include "core/dialogrows.h"
#include "core/mydialog.h"
#include "windowhook.h"

#include <functional>

struct LoggingMarks {
    bool wireTap;
    bool capture;
};

// Where the terminal is logged to.
inline constexpr char terminalLogName[] = "CommTerminal.txt";

// What is done with a log's file. False: it can't be.
struct LogFileActions {
    std::function<bool(HWND hOwner, const char* szPath)> open;
    std::function<bool(const char* szPath)> remove;
};
// By the program that is there for such files. A missing file is removed already.
LogFileActions SystemLogFileActions();

class CTroubleshootLoggingDialog final : public CMyDialog {
  public:
    CTroubleshootLoggingDialog(HWND hFrame, LoggingMarks marks,
                               LogFileActions actions = SystemLogFileActions());

    LoggingMarks Marks() const;
    // A button of the page. The frame hears of it instead when Enter presses it.
    bool OnCommand(int nControl, int nNotification) override;

  private:
    static const CommandRow<CTroubleshootLoggingDialog> commands[];

    bool OnInitDialog() override;

    void OnViewWireTap();
    void OnResetWireTap();
    void OnViewTerminal();
    void OnResetTerminal();

    struct Log;
    static const Log wireTapLog;
    static const Log terminalLog;
    void View(const Log& log);
    void Reset(const Log& log);
    void Report(const char* szText, const char* szTitle);

    LoggingMarks before;
    LogFileActions actions;
    WindowHook page;
};
