// IObjectSafety of an object that is not safe for scripts of unknown origin, and says so.
#pragma once

#include "interfaces.h"

#include <objsafe.h>

// The platform's header does not say which identifier is the interface's.
__CRT_UUID_DECL(IObjectSafety, 0xcb5bdc81, 0x93c1, 0x11cf, 0x8f, 0x20, 0x00, 0x80, 0x5f, 0x2c, 0xd0, 0x64)

class NotSafe : public IObjectSafety {
  public:
    HRESULT STDMETHODCALLTYPE GetInterfaceSafetyOptions(REFIID, DWORD* supported, DWORD* enabled) override {
        if (!supported || !enabled)
            return E_POINTER;
        *supported = 0;
        *enabled = 0;
        return S_OK;
    }
    // Options that nobody asks to be on can be granted.
    HRESULT STDMETHODCALLTYPE SetInterfaceSafetyOptions(REFIID, DWORD mask, DWORD enabled) override {
        return (mask & enabled) == 0 ? S_OK : E_FAIL;
    }

  protected:
    virtual ~NotSafe() = default;
};
