// What the comm object asks of the rooms above it. A room fills its row when the module starts; an empty row
// means that the room is not part of this program, and the call does nothing.
#pragma once

#include "comctl.h"

struct UpperRooms {
    // Text for the screen and the capture file.
    void (*terminalWrite)(HWND hWnd, const void* lpBytes, int cbBytes) = nullptr;

    // The input holds a ZModem start sequence: receive into the folder of the object.
    void (*startDownload)(HWND hWnd, const char* szName) = nullptr;

    // The object has neither handler nor event window nor parent: its control fires the event.
    void (*fireCommEvent)(CTarnCommCtl& control, int code) = nullptr;

    // Hands the control the text that a look-up collected, logs the event and fires it with the match.
    void (*fireLookUp)(COMCTL& record, const char* lpText, int cbText) = nullptr;

    // Whether the control is in a connection of its own (a telephone call).
    bool (*isConnected)(const CTarnCommCtl& control) = nullptr;
};

extern UpperRooms upperRooms;

void TerminalWrite(HWND hWnd, const void* lpBytes, int cbBytes);
