#include "xferpath.h"

#include "transfer.h"

#include <cstdio>

std::string MakeXferPath(const COMCTL& record, const std::string& name) {
    if (name.empty() || name.find('\\') != std::string::npos)
        return name;
    std::scoped_lock guard(TransferLock());
    std::string path = record.szXferPath;
    if (!path.empty() && path.back() != '\\')
        path += '\\';
    return path + name;
}

void StoreDestFilename(COMCTL& record, const char* szName) {
    std::string name = szName ? szName : "";
    if (record.nTransferType != XferUpload)
        name = MakeXferPath(record, name);
    std::scoped_lock guard(TransferLock());
    std::snprintf(record.szDestFilename, sizeof record.szDestFilename, "%s", name.c_str());
}
