#include "queue.h"

#include "xferpath.h"

#include <algorithm>
#include <cstring>
#include <new>

bool QueueFile(COMCTL& record, const char* szName) {
    try {
        const std::string name = MakeXferPath(record, szName ? szName : "");
        std::scoped_lock guard(TransferLock());
        if (record.bFileListEnded)
            return false;
        auto& list = record.lpFileList;
        if (list.empty())
            record.cFiles = 0;
        list.reserve(list.size() + name.size() + 1);
        list.insert(list.end(), name.c_str(), name.c_str() + name.size() + 1);
        ++record.cFiles;
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

std::string FirstQueuedFile(const COMCTL& record) {
    std::scoped_lock guard(TransferLock());
    return record.lpFileList.empty() ? std::string() : std::string(record.lpFileList.data());
}

std::string FirstQueuedFileOrEnd(COMCTL& record) {
    std::scoped_lock guard(TransferLock());
    record.bFileListEnded = record.lpFileList.empty();
    return record.bFileListEnded ? std::string() : std::string(record.lpFileList.data());
}

void ReopenQueue(COMCTL& record) {
    std::scoped_lock guard(TransferLock());
    record.bFileListEnded = false;
}

void DropFirstQueuedFile(COMCTL& record) {
    std::scoped_lock guard(TransferLock());
    auto& list = record.lpFileList;
    if (list.empty() || record.cFiles <= 1) {
        list.clear();
        record.cFiles = 0;
        return;
    }
    const auto end = std::ranges::find(list, '\0');
    list.erase(list.begin(), end == list.end() ? end : end + 1);
    --record.cFiles;
}

void DropQueuedFiles(COMCTL& record) {
    while (record.cFiles > 0)
        DropFirstQueuedFile(record);
}
