// Modules that tests bring under a name of their own.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

inline std::string HostPath() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return path;
}

// A copy of this program under another name, mapped like a library and removed at the end.
class NamedModule {
  public:
    using Change = std::function<void(const std::string& path)>;

    NamedModule(const std::string& name, const Change& change = {}) {
        char folder[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, folder);
        path_ = folder + name;
        CopyFileA(HostPath().c_str(), path_.c_str(), FALSE);
        if (change)
            change(path_);
        module_ = LoadLibraryExA(path_.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    }
    ~NamedModule() {
        if (module_)
            FreeLibrary(module_);
        DeleteFileA(path_.c_str());
    }
    NamedModule(const NamedModule&) = delete;
    NamedModule& operator=(const NamedModule&) = delete;

    const std::string& Path() const { return path_; }
    ULONG_PTR Address() const { return reinterpret_cast<ULONG_PTR>(module_); }

  private:
    std::string path_;
    HMODULE module_ = nullptr;
};
