// Type information from the module's own type library. Each is looked for once; any thread may ask.
#pragma once

#include <oaidl.h>
#include <wrl/client.h>

// Of an interface, as clients see it (a dual one as a dispinterface), or of a coclass.
HRESULT TypeInfoOf(REFGUID id, Microsoft::WRL::ComPtr<ITypeInfo>& info) noexcept;

// Of a dual interface's table of functions, by which calls are made.
HRESULT CallInfoOf(REFIID id, Microsoft::WRL::ComPtr<ITypeInfo>& info) noexcept;

// Drops what is kept; the next question loads it again.
void ForgetTypeInfo() noexcept;
