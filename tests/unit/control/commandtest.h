// A control that is given commands: by its buttons, by code, as a button would; and its user in what opens.
#pragma once

#include "bars.h"

#include "support/every.h"
#include "support/filequestion.h"
#include "unit/dialogs/dialoguser.h"

namespace host {

class CommandTest : public BarsTest {
  public:
    ~CommandTest() override {
        dialogUser_.reset();
        fileQuestions = {};
    }

    HRESULT Do(int command) { return control->DoCommand(std::bit_cast<CommCommand>(command)); }
    void Press(int button) { Click(Control(), button); }

    // As a button would, for commands that have none.
    void Give(CommCommand command) {
        const ComPtr<CTarnCommCtl> held = control;
        RunCommand(*held.Get(), *CommandOf(command), GivenBy::User);
    }

    void LogAnew() {
        StartLogAnew();
        logfiles::RemoveLog();
        LogEvents();
        control->Properties().m_bWireTapProperties = trueFlag;
    }
    void Veto() {
        ear.onEvent = [](DISPID id, DISPPARAMS& arguments) {
            if (id == events::Command)
                *V_BOOLREF(&Argument(arguments, 1)) = VARIANT_TRUE;
        };
    }

    // Acts in the dialog that has the item, once it is open.
    void InDialog(int item, const dialogs::User& user) {
        opened = 0;
        dialogUser_ = dialogs::WhenOpen(item, [this, user](HWND dialog) {
            ++opened;
            user(dialog);
        });
    }
    static void Cancel(HWND dialog) { SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0); }

    int opened = 0;

  private:
    std::unique_ptr<Every> dialogUser_;
};

} // namespace host
