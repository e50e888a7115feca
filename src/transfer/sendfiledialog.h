// CSendFileDialog: asks for the file to send and the protocol.
#pragma once

#include "pathdialog.h"

class CSendFileDialog final : public CPathDialog {
  public:
    CSendFileDialog(HWND hOwner, int nProtocol, const char* szPath);

  private:
    bool Browse() override;
};
