// The one dialog that a control has open for its user. What a command or a method opens goes through
// CTarnCommCtl::Ask, so that a second one is refused meanwhile, and none outlives the comm object.
#pragma once

#include <windows.h>

#include <functional>

class CMyDialog;

class OpenDialog {
  public:
    OpenDialog() = default;
    OpenDialog(const OpenDialog&) = delete;
    OpenDialog& operator=(const OpenDialog&) = delete;

    // True: the user confirmed. False, and nothing is shown, while another one is open.
    bool Show(CMyDialog& dialog);
    // One of the system's: the call blocks until it has ended, and tells whether it was confirmed.
    bool Show(const std::function<bool()>& systemDialog);

    // Ends what is open; it was not confirmed then.
    void Close();

  private:
    bool ShowAlone(const std::function<bool()>& show);

    bool bShown = false; // until the call that shows it has returned
    bool bClosed = false;
    CMyDialog* pDialog = nullptr; // one of this module's
    HWND hSystemDialog = nullptr; // one of the system's, once it is there
};
