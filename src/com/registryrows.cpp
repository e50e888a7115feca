#include "registryrows.h"

#include "typelibraryrows.h"

#include <cwchar>

namespace {

constexpr wchar_t controlCategory[] = L"{40FC6ED4-2438-11CF-A3DB-080036F12502}";
constexpr wchar_t programmableCategory[] = L"{40FC6ED5-2438-11CF-A3DB-080036F12502}";
constexpr wchar_t insertableCategory[] = L"{40FC6ED3-2438-11CF-A3DB-080036F12502}";

// Who has a row: every class, those with a ProgID, controls.
enum class Rule { Every, Named, Control };

struct ClassRowTemplate {
    Rule rule;
    const wchar_t* key;
    const wchar_t* name;
    const wchar_t* value;
};

// A word in angle brackets stands for what the class or the module has there.
constexpr ClassRowTemplate classRows[] = {
    {Rule::Every, L"CLSID\\<id>", L"", L"<name>"},
    {Rule::Every, L"CLSID\\<id>\\InprocServer32", L"", L"<path>"},
    {Rule::Every, L"CLSID\\<id>\\InprocServer32", L"ThreadingModel", L"Apartment"},
    {Rule::Named, L"CLSID\\<id>\\ProgID", L"", L"<progId>.<version>"},
    {Rule::Named, L"CLSID\\<id>\\VersionIndependentProgID", L"", L"<progId>"},
    {Rule::Named, L"CLSID\\<id>\\Programmable", L"", L""},
    {Rule::Named, L"CLSID\\<id>\\TypeLib", L"", L"<library>"},
    {Rule::Named, L"CLSID\\<id>\\Version", L"", L"<libraryVersion>"},
    {Rule::Control, L"CLSID\\<id>\\Control", L"", L""},
    {Rule::Control, L"CLSID\\<id>\\Insertable", L"", L""},
    {Rule::Control, L"CLSID\\<id>\\ToolboxBitmap32", L"", L"<path>, <toolboxBitmap>"},
    {Rule::Control, L"CLSID\\<id>\\MiscStatus", L"", L"0"},
    {Rule::Control, L"CLSID\\<id>\\MiscStatus\\1", L"", L"<miscStatus>"},
    {Rule::Control, L"CLSID\\<id>\\verb", L"", L""},
    {Rule::Control, L"CLSID\\<id>\\verb\\0", L"", L"&Properties...,0,2"},
    {Rule::Control, L"CLSID\\<id>\\Implemented Categories\\<control>", L"", L""},
    {Rule::Control, L"CLSID\\<id>\\Implemented Categories\\<programmable>", L"", L""},
    {Rule::Control, L"CLSID\\<id>\\Implemented Categories\\<insertable>", L"", L""},
    {Rule::Named, L"<progId>", L"", L"<name>"},
    {Rule::Named, L"<progId>\\CLSID", L"", L"<id>"},
    {Rule::Named, L"<progId>\\CurVer", L"", L"<progId>.<version>"},
    {Rule::Named, L"<progId>.<version>", L"", L"<name>"},
    {Rule::Named, L"<progId>.<version>\\CLSID", L"", L"<id>"},
    {Rule::Control, L"<progId>.<version>\\Insertable", L"", L""},
};

constexpr const wchar_t* classTree = L"CLSID\\<id>";

// Both widths have these keys in common, as they have the type library's, whose last file they go with.
constexpr const wchar_t* sharedClassTrees[] = {L"<progId>", L"<progId>.<version>"};

using Words = std::vector<std::pair<std::wstring, std::wstring>>;

Words WordsOf(const ModuleRegistration& module, const CoclassRegistration& row) {
    const auto text = [](const wchar_t* from) { return std::wstring(from ? from : L""); };
    return {
        {L"<id>", GuidText(*row.id)},
        {L"<name>", text(row.name)},
        {L"<path>", module.path},
        {L"<progId>", text(row.progId)},
        {L"<version>", text(row.version)},
        {L"<library>", GuidText(*module.library)},
        {L"<libraryVersion>", text(module.libraryVersion)},
        {L"<toolboxBitmap>", text(row.toolboxBitmap)},
        {L"<miscStatus>", text(row.miscStatus)},
        {L"<control>", controlCategory},
        {L"<programmable>", programmableCategory},
        {L"<insertable>", insertableCategory},
    };
}

// A word's text is not looked through again: a path may hold anything.
std::wstring Filled(const wchar_t* pattern, const Words& words) {
    std::wstring text;
    for (const wchar_t* next = pattern; *next;) {
        const wchar_t* end = *next == L'<' ? std::wcschr(next, L'>') : nullptr;
        if (!end) {
            text += *next++;
            continue;
        }
        const std::wstring word(next, end + 1);
        for (const auto& [name, value] : words)
            text += name == word ? value : L"";
        next = end + 1;
    }
    return text;
}

bool Applies(Rule rule, const CoclassRegistration& row) {
    switch (rule) {
    case Rule::Every:
        return true;
    case Rule::Named:
        return row.progId != nullptr;
    case Rule::Control:
        return row.isControl;
    }
    return false;
}

void AddClass(RegistryRows& rows, const ModuleRegistration& module, const CoclassRegistration& coclass) {
    const Words words = WordsOf(module, coclass);
    for (const ClassRowTemplate& row : classRows) {
        if (Applies(row.rule, coclass))
            rows.values.push_back({Filled(row.key, words), row.name, Filled(row.value, words)});
    }
    rows.trees.push_back(Filled(classTree, words));
}

void AddSharedTrees(RegistryRows& rows, const ModuleRegistration& module,
                    const CoclassRegistration& coclass) {
    if (!Applies(Rule::Named, coclass))
        return;
    const Words words = WordsOf(module, coclass);
    for (const wchar_t* tree : sharedClassTrees)
        rows.shared.push_back({rows.shared.front().holders, Filled(tree, words)});
}

bool Exists(HKEY classes, const std::wstring& path) {
    return RegistryKey().Open(classes, path.c_str(), KEY_READ) == ERROR_SUCCESS;
}

LSTATUS WriteRow(HKEY classes, const RegistryRow& row) {
    RegistryKey key;
    const LSTATUS error = key.Create(classes, row.key.c_str());
    if (error != ERROR_SUCCESS)
        return error;
    const auto size = static_cast<DWORD>((row.value.size() + 1) * sizeof(wchar_t));
    return RegSetValueExW(key.Get(), row.name.c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(row.value.c_str()), size);
}

bool IsFailure(LSTATUS error) {
    return error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND;
}

LSTATUS DeleteTree(HKEY classes, const std::wstring& path) {
    const LSTATUS error = RegDeleteTreeW(classes, path.c_str());
    return IsFailure(error) ? error : ERROR_SUCCESS;
}

bool HasHolders(HKEY classes, const std::wstring& path) {
    RegistryKey key;
    return key.Open(classes, path.c_str(), KEY_READ) == ERROR_SUCCESS && key.HasKeys();
}

LSTATUS DeleteUnheld(HKEY classes, const SharedTree& shared) {
    return HasHolders(classes, shared.holders) ? ERROR_SUCCESS : DeleteTree(classes, shared.tree);
}

} // namespace

LSTATUS RegistryKey::Create(HKEY root, const wchar_t* path) {
    Close();
    return RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key_, nullptr);
}

LSTATUS RegistryKey::Open(HKEY root, const wchar_t* path, REGSAM rights) {
    Close();
    return RegOpenKeyExW(root, path, 0, rights, &key_);
}

bool RegistryKey::HasKeys() const {
    DWORD keys = 0;
    return RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
           keys != 0;
}

void RegistryKey::Close() {
    if (key_)
        RegCloseKey(std::exchange(key_, nullptr));
}

RegistryRows RowsOf(const ModuleRegistration& module) {
    RegistryRows rows;
    for (const CoclassRegistration& coclass : module.classes)
        AddClass(rows, module, coclass);
    AddTypeLibrary(rows, module);
    for (const CoclassRegistration& coclass : module.classes)
        AddSharedTrees(rows, module, coclass);
    return rows;
}

LSTATUS WriteRows(HKEY classes, const RegistryRows& rows) {
    for (const RegistryRow& row : rows.values) {
        if (const LSTATUS error = WriteRow(classes, row); error != ERROR_SUCCESS)
            return error;
    }
    return ERROR_SUCCESS;
}

// Goes on after a failure, so that as little as possible stays; the first one is the answer.
LSTATUS DeleteRows(HKEY classes, const RegistryRows& rows) {
    LSTATUS first = ERROR_SUCCESS;
    const auto note = [&](LSTATUS error) { first = first == ERROR_SUCCESS ? error : first; };
    for (const std::wstring& tree : rows.trees)
        note(DeleteTree(classes, tree));
    for (const SharedTree& shared : rows.shared)
        note(DeleteUnheld(classes, shared));
    return first;
}

bool HoldsAny(HKEY classes, const RegistryRows& rows) {
    for (const std::wstring& tree : rows.trees) {
        if (Exists(classes, tree))
            return true;
    }
    return false;
}
