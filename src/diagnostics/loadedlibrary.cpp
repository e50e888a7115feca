#include "loadedlibrary.h"

namespace {

// Empty as well for a path that would be cut.
std::string PathOf(HMODULE module) {
    char path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(module, path, MAX_PATH);
    return length < MAX_PATH ? std::string(path, length) : "";
}

std::optional<SYSTEMTIME> CreationOf(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA file = {};
    FILETIME local = {};
    SYSTEMTIME created = {};
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &file) ||
        !FileTimeToLocalFileTime(&file.ftCreationTime, &local) || !FileTimeToSystemTime(&local, &created))
        return {};
    return created;
}

} // namespace

std::optional<LoadedLibrary> FindLoadedLibrary(const char* szName) {
    const HMODULE module = GetModuleHandleA(szName);
    if (!module)
        return {};
    const std::string path = PathOf(module);
    if (path.empty())
        return LoadedLibrary{};
    return LoadedLibrary{path, VersionOfFile(path.c_str()), CreationOf(path)};
}
