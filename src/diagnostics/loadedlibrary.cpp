#include "loadedlibrary.h"

namespace {

// Empty as well for a path that would be cut.
std::string PathOf(HMODULE module) {
    char path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(module, path, MAX_PATH);
    return length < MAX_PATH ? std::string(path, length) : "";
}

} // namespace

std::optional<SYSTEMTIME> LocalCreationOf(const std::string& path, const TIME_ZONE_INFORMATION* zone) {
    WIN32_FILE_ATTRIBUTE_DATA file = {};
    SYSTEMTIME utc = {};
    SYSTEMTIME local = {};
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &file) ||
        !FileTimeToSystemTime(&file.ftCreationTime, &utc) ||
        !SystemTimeToTzSpecificLocalTime(zone, &utc, &local))
        return {};
    return local;
}

std::optional<LoadedLibrary> FindLoadedLibrary(const char* szName) {
    const HMODULE module = GetModuleHandleA(szName);
    if (!module)
        return {};
    const std::string path = PathOf(module);
    if (path.empty())
        return LoadedLibrary{};
    return LoadedLibrary{path, VersionOfFile(path.c_str()), LocalCreationOf(path)};
}
