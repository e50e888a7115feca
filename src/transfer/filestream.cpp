#include "filestream.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <direct.h>
#include <io.h>
#include <sys/stat.h>
#include <sys/utime.h>
#include <utility>

namespace {

constexpr size_t streamBuffer = 16384; // bytes

// In the order of FileMode.
constexpr const char* modeTexts[] = {"rb", "wb", "ab", "rb+"};

LONG Clipped(int64_t size) {
    return size > LargestFile ? LargestFile : static_cast<LONG>(size);
}

} // namespace

struct FileStream::State {
    FILE* file = nullptr;
    bool failed = false;
};

FileStream::FileStream() : state_(std::make_unique<State>()) {}

FileStream::~FileStream() {
    Close();
}

int FileStream::Open(const std::string& name, FileMode mode) {
    Close();
    state_->failed = false;
    state_->file = std::fopen(name.c_str(), modeTexts[static_cast<int>(mode)]);
    if (!state_->file)
        return errno ? errno : EIO;
    std::setvbuf(state_->file, nullptr, _IOFBF, streamBuffer);
    return 0;
}

bool FileStream::IsOpen() const {
    return state_->file != nullptr;
}

int FileStream::Read(void* lpBytes, int cbBytes) {
    return IsOpen() ? static_cast<int>(std::fread(lpBytes, 1, static_cast<size_t>(cbBytes), state_->file))
                    : 0;
}

bool FileStream::ReadFailed() const {
    return IsOpen() && std::ferror(state_->file) != 0;
}

bool FileStream::Write(const void* lpBytes, int cbBytes) {
    const auto count = static_cast<size_t>(cbBytes);
    const bool written = IsOpen() && std::fwrite(lpBytes, 1, count, state_->file) == count;
    state_->failed = state_->failed || !written;
    return written;
}

bool FileStream::Seek(LONG position) {
    return IsOpen() && std::fseek(state_->file, position, SEEK_SET) == 0;
}

bool FileStream::Close() {
    if (!IsOpen())
        return true;
    const bool closed = std::fclose(std::exchange(state_->file, nullptr)) == 0;
    return closed && !state_->failed;
}

bool GetFileInfo(const std::string& name, FileInfo& info) {
    struct _stat64 status = {};
    if (_stat64(name.c_str(), &status) != 0)
        return false;
    info = {Clipped(status.st_size), status.st_mtime, status.st_mode, (status.st_mode & _S_IFMT) == _S_IFDIR};
    return true;
}

void SetFileTimes(const std::string& name, int64_t accessed, int64_t modified) {
    struct __utimbuf64 times = {accessed, modified};
    _utime64(name.c_str(), &times);
}

int MakeFolder(const std::string& name) {
    return _mkdir(name.c_str()) == 0 ? 0 : errno;
}

int64_t CurrentTime() {
    return _time64(nullptr);
}
