// The module's class objects, from a table with a row for each class that a host can make.
#pragma once

#include "unknown.h"

#include <span>

struct ClassRow {
    const CLSID* id;
    HRESULT (*create)(REFIID iid, void** object);
};

template <class Class>
HRESULT CreateClass(REFIID iid, void** object) noexcept {
    ComPtr<Class> made;
    const HRESULT result = NewObject(made);
    return SUCCEEDED(result) ? made->QueryInterface(iid, object) : result;
}

// DllGetClassObject. The table has to live as long as the module.
HRESULT GetClassObject(std::span<const ClassRow> classes, REFCLSID id, REFIID iid, void** object) noexcept;

// DllCanUnloadNow. S_OK also drops what the layer keeps between objects.
HRESULT CanUnloadNow() noexcept;
