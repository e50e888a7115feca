// The registry's rows of a module, below a hive's classes, and what walks them. Lower than registration.h:
// nobody else calls it.
#pragma once

#include "registration.h"

#include <utility>
#include <vector>

class RegistryKey {
  public:
    RegistryKey() = default;
    ~RegistryKey() { Close(); }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    LSTATUS Create(HKEY root, const wchar_t* path);
    LSTATUS Open(HKEY root, const wchar_t* path, REGSAM rights);
    HKEY Get() const { return key_; }
    bool HasKeys() const; // below it

  private:
    void Close();

    HKEY key_ = nullptr;
};

struct RegistryRow {
    std::wstring key;
    std::wstring name; // empty: the key's default value
    std::wstring value;
};

// Shared by the modules of both widths: when there are no keys left below the first, the second goes.
struct SharedTree {
    std::wstring holders;
    std::wstring tree;
};

struct RegistryRows {
    std::vector<RegistryRow> values;
    std::vector<std::wstring> trees; // ours alone: deleted with all that is below
    std::vector<SharedTree> shared;
};

RegistryRows RowsOf(const ModuleRegistration& module);
LSTATUS WriteRows(HKEY classes, const RegistryRows& rows);
LSTATUS DeleteRows(HKEY classes, const RegistryRows& rows);
bool HoldsAny(HKEY classes, const RegistryRows& rows);
