// The files of X, Y and ZModem: buffered binary streams of the C library, and what those protocols ask of the
// file system. Names are 8-bit, relative ones start at the current folder.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

enum class FileMode { Read, Write, Append, Update }; // "rb", "wb", "ab", "rb+"

class FileStream {
  public:
    FileStream();
    ~FileStream();
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    // 0, or the C library's error number (ENOENT for a missing folder). Closes what was open before.
    int Open(const std::string& name, FileMode mode);
    bool IsOpen() const;
    int Read(void* lpBytes, int cbBytes); // the count, 0 at the end and where nothing can be read
    bool ReadFailed() const;              // what looked like the end was none
    bool Write(const void* lpBytes, int cbBytes);
    bool Seek(LONG position);

    // False if closing failed, or if a write before it did: the file is not what it should be.
    bool Close();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

inline constexpr LONG LargestFile = 0x7FFFFFFF; // bytes; what larger files count as, too

struct FileInfo {
    LONG cbFile = 0;      // bytes
    int64_t modified = 0; // seconds since 1970
    unsigned mode = 0;    // the C library's
    bool isFolder = false;
};

// Wraps after 2 GB.
inline LONG Advanced(LONG position, int cbBytes) {
    return static_cast<LONG>(static_cast<DWORD>(position) + static_cast<DWORD>(cbBytes));
}

// False: there is no such file.
bool GetFileInfo(const std::string& name, FileInfo& info);

void SetFileTimes(const std::string& name, int64_t accessed, int64_t modified);
int MakeFolder(const std::string& name); // 0, or the C library's error number
int64_t CurrentTime();                   // seconds since 1970
