// The transfer services: the only door from a protocol to the line, the clock, the progress display, the
// events and the file names. Worker's thread only. Each may throw WorkerLeaves when the object is gone.
#pragma once

#include "transfer.h"

#include <string>

// What each of them does after a call that may have run the host.
void LeaveIfGone(const TRANSFER& transfer);

// Abort: asked for by the host, by the user, or by a service that found the port closed.
int xfGetAbort(TRANSFER& transfer);
void xfSetAbort(TRANSFER& transfer, int bAbort);

// The line. Counts are bytes, limits are milliseconds. A closed port sets abort.
DWORD xfInQueue(TRANSFER& transfer);  // waiting to be read
DWORD xfOutQueue(TRANSFER& transfer); // not yet on the line
bool xfDataWaiting(TRANSFER& transfer);
DWORD xfPutChar(TRANSFER& transfer, int c);
DWORD xfWrite(TRANSFER& transfer, const void* lpBytes, DWORD cbBytes); // the whole block (its size) or 0
int xfGetChar(TRANSFER& transfer, DWORD milliseconds);                 // 0 to 255, or -1
bool xfWaitForInput(TRANSFER& transfer, DWORD milliseconds);
void xfDelay(TRANSFER& transfer, DWORD milliseconds);
void xfFlushOutput(TRANSFER& transfer); // until all is on the line, 10 seconds at the most
void xfClearOutput(TRANSFER& transfer);
void xfClearInput(TRANSFER& transfer);
void xfSendBreak(TRANSFER& transfer, bool on);
bool xfPortIsOpen(TRANSFER& transfer);

// One file: xfPrepare..., xfStartFile, xfSetFileSize, xfUpdate for each block, xfFileDone or xfFileSkipped.

// Both names in, both names out: the host may change them in its PrepareFile event. An empty source after
// xfPrepareSend says that the queue is empty; no event goes out then. The two may be one string.
void xfPrepareReceive(TRANSFER& transfer, std::string& source, std::string& dest);
void xfPrepareSend(TRANSFER& transfer, std::string& source, std::string& dest);

void xfStartFile(TRANSFER& transfer);
void xfSetFileSize(TRANSFER& transfer, LONG cbFile);
void xfUpdate(TRANSFER& transfer, LONG cbDone, int cbBlock);
void xfFileDone(TRANSFER& transfer);
void xfFileSkipped(TRANSFER& transfer);

// The status line.
void xfSetMessage(TRANSFER& transfer, const char* szText);

// The first free name of UNTITLED.000 to UNTITLED.999 in the object's folder.
std::string xfUniqueFilename(TRANSFER& transfer);

// What follows the last "\", or the last ":" where no "\" stands in the name.
void xfStripPath(std::string& name);

// A line for the transfer's log. For trace: also for a debugger, with a line end.
void LogTransfer(TRANSFER& transfer, const char* szText);
