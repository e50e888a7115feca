// Members whose rooms are still to come. docs/control.md lists them.
#include "TarnCommCtl.h"

STDMETHODIMP CTarnCommCtl::About() {
    return E_NOTIMPL;
}
STDMETHODIMP CTarnCommCtl::DoCommand(CommCommand) {
    return E_NOTIMPL;
}
STDMETHODIMP CTarnCommCtl::get_CommandState(CommCommand, CommandState*) {
    return E_NOTIMPL;
}
STDMETHODIMP CTarnCommCtl::put_CommandState(CommCommand, CommandState) {
    return E_NOTIMPL;
}
STDMETHODIMP CTarnCommCtl::ShowSysInfo() {
    return E_NOTIMPL;
}
