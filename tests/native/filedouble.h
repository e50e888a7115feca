// The platform's old file calls, over files in memory.
#pragma once

#include <windows.h>

#include <map>
#include <set>
#include <string>
#include <vector>

class FileDouble {
  public:
    FileDouble();
    ~FileDouble();
    FileDouble(const FileDouble&) = delete;
    FileDouble& operator=(const FileDouble&) = delete;

    std::map<std::string, std::string> files; // name, contents
    bool diskFull = false;                    // writes take nothing
    bool creates = true;                      // new files can be made
    std::set<std::string> locked;             // files that somebody else has open

    // What was asked for, in order: "open x 33", "create x 0", "end of x", "close x". Writes are not listed.
    std::vector<std::string> journal;

    size_t OpenFiles() const { return open_.size(); }

  private:
    friend struct FileCalls;

    struct OpenFile {
        std::string name;
        size_t position = 0;
        bool writes = false;
    };

    HFILE Open(const std::string& name, bool writes);
    void Write(OpenFile& file, const std::string& bytes);

    std::map<HFILE, OpenFile> open_;
    HFILE nextFile_ = 100;
};
