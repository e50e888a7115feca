// The one road for events from the comm object to its host. Runs on the window's thread, synchronously: the
// host may destroy the object inside it.
#pragma once

#include "comctl.h"

enum CommEvent : int {
    Event_Send = 1,
    Event_Receive = 2,
    Event_CTSChanged = 3,
    Event_DSRChanged = 4,
    Event_CarrierChanged = 5,
    Event_Ring = 6,
    Event_Lookup = 8,
    Event_NewConnection = 9,
    Event_Transfer = 100,
    Error_Break = 1001,
    Error_CTSTimeOut = 1002,
    Error_DSRTimeOut = 1003,
    Error_Frame = 1004,
    Error_InputTimeOut = 1005,
    Error_Overrun = 1006,
    Error_CarrierTimeOut = 1007,
    Error_ReceiveOverflow = 1008,
    Error_Parity = 1009,
    Error_TransmitFull = 1010,
};

// From here on a code is an error and is kept for GetLastCommError while the event is delivered.
inline constexpr int FirstErrorCode = 1000;

void Notify(HWND hWnd, int code);

// The text of an error code ("Break Error"), or null for a code that is no error.
const char* ErrorText(int code);
