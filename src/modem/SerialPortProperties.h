// CSerialPortProperties: the settings of a line and its flow control.
#pragma once

#include "core/dialogrows.h"
#include "core/mydialog.h"

#include <string>

class CSerialPortProperties final : public CMyDialog {
  public:
    // Both are changed by OK alone, and must outlive the dialog.
    CSerialPortProperties(HWND hOwner, std::string& settings, int& handshaking);

  private:
    static const InitStep<CSerialPortProperties> initSteps[];
    static const CommandRow<CSerialPortProperties> commands[];

    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    void Start();
    void InitTab();
    void InitTitle();
    void FillCombos();
    void ShowSettings();

    void OnOK();
    void OnCancel();
    void OnRestoreDefaults();

    std::string* pSettings;
    int* pHandshaking;
};
