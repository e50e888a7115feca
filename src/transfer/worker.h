// The worker of a transfer: the thread that takes the line over, runs one protocol and gives the line back.
#pragma once

#include "transfer.h"

// The worker's calls into its window: requests 16 and 17, the code in wParam. Other senders use this number
// too, so the window takes only what its own worker has announced in the record.
inline constexpr UINT TransferMessage = 0;
inline constexpr UINT TransferEventMessage = WM_USER + 3;
inline constexpr UINT TransferEndMessage = WM_USER + 4; // wParam: the last status

// Readies and starts a transfer; its first name is queued and nTransferType is set. False: no thread.
bool BeginTransfer(COMCTL& record);

// Starts the worker without a queue or a type. The handle is the caller's to close; null while a worker runs
// and where there is no thread to be had.
HANDLE StartWorkerAlone(COMCTL& record);

// Whether such a worker still has the line. Its transfer ends in an event like any other, and until then no
// second worker may come.
bool WorkerStandsAlone(const COMCTL& record);

// Stops the worker of an object that is being destroyed and takes its dialog away. Window's thread.
void EndTransferThread(COMCTL& record);

// What the worker asks of its window's thread, answered there.
LRESULT AnswerWindowRequest(HWND hWnd, int nCode, LPARAM lParam);
LRESULT AnswerTransferEvent(HWND hWnd);
LRESULT AnswerTransferEnd(HWND hWnd, int nStatus);
