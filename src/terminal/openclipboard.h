// The clipboard, for the length of a block, and memory that can be given to it.
#pragma once

#include "core/handle.h"

struct SharedMemoryPolicy {
    using Value = HGLOBAL;
    static Value Invalid() { return nullptr; }
    static void Close(Value value) { GlobalFree(value); }
};

using SharedMemory = UniqueHandle<SharedMemoryPolicy>;

class OpenedClipboard {
  public:
    explicit OpenedClipboard(HWND hWnd) : isOpen_(OpenClipboard(hWnd)) {}
    ~OpenedClipboard() {
        if (isOpen_)
            CloseClipboard();
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;
    bool IsOpen() const { return isOpen_; }

  private:
    bool isOpen_;
};
