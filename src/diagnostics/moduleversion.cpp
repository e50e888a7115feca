#include "moduleversion.h"

#include "com/modulefile.h"

#include <windows.h>

#include <cstdio>
#include <vector>

namespace {

// The log has its banner by this name alone, whatever module writes it.
constexpr char bannersModule[] = "Lantry.OCX";

FileVersion PartsOf(const VS_FIXEDFILEINFO& info) {
    return {HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS), HIWORD(info.dwFileVersionLS),
            LOWORD(info.dwFileVersionLS)};
}

std::optional<FileVersion> VersionOfModule(HMODULE module) {
    char file[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(module, file, MAX_PATH);
    return length && length < MAX_PATH ? VersionOfFile(file) : std::nullopt;
}

} // namespace

std::optional<FileVersion> VersionOfFile(const char* szFile) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(szFile, &ignored);
    if (!size)
        return {};
    std::vector<char> block(size);
    if (!GetFileVersionInfoA(szFile, 0, size, block.data()))
        return {};
    void* found = nullptr;
    UINT length = 0;
    if (!VerQueryValueA(block.data(), "\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO))
        return {};
    return PartsOf(*static_cast<const VS_FIXEDFILEINFO*>(found));
}

std::string VersionBanner() {
    const HMODULE module = GetModuleHandleA(bannersModule);
    const auto version = module ? VersionOfModule(module) : std::nullopt;
    if (!version)
        return {};
    const auto [major, minor, revision, build] = *version;
    char banner[96];
    std::snprintf(banner, sizeof banner, "Tarn Link Objects %d.%d.%d.%d WireTap Log Started\r\n", major,
                  minor, revision, build);
    return banner;
}

std::string VersionLine() {
    return VersionLine(VersionOfModule(ModuleInstance()));
}

std::string VersionLine(const std::optional<FileVersion>& version) {
    if (!version)
        return {};
    const auto [major, minor, revision, build] = *version;
    char line[48];
    std::snprintf(line, sizeof line, "Version %d.%d Build %d", major, minor, build);
    return line;
}
