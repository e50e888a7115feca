// What the terminal's engine calls upon, without a window and without a line: a picture that is painted as
// the window's is, a line that keeps what is sent, a journal of the rest.
#pragma once

#include "core/comctl.h"
#include "filedouble.h"

#include <functional>
#include <string>
#include <vector>

// What the window shows: the cells that were painted last.
struct Picture {
    std::vector<std::string> text;
    std::vector<std::string> color;
    bool operator==(const Picture&) const = default;
};

Picture PlanesOf(const COMCTL& record);

class TerminalDouble {
  public:
    TerminalDouble();
    ~TerminalDouble();
    TerminalDouble(const TerminalDouble&) = delete;
    TerminalDouble& operator=(const TerminalDouble&) = delete;

    FileDouble disk;
    Picture picture;

    // In order: "post", "flush", "paint all", "erase all", "follow 0", "scroll bars", "caret", "icon",
    // "restore size", "size", "sent", "fresh count", "line status", "tick".
    std::vector<std::string> journal;
    std::vector<std::string> messages;   // of the log
    std::vector<std::string> debugTexts; // for a debugger

    bool frameIsDue = true;       // nothing was painted a moment ago
    std::string sent;             // what the line took
    bool lineTakes = true;        // the line has room
    std::function<void()> onSent; // the host's code, in the event that a reply or its failure brings

    void Forget();
};
