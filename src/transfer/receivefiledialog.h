// CReceiveFileDialog: asks for the folder to receive into and the protocol.
#pragma once

#include "core/dialogrows.h"
#include "core/mydialog.h"

#include <array>

class CReceiveFileDialog final : public CMyDialog {
  public:
    // The fields are read back after IDOK. A path that doesn't fit is cut.
    CReceiveFileDialog(HWND hOwner, int nProtocol, const char* szPath);

    int nProtocol;
    std::array<char, MAX_PATH> szPath; // with the NUL

  private:
    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    static const CommandRow<CReceiveFileDialog> commands[];
    void OnOK();
    void OnCancel();
    void OnBrowse();
    void ReadPath();
};
