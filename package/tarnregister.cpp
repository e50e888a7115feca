// Registers Lantry.ocx beside it, or takes that away: tarnregister /machine|/user [/remove]
//
// The module itself writes for the machine and falls back on the user, and takes away from both. This program
// keeps to the one that is named.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {

enum Result { Done, WrongUse, NoModule, NoRegistry, Refused };

constexpr const char* texts[] = {
    "",
    "tarnregister: use it as tarnregister /machine|/user [/remove]",
    "tarnregister: Lantry.ocx beside this program could not be loaded",
    "tarnregister: the registry could not be opened",
    "tarnregister: the module could not be registered or removed; /machine needs an administrator's rights",
};

struct Wish {
    HKEY hive = nullptr;
    bool remove = false;
};

HKEY HiveOf(const wchar_t* word) {
    if (std::wcscmp(word, L"/machine") == 0)
        return HKEY_LOCAL_MACHINE;
    return std::wcscmp(word, L"/user") == 0 ? HKEY_CURRENT_USER : nullptr;
}

Wish WishOf(int count, wchar_t** words) {
    Wish wish;
    for (int word = 1; word < count; ++word) {
        const HKEY hive = HiveOf(words[word]);
        if (hive && !wish.hive)
            wish.hive = hive;
        else if (std::wcscmp(words[word], L"/remove") == 0)
            wish.remove = true;
        else
            return {};
    }
    return wish;
}

class Module {
  public:
    Module() : module_(LoadLibraryExW(PathBeside().c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {}
    ~Module() {
        if (module_)
            FreeLibrary(module_);
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    using Entry = HRESULT(STDAPICALLTYPE*)();
    Entry Find(const char* name) const {
        return module_ ? reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module_, name)))
                       : nullptr;
    }

  private:
    static std::wstring PathBeside() {
        wchar_t path[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        const std::wstring own = path;
        return own.substr(0, own.find_last_of(L'\\') + 1) + L"Lantry.ocx";
    }

    HMODULE module_;
};

class Key {
  public:
    ~Key() {
        if (key_)
            RegCloseKey(key_);
    }
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY* Out() { return &key_; }
    HKEY Get() const { return key_; }

  private:
    HKEY key_ = nullptr;
};

// An empty key of the user's, gone again with its owner. Below it no keys can be made but such as end with
// the session, so that whoever wants to register there fails.
class DeadEnd {
  public:
    DeadEnd()
        : error_(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_VOLATILE, KEY_READ, nullptr,
                                 key_.Out(), nullptr)) {}
    ~DeadEnd() { RegDeleteKeyW(HKEY_CURRENT_USER, path); }
    DeadEnd(const DeadEnd&) = delete;
    DeadEnd& operator=(const DeadEnd&) = delete;

    bool IsThere() const { return error_ == ERROR_SUCCESS; }
    const Key& Get() const { return key_; }

  private:
    static constexpr const wchar_t* path = L"Software\\TarnLinkObjects.Nobody";

    Key key_;
    LSTATUS error_;
};

// While it lives, what is opened below a hive comes from below a key.
class Lead {
  public:
    Lead(HKEY hive, const Key& key) : hive_(hive), error_(RegOverridePredefKey(hive, key.Get())) {}
    ~Lead() { RegOverridePredefKey(hive_, nullptr); }
    Lead(const Lead&) = delete;
    Lead& operator=(const Lead&) = delete;

    bool InForce() const { return error_ == ERROR_SUCCESS; }

  private:
    HKEY hive_;
    LSTATUS error_;
};

// A user's hive seldom has these before; empty, they say nothing.
void DropEmptyParents() {
    for (const wchar_t* path :
         {L"Software\\Classes\\CLSID", L"Software\\Classes\\Interface", L"Software\\Classes\\TypeLib"}) {
        Key key;
        DWORD keys = 0, values = 0;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_READ, key.Out()) == ERROR_SUCCESS &&
            RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                             nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
            keys == 0 && values == 0)
            RegDeleteKeyW(HKEY_CURRENT_USER, path);
    }
}

Result ForUser(Module::Entry entry, bool remove) {
    Key user;
    if (RegOpenCurrentUser(MAXIMUM_ALLOWED, user.Out()) != ERROR_SUCCESS)
        return NoRegistry;
    const Lead lead(HKEY_LOCAL_MACHINE, user);
    if (!lead.InForce())
        return NoRegistry;
    if (FAILED(entry()))
        return Refused;
    if (remove)
        DropEmptyParents();
    return Done;
}

// A user without the rights must not get what he did not ask for, so the rights are tried first. What is his
// own stays where it is: in his place the module sees a key that holds no classes and takes none, even where
// it is denied one of the machine's and falls back.
Result ForMachine(Module::Entry entry) {
    Key classes;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes", 0, KEY_WRITE, classes.Out()) != ERROR_SUCCESS)
        return Refused;
    const DeadEnd nobody;
    const Lead lead(HKEY_CURRENT_USER, nobody.Get());
    if (!nobody.IsThere() || !lead.InForce())
        return NoRegistry;
    return SUCCEEDED(entry()) ? Done : Refused;
}

Result CarryOut(const Wish& wish) {
    if (!wish.hive)
        return WrongUse;
    // Loaded first: what the module reads as it starts is the hives' own.
    const Module module;
    const auto entry = module.Find(wish.remove ? "DllUnregisterServer" : "DllRegisterServer");
    if (!entry)
        return NoModule;
    return wish.hive == HKEY_CURRENT_USER ? ForUser(entry, wish.remove) : ForMachine(entry);
}

} // namespace

int wmain(int count, wchar_t** words) {
    const Result result = CarryOut(WishOf(count, words));
    if (result != Done)
        std::fprintf(stderr, "%s\n", texts[result]);
    return result;
}
