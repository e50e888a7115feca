// Opening and closing the device of a comm object. Window's thread only.
#pragma once

#include "comctl.h"

#include <string>

// Opens the device that szPort names. On failure the text says why.
bool OpenPort(COMCTL& record, std::string& error);

// Buffers, time-outs and line settings for the open device. False: it refuses the settings.
bool PrepareDevice(COMCTL& record);

// Purges, drops DTR and closes.
void ClosePort(COMCTL& record);

// Takes a device that was opened elsewhere; null and all ones detach and close the present one.
void AttachDevice(COMCTL& record, HANDLE device);

// Purges all four ways, stops the writer and the monitor and closes the device, if there is one.
void CloseDevice(COMCTL& record);

bool IsDevice(HANDLE device);
