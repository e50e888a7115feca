// The glue between the comm object and the worker of its transfer: the requests of the worker, and the events
// that they deliver.
#pragma once

#include "transfer.h"

#include <string>

enum XferRequest : int {
    Request_DialogType = 1,
    Request_Port = 2,
    Request_DialogParent = 3,
    Request_Protocol = 4,
    Request_EndTransfer = 5,
    Request_FileSize = 6,
    Request_BytesDone = 7,
    Request_StatusText = 8,
    Request_PrepareFile = 9,
    Request_EndFile = 10,
    Request_Abort = 11,
    Request_Direction = 12,
    Request_FailTransfer = 13,
    Request_SkipFile = 14,
    Request_FilesWaiting = 15,
    Request_CreateDialog = 16,  // window's thread only
    Request_DestroyDialog = 17, // window's thread only
};

// The argument of Request_PrepareFile: in what the protocol proposes, out what the host left.
struct TRANSFERNAMES {
    DWORD dwMark = 0x12340201; // read by nobody
    std::string* lpSource;
    std::string* lpDest;
};

// From the worker's thread all but the two dialog requests, from the window's thread those two. 0 for a dead
// object and for an unknown code.
LRESULT xfRequest(HWND hWnd, int nCode, LPARAM lParam);

// Both deliver Event_Transfer on the window's thread and wait for the host; the second settles the record
// first. worker.cpp has them; a transfer without a window's thread (tests) brings its own.
void DeliverTransfer(HWND hWnd);
void DeliverEndOfTransfer(HWND hWnd, int nStatus);

// What stands in the record when a transfer has ended. Window's thread, so that no transfer can begin between
// this and the event that tells of it.
void SettleTransfer(COMCTL& record, int nStatus);
