#include "moduleversion.h"

#include <windows.h>

#include <cstdio>
#include <vector>

namespace {

constexpr char moduleName[] = "Lantry.OCX";

bool ReadFileVersion(const char* szFile, VS_FIXEDFILEINFO& version) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(szFile, &ignored);
    if (!size)
        return false;
    std::vector<char> block(size);
    if (!GetFileVersionInfoA(szFile, 0, size, block.data()))
        return false;
    void* found = nullptr;
    UINT length = 0;
    if (!VerQueryValueA(block.data(), "\\", &found, &length) || length < sizeof version)
        return false;
    version = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return true;
}

} // namespace

std::string VersionBanner() {
    const HMODULE module = GetModuleHandleA(moduleName);
    if (!module)
        return {};
    char file[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(module, file, MAX_PATH);
    VS_FIXEDFILEINFO version = {};
    if (!length || length >= MAX_PATH || !ReadFileVersion(file, version))
        return {};
    char banner[96];
    std::snprintf(banner, sizeof banner, "Tarn Link Objects %d.%d.%d.%d WireTap Log Started\r\n",
                  HIWORD(version.dwFileVersionMS), LOWORD(version.dwFileVersionMS),
                  HIWORD(version.dwFileVersionLS), LOWORD(version.dwFileVersionLS));
    return banner;
}
