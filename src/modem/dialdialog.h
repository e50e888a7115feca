// CDialDialog: tells that a call is being dialled and offers to cancel it. It stays open beside the dial,
// whose message loop serves it, and is closed by whoever opened it: Cancel only asks for the end.
#pragma once

#include "core/mydialog.h"

#include <functional>

class CDialDialog final : public CMyDialog {
  public:
    // onCancel runs on the dialog's thread, as often as the user asks; the dialog may be gone when it
    // returns.
    CDialDialog(HWND hOwner, std::function<void()> onCancel);

  private:
    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    std::function<void()> cancel;
};
