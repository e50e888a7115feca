#include "aboutdialog.h"

#include "diagnostics/moduleversion.h"
#include "pageitems.h"
#include "TarnCommCtl.h"

CAboutDialog::CAboutDialog(HWND hOwner) : CMyDialog(hOwner, AboutTemplate) {}

bool CAboutDialog::OnInitDialog() {
    SetDlgItemTextA(Window(), About_Version, VersionLine().c_str());
    return true;
}

STDMETHODIMP CTarnCommCtl::About() {
    return Body([&]() -> HRESULT {
        CAboutDialog(Window() ? Window() : GetActiveWindow()).DoModal();
        return S_OK;
    });
}
