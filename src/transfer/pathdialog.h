// What CSendFileDialog and CReceiveFileDialog are but for their browsing: a path, and a protocol from a list.
#pragma once

#include "core/dialogrows.h"
#include "core/mydialog.h"

#include <array>

class CPathDialog : public CMyDialog {
  public:
    // Both are read back after IDOK. A path that doesn't fit is cut.
    int nProtocol;
    std::array<char, MAX_PATH> szPath; // with the NUL

  protected:
    CPathDialog(HWND hOwner, int nTemplate, int nPathItem, int nProtocol, const char* szPath);
    ~CPathDialog() = default;

  private:
    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    // Asks the user by a dialog of the system. True: szPath has what was chosen. The owner may go meanwhile,
    // and this window with it.
    virtual bool Browse() = 0;

    static const CommandRow<CPathDialog> commands[];
    void OnOK();
    void OnCancel();
    void OnBrowse();
    void FocusPath();
    void ReadPath();

    const int nPathItem;
};
