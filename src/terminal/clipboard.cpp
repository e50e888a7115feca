#include "clipboard.h"

#include "openclipboard.h"
#include "selection.h"

namespace {

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
