// The plain file calls over the files in memory. A handle is an event, so that it closes like every other.
#include "memorydisk.h"
#include "transfer/xferfile.h"

#include <algorithm>
#include <cstring>

namespace {

struct PlainFile {
    std::string name;
    size_t position = 0;
    bool writes = false;
};

std::map<HANDLE, PlainFile> openFiles;

bool HasItsFolder(const MemoryDisk& disk, const std::string& name) {
    const size_t end = name.find_last_of("/\\");
    return end == std::string::npos || disk.folders.contains(name.substr(0, end));
}

FileHandle Opened(const std::string& name, bool writes) {
    const HANDLE handle = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    openFiles[handle] = {name, 0, writes};
    return FileHandle(handle);
}

PlainFile* Find(const FileHandle& file) {
    const auto found = openFiles.find(file.get());
    return file && found != openFiles.end() ? &found->second : nullptr;
}

std::string& ContentsOf(const PlainFile& file) {
    return MemoryDisk::Present().files[file.name].contents;
}

} // namespace

FileHandle FopenRead(const char* szName) {
    MemoryDisk& disk = MemoryDisk::Present();
    disk.journal.push_back(std::string("read ") + szName);
    if (disk.locked.contains(szName) || !disk.files.contains(szName))
        return {};
    return Opened(szName, false);
}

FileHandle FCreate(const char* szName) {
    MemoryDisk& disk = MemoryDisk::Present();
    disk.journal.push_back(std::string("create ") + szName);
    const bool refused = disk.readOnly || disk.locked.contains(szName) || disk.folders.contains(szName);
    if (refused || !*szName || !HasItsFolder(disk, szName))
        return {};
    disk.files[szName].contents.clear();
    return Opened(szName, true);
}

void Fclose(FileHandle& file) {
    if (const PlainFile* open = Find(file)) {
        MemoryDisk::Present().journal.push_back("close " + open->name);
        openFiles.erase(file.get());
    }
    file.reset();
}

// As on the platform, a call that fails gives the count that was asked for.
DWORD Fwrite(const FileHandle& file, const void* lpBytes, DWORD cbBytes) {
    PlainFile* open = Find(file);
    const MemoryDisk& disk = MemoryDisk::Present();
    if (!open || !open->writes || disk.full)
        return cbBytes;
    const DWORD taken = disk.halfWrites ? cbBytes / 2 : cbBytes;
    std::string& contents = ContentsOf(*open);
    contents.resize(std::max<size_t>(contents.size(), open->position + taken));
    contents.replace(open->position, taken, static_cast<const char*>(lpBytes), taken);
    open->position += taken;
    return taken;
}

DWORD Fread(const FileHandle& file, void* lpBytes, DWORD cbBytes) {
    PlainFile* open = Find(file);
    if (!open || open->writes)
        return cbBytes;
    const std::string taken = ContentsOf(*open).substr(open->position, cbBytes);
    if (!taken.empty())
        std::memcpy(lpBytes, taken.data(), taken.size());
    open->position += taken.size();
    return static_cast<DWORD>(taken.size());
}

int FGetc(const FileHandle& file) {
    unsigned char c = 0;
    return Find(file) && Fread(file, &c, 1) ? c : -1;
}

int FGetc(const FileHandle& file, ReadAhead&) {
    return FGetc(file);
}

DWORD Fsize(const FileHandle& file) {
    const PlainFile* open = Find(file);
    return open ? static_cast<DWORD>(ContentsOf(*open).size()) : INVALID_FILE_SIZE;
}
