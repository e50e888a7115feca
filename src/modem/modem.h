// Driving a modem by commands over the object's open port. Window's thread only; each of these waits and
// keeps the host alive meanwhile, so the object may be gone afterwards. What follows then is left out, and
// the result is the failure's.
#pragma once

#include "core/comctl.h"

#include <string>

// Sends a command of the options after a short rest. True if every byte went out.
bool SendCommand(COMCTL& record, const std::string& command);

// Waits for "OK" or "ERROR". True for "OK".
bool AwaitOk(COMCTL& record);

// Sends a command and waits for its answer.
bool Ask(COMCTL& record, const std::string& command);

// Hangs up, then sets the modem up.
bool SetUpModem(COMCTL& record);

// A DialResult as a flat function gives it.
int DialNumber(COMCTL& record, const std::string& number);

// Ends a waiting Dial, or a call: by DTR, else by the modem's command. True when the line is down.
bool HangUpLine(COMCTL& record);

// The lighter form: whatever DTR is set to, and without waiting for the command's answer.
bool DropLine(COMCTL& record);
