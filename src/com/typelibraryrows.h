// The registry's rows of the module's type library and of the interfaces in it.
#pragma once

#include "registryrows.h"

std::wstring GuidText(const GUID& id);

void AddTypeLibrary(RegistryRows& rows, const ModuleRegistration& module);
