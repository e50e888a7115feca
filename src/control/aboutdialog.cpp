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
        CAboutDialog dialog(DialogOwner());
        Ask(dialog);
        return S_OK;
    });
}
