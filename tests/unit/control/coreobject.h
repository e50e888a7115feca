// What the core keeps of a comm object, for tests that can't include both the core's names and the type
// library's.
#pragma once

#include <windows.h>

namespace host {

void SetTransferStatusOf(HWND object, int status);
void StartLogAnew();

} // namespace host
