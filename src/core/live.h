// The table of live comm objects: the one answer to "is this handle still ours".
//
// The window procedure adds an object when its record hangs on the window and removes it before the record
// is freed. Every flat function asks here first, from any thread; the table's own lock guards it. A record
// that is handed out stays valid only on the window's thread, and only until the host may have run.
#pragma once

#include "comctl.h"

// The record of a live comm object, or null for a null, foreign or dead handle.
COMCTL* RecordOf(HWND hWnd);

// Whether this very record is still in the table. The pointer is compared, never followed.
bool IsLive(const COMCTL* record);

// The object whose handle has these 16 low bits, or null.
HWND LiveObjectWithLowWord(WORD low);

void AddLiveObject(HWND hWnd, COMCTL& record);
void RemoveLiveObject(HWND hWnd);
int LiveObjectCount();

// Remembers an object over a call that may run the host.
class ObjectWatch {
  public:
    explicit ObjectWatch(const COMCTL& record) : hWnd_(record.hWnd), record_(&record) {}
    bool Alive() const { return RecordOf(hWnd_) == record_; }
    bool Gone() const { return !Alive(); }

  private:
    HWND hWnd_;
    const COMCTL* record_;
};
