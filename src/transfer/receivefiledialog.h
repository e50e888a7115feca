// CReceiveFileDialog: asks for the folder to receive into and the protocol.
#pragma once

#include "pathdialog.h"

class CReceiveFileDialog final : public CPathDialog {
  public:
    CReceiveFileDialog(HWND hOwner, int nProtocol, const char* szPath);

  private:
    bool Browse() override;
};
