// What the module writes into the registry, and takes away again: both walk the same rows.
#pragma once

#include <windows.h>

#include <span>
#include <string>

struct CoclassRegistration {
    const CLSID* id;
    const wchar_t* name;             // what users read
    const wchar_t* progId = nullptr; // without its version; none: the class is made by its identifier only
    const wchar_t* version = L"1";   // of the versioned ProgID
    bool isControl = false;          // with all that a control's key holds
    const wchar_t* miscStatus = nullptr;    // for the content's aspect, in decimal digits
    const wchar_t* toolboxBitmap = nullptr; // the resource's number
};

struct ModuleRegistration {
    std::wstring path; // of the module, which also holds the type library
    const GUID* library;
    const wchar_t* libraryVersion; // as TypeLib keys spell it, "1.0"
    std::span<const CoclassRegistration> classes;
};

// For the machine, or, where its hive refuses for want of rights, for the user alone.
HRESULT RegisterModule(const ModuleRegistration& module) noexcept;

// Removes what either wrote.
HRESULT UnregisterModule(const ModuleRegistration& module) noexcept;
