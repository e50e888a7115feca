// A transfer without a worker's thread, a window or a dialog: a record, a simulated line, files in memory,
// and a journal of what the host and the user would see.
#pragma once

#include "scriptedobject.h"
#include "simulatedline.h"
#include "transfer/transfer.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

class TransferDouble {
  public:
    explicit TransferDouble(XferDirection direction, int nProtocol = Protocol_ZModem);
    ~TransferDouble();
    TransferDouble(const TransferDouble&) = delete;
    TransferDouble& operator=(const TransferDouble&) = delete;

    ScriptedObject object;
    WorkerLine line;
    TRANSFER transfer;

    // In order, the events: "prepare SOURCE DEST", "start", "block DONE", "finish", "abort", "size BYTES";
    // and the status line: "status TEXT". Blocks can be left out.
    std::vector<std::string> journal;
    bool keepBlocks = true;
    std::function<void(int status)> onEvent; // the host's code, in the event

    std::string lastStatus;

    // What the dialog shows, where transfer.hDlg says that there is one.
    std::map<int, std::string> items;
    int percent = -1;

    void Queue(const std::string& name); // a file to be sent, or the name for one to be received
};
