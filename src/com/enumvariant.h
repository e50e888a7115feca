// IEnumVARIANT over strings, for collections that a script walks through.
#pragma once

#include <oaidl.h>

#include <string>
#include <vector>

// A picture of the list: later changes of the collection don't reach it.
HRESULT MakeStringEnumerator(std::vector<std::wstring> strings, IUnknown** enumerator) noexcept;
