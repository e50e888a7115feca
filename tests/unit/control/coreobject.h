// What the core keeps of a comm object, for tests that can't include both the core's names and the type
// library's.
#pragma once

#include <windows.h>

namespace host {

void SetTransferStatusOf(HWND object, int status);
// What comes in, what goes out and what transfers tell is logged: all of it, or not a thing.
bool LogsAll(HWND object);
bool LogsNothing(HWND object);
void StartLogAnew();

} // namespace host
