// CPropertyDialog: a connection on one page, either a port with its settings or a modem with its number. No
// command of the system opens it.
#pragma once

#include "connectionchoice.h"
#include "core/mydialog.h"
#include "TapiApp.h"

class CPropertyDialog final : public CMyDialog {
  public:
    // The choice is changed by OK alone; it and the service must outlive the dialog.
    CPropertyDialog(HWND hOwner, ConnectionChoice& choice, const CTapiApp& tapi);

  private:
    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    void FillCombos();
    void ShowSettings();
    void ShowPort();
    void ShowNumber();
    void AddModems();
    void ShowPage();
    void OnOK();

    bool IsDirect() const;
    std::string EnteredSettings() const;

    ConnectionChoice* pChoice;
    const CTapiApp* pTapi;
};
