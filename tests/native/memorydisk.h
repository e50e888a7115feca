// The files of a transfer in memory: what FileStream and the plain file calls do, with the faults that a disk
// can have.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

class MemoryDisk {
  public:
    MemoryDisk();
    ~MemoryDisk();
    MemoryDisk(const MemoryDisk&) = delete;
    MemoryDisk& operator=(const MemoryDisk&) = delete;

    static MemoryDisk& Present();

    struct File {
        std::string contents;
        int64_t modified = 0;
        unsigned mode = 0100644;
        int32_t told = -1; // its size for those who ask, in place of that of the contents
    };

    std::map<std::string, File> files;
    std::set<std::string> folders; // a name with a separator needs its folder here
    std::set<std::string> locked;  // can't be opened
    bool full = false;             // writes fail
    bool readOnly = false;         // nothing can be created
    bool closesFail = false;
    bool seeksFail = false;
    bool halfWrites = false; // plain writes take half of what they get
    int64_t now = 1000000000;

    // In order: "open x rb", "close x", "time x 5", "folder x".
    std::vector<std::string> journal;
};
