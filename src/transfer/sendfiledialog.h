// CSendFileDialog: asks for the file to send and the protocol.
#pragma once

#include "core/dialogrows.h"
#include "core/mydialog.h"

#include <array>

class CSendFileDialog final : public CMyDialog {
  public:
    // The fields are read back after IDOK. A path that doesn't fit is cut.
    CSendFileDialog(HWND hOwner, int nProtocol, const char* szPath);

    int nProtocol;
    std::array<char, MAX_PATH> szPath; // with the NUL

  private:
    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    static const CommandRow<CSendFileDialog> commands[];
    void OnOK();
    void OnCancel();
    void OnBrowse();
    void FocusPath();
    void ReadPath();
};
