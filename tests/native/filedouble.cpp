#include "filedouble.h"

#include <cstdlib>

namespace {

FileDouble* present;

constexpr int accessBits = 3; // of the flags of _lopen

} // namespace

FileDouble::FileDouble() {
    present = this;
}

FileDouble::~FileDouble() {
    present = nullptr;
}

HFILE FileDouble::Open(const std::string& name, bool writes) {
    open_[nextFile_] = {name, 0, writes};
    return nextFile_++;
}

void FileDouble::Write(OpenFile& file, const std::string& bytes) {
    std::string& contents = files[file.name];
    if (contents.size() < file.position + bytes.size())
        contents.resize(file.position + bytes.size());
    contents.replace(file.position, bytes.size(), bytes);
    file.position += bytes.size();
}

struct FileCalls {
    static HFILE Open(const char* szPath, int flags) {
        present->journal.push_back("open " + std::string(szPath) + " " + std::to_string(flags));
        if (present->locked.contains(szPath) || !present->files.contains(szPath))
            return HFILE_ERROR;
        return present->Open(szPath, (flags & accessBits) != OF_READ);
    }

    static HFILE Create(const char* szPath, int attributes) {
        present->journal.push_back("create " + std::string(szPath) + " " + std::to_string(attributes));
        if (!present->creates)
            return HFILE_ERROR;
        present->files[szPath].clear();
        return present->Open(szPath, true);
    }

    // A file that isn't open is a mistake of the caller that no test wants to miss.
    static FileDouble::OpenFile& Opened(HFILE file) {
        if (!present->open_.contains(file))
            std::abort();
        return present->open_[file];
    }

    static void Close(HFILE file) {
        present->journal.push_back("close " + Opened(file).name);
        present->open_.erase(file);
    }

    static LONG SeekEnd(HFILE file) {
        FileDouble::OpenFile& opened = Opened(file);
        present->journal.push_back("end of " + opened.name);
        opened.position = present->files[opened.name].size();
        return static_cast<LONG>(opened.position);
    }

    static LONG Write(HFILE file, const char* bytes, size_t size) {
        FileDouble::OpenFile& opened = Opened(file);
        if (present->diskFull || !opened.writes)
            return HFILE_ERROR;
        present->Write(opened, std::string(bytes, size));
        return static_cast<LONG>(size);
    }
};

HFILE WINAPI _lopen(LPCSTR szPath, INT flags) {
    return FileCalls::Open(szPath, flags);
}

HFILE WINAPI _lcreat(LPCSTR szPath, INT attributes) {
    return FileCalls::Create(szPath, attributes);
}

HFILE WINAPI _lclose(HFILE file) {
    FileCalls::Close(file);
    return 0;
}

// The one seek that the engines know is that to the end.
LONG WINAPI _llseek(HFILE file, LONG offset, INT origin) {
    if (offset || origin != FILE_END)
        std::abort();
    return FileCalls::SeekEnd(file);
}

LONG WINAPI _hwrite(HFILE file, LPCSTR bytes, LONG size) {
    return FileCalls::Write(file, bytes, static_cast<size_t>(size));
}

UINT WINAPI _lwrite(HFILE file, LPCSTR bytes, UINT size) {
    return static_cast<UINT>(FileCalls::Write(file, bytes, size));
}
