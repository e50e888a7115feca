// The fourteen commands: what the buttons of the toolbar do, and DoCommand.
#pragma once

#include "TarnLink.h"

class CTarnCommCtl;

// Identifiers of the toolbar's buttons. Those of the separators stand between them, see toolbar.cpp.
inline constexpr int newButton = 2000;
inline constexpr int openButton = 2001;
inline constexpr int saveButton = 2002;
inline constexpr int copyButton = 2004;
inline constexpr int pasteButton = 2005;
inline constexpr int connectButton = 2006;
inline constexpr int disconnectButton = 2007;
inline constexpr int sendFileButton = 2008;
inline constexpr int receiveFileButton = 2009;
inline constexpr int propertiesButton = 2010;
inline constexpr int sysInfoButton = 2011;
inline constexpr int noButton = 0;

// What comes before a command that the user gave; a command from code has no opening.
enum class Opening {
    LogAndFire, // the host may cancel it
    Fire,
    None,
};

struct ControlCommand {
    CommCommand value;
    CommCommand told; // the value that the log and the host see
    int button;       // or noButton
    const char* toolTip;
    Opening opening;
    void (*run)(CTarnCommCtl& control); // null: there is nothing to do
};

// Null: there is none.
const ControlCommand* CommandOf(CommCommand value);
const ControlCommand* CommandOfButton(int button);

enum class GivenBy {
    Code,
    User,
};

// The caller holds the control; the host may end it meanwhile.
void RunCommand(CTarnCommCtl& control, const ControlCommand& command, GivenBy givenBy);
