// CMyDialog: a dialog of one of this module's templates, shown until it ends or left open while its thread
// goes on. It belongs to the thread that shows it. The owner window may go at any time and takes the dialog
// with it; DoModal then doesn't give IDOK.
#pragma once

#include <windows.h>

class CMyDialog {
  public:
    CMyDialog(const CMyDialog&) = delete;
    CMyDialog& operator=(const CMyDialog&) = delete;

    // What the dialog ended with; -1: it could not be made.
    INT_PTR DoModal();

    // Shows it and returns. False: it could not be made.
    bool Create();
    // Ends it, however it is shown, and what it has opened itself; DoModal then doesn't give IDOK.
    void Close();

    // Null while there is no window.
    HWND Window() const { return hDlg; }

  protected:
    CMyDialog(HWND hOwner, int nTemplate);
    ~CMyDialog();

    // Fills the dialog. True: the system chooses what gets the focus.
    virtual bool OnInitDialog();
    // A notification of a control. True: it was dealt with.
    virtual bool OnCommand(int nControl, int nNotification);

    void End(INT_PTR nResult);

  private:
    static INT_PTR CALLBACK Procedure(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM lParam);
    INT_PTR Answer(UINT uMsg, WPARAM wParam);

    HWND hOwner;
    int nTemplate;
    HWND hDlg = nullptr;
    bool bModal = false;
    bool bEnded = false;           // by its user
    bool bOwnerWasEnabled = false; // before a modal dialog
};
