// A log as it is when the module has just been loaded, with no file yet.
#pragma once

#include "diagnostics/wiretap.h"
#include "logfiles.h"

#include "core/live.h"

class LogTest : public testing::Test {
  protected:
    void SetUp() override { StartAnew(); }
    void TearDown() override { StartAnew(); }

    static void StartAnew() {
        ResetWireTap();
        logfiles::RemoveLog();
    }
};

// A record among the live ones, under a handle that is no window.
class LiveRecord {
  public:
    LiveRecord() {
        record_.hWnd = reinterpret_cast<HWND>(ULONG_PTR{0x5EED});
        lstrcpynA(record_.szName, "Comm7", NameSize);
        AddLiveObject(record_.hWnd, record_);
    }
    ~LiveRecord() { RemoveLiveObject(record_.hWnd); }
    LiveRecord(const LiveRecord&) = delete;
    LiveRecord& operator=(const LiveRecord&) = delete;

    HWND Handle() const { return record_.hWnd; }
    COMCTL* operator->() { return &record_; }
    COMCTL& operator*() { return record_; }

  private:
    COMCTL record_;
};
