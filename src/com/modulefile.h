// The file of the module that this code is in.
#pragma once

#include <windows.h>

#include <string>

HINSTANCE ModuleInstance() noexcept;

// Its whole path; nothing, where the system does not tell.
std::wstring ModulePath();
