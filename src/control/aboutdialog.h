// The about box.
#pragma once

#include "core/mydialog.h"

class CAboutDialog final : public CMyDialog {
  public:
    explicit CAboutDialog(HWND hOwner);

  private:
    bool OnInitDialog() override;
};
