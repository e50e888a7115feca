// The names of the next file: what the protocol proposes, what the queue holds, what the host makes of it.
#include "filestream.h"
#include "services.h"
#include "statusdialog.h"
#include "Tc-xfer.h"
#include "xferpath.h"

#include <cstdio>

namespace {

constexpr int untitledNames = 1000;

void Prepare(TRANSFER& transfer, std::string& source, std::string& dest) {
    TRANSFERNAMES names;
    names.lpSource = &source;
    names.lpDest = &dest;
    xfRequest(transfer.hWnd, Request_PrepareFile, reinterpret_cast<LPARAM>(&names));
    LeaveIfGone(transfer);
}

void ShowTitle(const TRANSFER& transfer, const char* szVerb, const std::string& name) {
    const std::string title =
        std::string(szVerb) + " " + name + " (" + ProtocolName(transfer.nProtocol) + ")";
    ShowTitle(transfer, title.c_str());
}

void LogNames(TRANSFER& transfer, const std::string& source, const std::string& dest) {
    LogTransfer(transfer, ("Source file=" + source).c_str());
    LogTransfer(transfer, ("Destination file=" + dest).c_str());
}

} // namespace

void xfPrepareReceive(TRANSFER& transfer, std::string& source, std::string& dest) {
    transfer.lBytesDone = 0;
    transfer.lFileSize = 0;
    if (source.empty())
        dest = source = xfUniqueFilename(transfer);
    else
        dest = MakeXferPath(*transfer.lpComCtl, source);
    Prepare(transfer, source, dest);
    ShowTitle(transfer, "Receiving", dest);
    LogNames(transfer, source, dest);
}

void xfPrepareSend(TRANSFER& transfer, std::string& source, std::string& dest) {
    transfer.lBytesDone = 0;
    transfer.lFileSize = 0;
    Prepare(transfer, source, dest);
    ShowTitle(transfer, "Sending", dest);
    xfStripPath(dest);
    LogNames(transfer, source, dest);
}

// After the last name has been found to exist it stands all the same, and that file is overwritten; kept so,
// see the tests.
std::string xfUniqueFilename(TRANSFER& transfer) {
    std::string path;
    for (int i = 0; i < untitledNames; ++i) {
        char name[24];
        std::snprintf(name, sizeof name, "UNTITLED.%03d", i);
        path = MakeXferPath(*transfer.lpComCtl, name);
        FileInfo info;
        if (!GetFileInfo(path, info))
            break;
    }
    LogTransfer(transfer, ("Unique filename:" + path + " after 1000").c_str());
    return path;
}

void xfStripPath(std::string& name) {
    size_t end = name.rfind('\\');
    if (end == std::string::npos)
        end = name.rfind(':');
    if (end != std::string::npos)
        name.erase(0, end + 1);
}
