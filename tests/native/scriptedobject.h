// A comm object without a window: a record in the table of live objects, with a scripted line, and a journal
// of what the engines did around it.
#pragma once

#include "core/comctl.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

class ScriptedObject {
  public:
    ScriptedObject();
    ~ScriptedObject();
    ScriptedObject(const ScriptedObject&) = delete;
    ScriptedObject& operator=(const ScriptedObject&) = delete;

    COMCTL& Record() { return *record_; }
    COMCTL* Pointer() { return record_.get(); }
    HWND Handle() { return hWnd_; }
    bool Exists() const { return record_ != nullptr; }
    void Destroy();

    // What the line brings, byte by byte; at a pause it brings nothing and the engine takes a turn of the
    // idle loop. After the last byte there are only pauses.
    void Send(const std::string& bytes);
    void Pause();
    size_t Unread() const;

    // What happened, in order: "idle 50", "echo x", "event 8 match 0", "log ...", "download ''".
    std::vector<std::string> journal;

    // The host's code: in the middle of a read, of the echo, of a turn of the idle loop, of an event.
    std::function<void()> onRead;
    std::function<void()> onEcho;
    std::function<void()> onIdle;
    std::function<void()> onEvent;
    DWORD idleTakes = 50; // ms of the clock that a turn takes, at the most what was asked for

  private:
    friend struct Doubles;

    HWND hWnd_;
    std::unique_ptr<COMCTL> record_;
    std::deque<int> line_;
};
