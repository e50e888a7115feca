#include "modemlistfile.h"

#include "core/comobject.h"
#include "modemlist.h"

#include <string>

namespace {

constexpr const char* fileName = "MODEM.LST";
constexpr UINT pathSize = 256; // with the NUL; what is longer is no place

// All up to the last backslash.
std::string FolderOf(HMODULE module) {
    char path[pathSize] = {};
    const DWORD length = GetModuleFileNameA(module, path, pathSize);
    if (!length || length >= pathSize)
        return "";
    const std::string name(path);
    return name.substr(0, name.rfind('\\') + 1);
}

std::string ModuleFolder() {
    return FolderOf(ThisModule());
}

std::string ProgramFolder() {
    return FolderOf(nullptr);
}

std::string SystemsOwn(UINT(WINAPI* getFolder)(char*, UINT)) {
    char path[pathSize] = {};
    const UINT length = getFolder(path, pathSize);
    return length && length < pathSize ? std::string(path) + '\\' : "";
}

std::string WindowsFolder() {
    return SystemsOwn(GetWindowsDirectoryA);
}

std::string SystemFolder() {
    return SystemsOwn(GetSystemDirectoryA);
}

using Place = std::string (*)();
constexpr Place places[] = {ModuleFolder, ProgramFolder, WindowsFolder, SystemFolder};

FileHandle OpenIn(const std::string& folder) {
    const std::string path = folder + fileName;
    if (folder.empty() || path.size() >= pathSize)
        return {};
    return FileHandle(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace

ModemListFile::ModemListFile() {
    for (const Place place : places) {
        file_ = OpenIn(place());
        if (file_)
            return;
    }
}

int ModemListFile::NextByte() {
    if (next_ == count_) {
        next_ = 0;
        const auto size = static_cast<DWORD>(bytes_.size());
        if (!ReadFile(file_.get(), bytes_.data(), size, &count_, nullptr) || !count_)
            return endOfModemList;
    }
    return bytes_[next_++];
}
