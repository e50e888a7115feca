// The exchange's own thread: does things when their time has come, in their order. It starts with the first
// of them.
#pragma once

#include <windows.h>

#include <functional>

// The action runs with the exchange's lock held.
void After(DWORD milliseconds, std::function<void()> action);

// Ends the thread; what was still to be done is forgotten. Call it without the exchange's lock.
void StopWorker();
