#include "clipboard.h"

#include "core/handle.h"
#include "selection.h"

namespace {

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

SharedMemory SelectionMemory(const COMCTL& record) {
    const size_t size = SelectionTextRoom(record);
    SharedMemory memory(GlobalAlloc(GMEM_MOVEABLE | GMEM_SHARE | GMEM_ZEROINIT, size));
    if (auto* text = memory ? static_cast<char*>(GlobalLock(memory.get())) : nullptr) {
        SelectionText(record, text, size);
        GlobalUnlock(memory.get());
    }
    return memory;
}

} // namespace

bool CopySelection(COMCTL& record) {
    SharedMemory memory = SelectionMemory(record);
    if (!memory)
        return false;
    const OpenedClipboard clipboard(record.hWnd);
    if (!clipboard.IsOpen() || !SetClipboardData(CF_TEXT, memory.get()))
        return false;
    memory.release(); // the clipboard's from here on
    return true;
}
