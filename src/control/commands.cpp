// The table of the commands, and the way to each: the host hears of it and may cancel.
#include "commands.h"

#include "commandactions.h"
#include "events.h"
#include "objectaccess.h"
#include "projectfile.h"
#include "TarnCommCtl.h"

#include <cstdio>

namespace {

constexpr Opening whole = Opening::LogAndFire;

constexpr ControlCommand commands[] = {
    {CommCommand_New, CommCommand_New, newButton, "New", whole, nullptr},
    {CommCommand_Open, CommCommand_Open, openButton, "Open", whole, OpenProject},
    {CommCommand_Save, CommCommand_Save, saveButton, "Save", whole, SaveProject},
    {CommCommand_SaveAs, CommCommand_SaveAs, noButton, "", whole, SaveProjectAs},
    {CommCommand_Copy, CommCommand_Copy, copyButton, "Copy", Opening::Fire, commandactions::Copy},
    {CommCommand_Paste, CommCommand_Paste, pasteButton, "Paste", Opening::Fire, commandactions::Paste},
    {CommCommand_Connect, CommCommand_Connect, connectButton, "Connect", whole, commandactions::Connect},
    {CommCommand_Disconnect, CommCommand_Disconnect, disconnectButton, "Disconnect", whole,
     commandactions::Disconnect},
    {CommCommand_SendFile, CommCommand_SendFile, sendFileButton, "Send a file", whole,
     commandactions::SendFile},
    {CommCommand_ReceiveFile, CommCommand_ReceiveFile, receiveFileButton, "Receive a file", whole,
     commandactions::ReceiveFile},
    {CommCommand_Properties, CommCommand_Properties, propertiesButton, "Properties", whole,
     commandactions::Properties},
    {CommCommand_Font, CommCommand_Font, noButton, "", Opening::Fire, commandactions::Font},
    // Told as Properties; kept so, see Commands.EachOpensInItsWay.
    {CommCommand_PortProperties, CommCommand_Properties, noButton, "", whole, commandactions::PortProperties},
    {CommCommand_SysInfo, CommCommand_SysInfo, sysInfoButton, "System Information", Opening::None,
     commandactions::SysInfo},
};

// True: the command goes on. It doesn't if the host took the comm object away, or brought another one.
bool Open(CTarnCommCtl& control, const ControlCommand& command) {
    if (command.opening == Opening::None)
        return true;
    char arguments[32];
    std::snprintf(arguments, sizeof arguments, "%d, False", static_cast<int>(command.told));
    if (command.opening == Opening::LogAndFire)
        control.Log().Event("Command", arguments);
    const HWND object = control.CommObject();
    VARIANT_BOOL cancel = VARIANT_FALSE;
    VARIANT given[2] = {};
    V_VT(&given[0]) = VT_I4;
    V_I4(&given[0]) = command.told;
    V_VT(&given[1]) = VT_BOOL | VT_BYREF;
    V_BOOLREF(&given[1]) = &cancel;
    control.Fire(events::Command, given);
    return cancel == VARIANT_FALSE && control.Has(object);
}

} // namespace

const ControlCommand* CommandOf(CommCommand value) {
    for (const ControlCommand& command : commands)
        if (command.value == value)
            return &command;
    return nullptr;
}

const ControlCommand* CommandOfButton(int button) {
    for (const ControlCommand& command : commands)
        if (button != noButton && command.button == button)
            return &command;
    return nullptr;
}

void RunCommand(CTarnCommCtl& control, const ControlCommand& command, GivenBy givenBy) {
    if (givenBy == GivenBy::User && !Open(control, command))
        return;
    if (command.run)
        command.run(control);
}

STDMETHODIMP CTarnCommCtl::DoCommand(CommCommand Command) {
    return Body([&] {
        if (const ControlCommand* command = CommandOf(Command))
            RunCommand(*this, *command, GivenBy::Code);
        return S_OK;
    });
}
