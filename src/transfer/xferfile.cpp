#include "xferfile.h"

#include "core/ascii.h"
#include "guarded.h"

namespace {

struct OpenRow {
    const char* label;
    DWORD access;
    DWORD disposition;
};

constexpr OpenRow openRead = {"Transfer: FopenRead", GENERIC_READ, OPEN_EXISTING};
constexpr OpenRow openNew = {"Transfer: FCreate", GENERIC_WRITE, CREATE_ALWAYS};
constexpr OpenRow openAppend = {"Transfer: FopenAppend", GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS};

FileHandle Opened(const OpenRow& row, const char* szName) {
    return FileHandle(CreateFileA(szName, row.access, FILE_SHARE_READ, nullptr, row.disposition,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

FileHandle Open(const OpenRow& row, const char* szName) {
    return Guarded(row.label, FileHandle(), [&] { return Opened(row, szName); });
}

// False at the end of the file, and when it can't be read.
bool Refill(const FileHandle& file, ReadAhead& ahead) {
    ahead.next = ahead.count = 0;
    DWORD count = 0;
    if (ReadFile(file.get(), ahead.bytes.data(), static_cast<DWORD>(ahead.bytes.size()), &count, nullptr))
        ahead.count = count;
    return ahead.count != 0;
}

char* ReadLine(const FileHandle& file, char* szLine, int cbLine) {
    int length = 0;
    while (length < cbLine - 1) {
        const int c = FGetc(file);
        if (c < 0 && length == 0)
            return nullptr;
        if (c < 0 || c == ascii::CR)
            break;
        if (c != ascii::LF)
            szLine[length++] = static_cast<char>(c);
    }
    szLine[length] = 0;
    return szLine;
}

} // namespace

FileHandle FopenRead(const char* szName) {
    return Open(openRead, szName);
}

FileHandle FCreate(const char* szName) {
    return Open(openNew, szName);
}

FileHandle FopenAppend(const char* szName) {
    return Guarded(openAppend.label, FileHandle(), [&] {
        FileHandle file = Opened(openAppend, szName);
        if (file)
            SetFilePointer(file.get(), 0, nullptr, FILE_END);
        return file;
    });
}

void Fclose(FileHandle& file) {
    Guarded("Transfer: Fclose", [&] { file.reset(); });
}

DWORD Fwrite(const FileHandle& file, const void* lpBytes, DWORD cbBytes) {
    return Guarded("Transfer: Fwrite", DWORD{0}, [&] {
        DWORD done = 0;
        return WriteFile(file.get(), lpBytes, cbBytes, &done, nullptr) ? done : cbBytes;
    });
}

DWORD Fread(const FileHandle& file, void* lpBytes, DWORD cbBytes) {
    return Guarded("Transfer: Fread", DWORD{0}, [&] {
        DWORD done = 0;
        return ReadFile(file.get(), lpBytes, cbBytes, &done, nullptr) ? done : cbBytes;
    });
}

int FGetc(const FileHandle& file) {
    return Guarded("Transfer: FGetc", -1, [&] {
        unsigned char c = 0;
        DWORD done = 0;
        return ReadFile(file.get(), &c, 1, &done, nullptr) && done ? int{c} : -1;
    });
}

int FGetc(const FileHandle& file, ReadAhead& ahead) {
    return Guarded("Transfer: FGetc", -1, [&] {
        if (ahead.next == ahead.count && !Refill(file, ahead))
            return -1;
        return int{ahead.bytes[ahead.next++]};
    });
}

char* Fgets(const FileHandle& file, char* szLine, int cbLine) {
    if (cbLine <= 0)
        return nullptr;
    return Guarded("Transfer: Fgets", static_cast<char*>(nullptr),
                   [&] { return ReadLine(file, szLine, cbLine); });
}

DWORD Fseek(const FileHandle& file, LONG position, DWORD method) {
    return Guarded("Transfer: Fseek", DWORD{INVALID_SET_FILE_POINTER},
                   [&] { return SetFilePointer(file.get(), position, nullptr, method); });
}

DWORD Fsize(const FileHandle& file) {
    return GetFileSize(file.get(), nullptr);
}
