// CommandState: whether the button of a command is shown, and can be pressed.
#include "commands.h"
#include "TarnCommCtl.h"
#include "toolbar.h"

namespace {

// System information can't be taken away.
int ButtonOf(CommCommand value) {
    const ControlCommand* command = CommandOf(value);
    return command && value != CommCommand_SysInfo ? command->button : noButton;
}

} // namespace

STDMETHODIMP CTarnCommCtl::get_CommandState(CommCommand Command, CommandState* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = StateOfButton(m_hWndToolbar, ButtonOf(Command));
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_CommandState(CommCommand Command, CommandState value) {
    return Body([&] {
        SetStateOfButton(m_hWndToolbar, ButtonOf(Command), value);
        return S_OK;
    });
}
