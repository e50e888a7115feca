#include "keyboard.h"

#include "core/ascii.h"
#include "core/live.h"
#include "terminal.h"
#include "view.h"

#include <algorithm>
#include <cstring>

namespace {

bool Always(const COMCTL&) {
    return true;
}

bool ClearsScreen(const COMCTL& record) {
    return GetKeyState(VK_CONTROL) < 0 && record.nEmulation != Emulation_VT52;
}

bool KeypadSendsCodes(const COMCTL& record) {
    return !record.bKeypadNumeric;
}

struct KeyRow {
    WPARAM key;
    const char* bytes;
    bool (*applies)(const COMCTL& record);
};

constexpr KeyRow keyRows[] = {
    {VK_BACK, "\x08", Always},
    {VK_HOME, "\x1B[2J", ClearsScreen},
    {VK_LEFT, "\x1B[D", Always},
    {VK_UP, "\x1B[A", Always},
    {VK_RIGHT, "\x1B[C", Always},
    {VK_DOWN, "\x1B[B", Always},
    {VK_F1, "\x1BOP", Always},
    {VK_F2, "\x1BOQ", Always},
    {VK_F3, "\x1BOR", Always},
    {VK_F4, "\x1BOS", Always},
    {VK_NUMPAD0, "\x1B?p", KeypadSendsCodes},
    {VK_NUMPAD1, "\x1B?q", KeypadSendsCodes},
    {VK_NUMPAD2, "\x1B?r", KeypadSendsCodes},
    {VK_NUMPAD3, "\x1B?s", KeypadSendsCodes},
    {VK_NUMPAD4, "\x1B?t", KeypadSendsCodes},
    {VK_NUMPAD5, "\x1B?u", KeypadSendsCodes},
    {VK_NUMPAD6, "\x1B?v", KeypadSendsCodes},
    {VK_NUMPAD7, "\x1B?w", KeypadSendsCodes},
    {VK_NUMPAD8, "\x1B?x", KeypadSendsCodes},
    {VK_NUMPAD9, "\x1B?y", KeypadSendsCodes},
};

struct PageRow {
    WPARAM key;
    int code;
};

constexpr PageRow pageRows[] = {
    {VK_PRIOR, SB_PAGEUP},
    {VK_NEXT, SB_PAGEDOWN},
};

template <class Row, size_t Count>
const Row* RowOf(const Row (&rows)[Count], WPARAM key) {
    const Row* row = std::ranges::find(rows, key, &Row::key);
    return row == std::end(rows) ? nullptr : row;
}

bool SendsKeys(const COMCTL& record) {
    return record.nAutoProcess == 2 || record.nAutoProcess == 3;
}

// False: the object is gone.
bool SendWithEcho(COMCTL& record, const char* bytes, int count) {
    const ObjectWatch watch(record);
    TerminalReply(record, bytes, count);
    if (watch.Alive() && record.bEcho)
        WriteTerminal(record, bytes, count);
    return watch.Alive();
}

bool SendKey(COMCTL& record, WPARAM key) {
    const KeyRow* row = RowOf(keyRows, key);
    if (!row || !row->applies(record))
        return true;
    return SendWithEcho(record, row->bytes, static_cast<int>(std::strlen(row->bytes)));
}

// While scrolled back, ESC only leads back to the screen. Backspace has gone out as a key.
bool SendCharacter(COMCTL& record, char character) {
    if (character == ascii::BS)
        return true;
    if (character != ascii::ESC || record.nTopRow >= 0)
        return SendWithEcho(record, &character, 1);
    AutoScrollTerminal(record, ViewTrigger::BackToScreen);
    return true;
}

} // namespace

KeyDone OnKeyDown(COMCTL& record, WPARAM key) {
    if (SendsKeys(record) && record.nEmulation != Emulation_TTY) {
        if (const PageRow* row = RowOf(pageRows, key)) {
            ScrollVertically(record, row->code, 0);
            return KeyDone::Yes;
        }
        if (!SendKey(record, key))
            return KeyDone::Yes;
        // Its character comes next and has to find the view where it is now.
        if (key == VK_ESCAPE && record.nTopRow < 0)
            return KeyDone::No;
    }
    AutoScrollTerminal(record, ViewTrigger::Key);
    return KeyDone::No;
}

KeyDone OnChar(COMCTL& record, char character) {
    if (SendsKeys(record) && !SendCharacter(record, character))
        return KeyDone::Yes;
    AutoScrollTerminal(record, ViewTrigger::Key);
    return KeyDone::No;
}
