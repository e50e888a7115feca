// Tables of a dialog's own members: the steps that fill it, and what its controls' notifications do.
#pragma once

#include "diagnostics/swallow.h"

#include <cstdio>

template <class Dialog>
struct InitStep {
    const char* szName;
    void (Dialog::*run)();
};

// A step that fails is reported with its name and ends the walk; what was done before it stays.
template <class Dialog, class Steps>
void RunSteps(Dialog& dialog, const Steps& steps, const char* szReport) noexcept {
    const char* szStep = "";
    try {
        for (const InitStep<Dialog>& step : steps) {
            szStep = step.szName;
            (dialog.*step.run)();
        }
    } catch (...) {
        char szText[256];
        std::snprintf(szText, sizeof szText, "%s %s", szReport, szStep);
        SwallowException(szText);
    }
}

template <class Dialog>
struct CommandRow {
    int nControl;
    int nNotification;
    void (Dialog::*run)();
};

// False: no row is for this notification.
template <class Dialog, class Rows>
bool RunCommand(Dialog& dialog, const Rows& rows, int nControl, int nNotification) {
    for (const CommandRow<Dialog>& row : rows) {
        if (row.nControl != nControl || row.nNotification != nNotification)
            continue;
        (dialog.*row.run)();
        return true;
    }
    return false;
}
