#include "memorydisk.h"

#include "transfer/filestream.h"
#include "transfer/xferfile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

MemoryDisk* present;

constexpr const char* modeNames[] = {"rb", "wb", "ab", "rb+"};

std::string FolderOf(const std::string& name) {
    const size_t end = name.find_last_of("/\\");
    return end == std::string::npos || end == 0 ? "" : name.substr(0, end);
}

int OpenError(const std::string& name, bool creates) {
    if (present->locked.contains(name))
        return EACCES;
    if (present->folders.contains(name))
        return creates ? EACCES : 0;
    if (present->files.contains(name))
        return creates && present->readOnly ? EACCES : 0;
    if (!creates || (!FolderOf(name).empty() && !present->folders.contains(FolderOf(name))))
        return ENOENT;
    return present->readOnly ? EACCES : 0;
}

int FolderError(const std::string& name) {
    if (present->folders.contains(name))
        return EEXIST;
    if (present->readOnly || present->files.contains(name))
        return EACCES;
    if (!FolderOf(name).empty() && !present->folders.contains(FolderOf(name)))
        return ENOENT;
    return 0;
}

// At the position, which moves; never more than there is.
size_t ReadAt(const std::string& contents, size_t& position, void* lpBytes, size_t cbBytes) {
    const size_t count = std::min(cbBytes, contents.size() - std::min(contents.size(), position));
    if (count)
        std::memcpy(lpBytes, contents.data() + position, count);
    position += count;
    return count;
}

void WriteAt(std::string& contents, size_t& position, const void* lpBytes, size_t cbBytes) {
    if (contents.size() < position + cbBytes)
        contents.resize(position + cbBytes);
    contents.replace(position, cbBytes, static_cast<const char*>(lpBytes), cbBytes);
    position += cbBytes;
}

} // namespace

MemoryDisk::MemoryDisk() {
    present = this;
}

MemoryDisk::~MemoryDisk() {
    present = nullptr;
}

MemoryDisk& MemoryDisk::Present() {
    return *present;
}

struct FileStream::State {
    std::string name;
    size_t position = 0;
    bool open = false;
    bool failed = false;
};

FileStream::FileStream() : state_(std::make_unique<State>()) {}

FileStream::~FileStream() {
    Close();
}

int FileStream::Open(const std::string& name, FileMode mode) {
    Close();
    present->journal.push_back("open " + name + " " + modeNames[static_cast<int>(mode)]);
    const bool creates = mode == FileMode::Write || mode == FileMode::Append;
    if (const int error = OpenError(name, creates))
        return error;
    *state_ = {name, 0, true, false};
    if (creates) {
        auto& contents = present->files[name].contents;
        if (mode == FileMode::Write)
            contents.clear();
        state_->position = contents.size();
    }
    return 0;
}

bool FileStream::IsOpen() const {
    return state_->open;
}

int FileStream::Read(void* lpBytes, int cbBytes) {
    if (!state_->open || !present->files.contains(state_->name))
        return 0;
    return static_cast<int>(ReadAt(present->files[state_->name].contents, state_->position, lpBytes,
                                   static_cast<size_t>(cbBytes)));
}

bool FileStream::ReadFailed() const {
    return state_->open && !present->files.contains(state_->name);
}

bool FileStream::Write(const void* lpBytes, int cbBytes) {
    if (!state_->open || present->full) {
        state_->failed = true;
        return false;
    }
    WriteAt(present->files[state_->name].contents, state_->position, lpBytes, static_cast<size_t>(cbBytes));
    return true;
}

bool FileStream::Seek(LONG position) {
    if (!state_->open || present->seeksFail || position < 0)
        return false;
    state_->position = static_cast<size_t>(position);
    return true;
}

bool FileStream::Close() {
    if (!state_->open)
        return true;
    state_->open = false;
    if (!present)
        return true;
    present->journal.push_back("close " + state_->name);
    return !state_->failed && !present->closesFail;
}

bool GetFileInfo(const std::string& name, FileInfo& info) {
    if (present->folders.contains(name)) {
        info = {0, present->now, 0040755, true};
        return true;
    }
    const auto found = present->files.find(name);
    if (found == present->files.end())
        return false;
    const MemoryDisk::File& file = found->second;
    info = {file.told >= 0 ? file.told : static_cast<LONG>(file.contents.size()), file.modified, file.mode,
            false};
    return true;
}

void SetFileTimes(const std::string& name, int64_t, int64_t modified) {
    present->journal.push_back("time " + name + " " + std::to_string(modified));
    if (present->files.contains(name))
        present->files[name].modified = modified;
}

int MakeFolder(const std::string& name) {
    if (const int error = FolderError(name)) {
        SetLastError(ERROR_CANNOT_MAKE);
        return errno = error;
    }
    present->journal.push_back("folder " + name);
    present->folders.insert(name);
    return 0;
}

int64_t CurrentTime() {
    return present->now;
}
