#include "wiretap.h"

#include "core/handle.h"
#include "core/live.h"
#include "logpath.h"
#include "moduleversion.h"
#include "swallow.h"
#include "wiretaptext.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

// All but the flag belongs to the thread that holds the flag.
struct WireTapState {
    std::atomic_flag bInWireTap; // a message is being written
    LogPath path = {};           // empty before the first message
    DWORD startTick = 0;         // ms, of the first message; read by nobody
    std::string banner;          // empty until the module's version could be read
};

WireTapState state;

enum class Outcome { Written, SilentForGood };

struct Message {
    const char* szText;
    std::string_view data;
    bool hasData; // data was given, though there may be none in it
};

std::string TimeStamp() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d ", now.wHour, now.wMinute, now.wSecond,
                  now.wMilliseconds);
    return text;
}

std::string DataText(const Message& message) {
    if (!message.data.empty())
        return DataLines(std::strlen(message.szText), message.data);
    return message.hasData ? "\"\"\r\n" : "\r\n";
}

const std::string& Banner() {
    if (state.banner.empty())
        state.banner = VersionBanner();
    return state.banner;
}

void NoteFirstMessage() {
    if (state.path.front())
        return;
    state.path = PathInWindowsFolder("wiretap.txt");
    state.startTick = GetTickCount();
}

// Write errors are ignored: there is nowhere to report them.
void Write(const FileHandle& file, const std::string& text) {
    DWORD written = 0;
    WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

Outcome LogMessage(HWND hWnd, const Message& message) {
    if (IsWindow(hWnd) && !RecordOf(hWnd))
        return Outcome::SilentForGood;
    NoteFirstMessage();
    const FileHandle file(CreateFileA(state.path.data(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return Outcome::SilentForGood;

    const std::string time = TimeStamp();
    const std::string line = time + message.szText;
    // The banner has the same length every time, so it overwrites itself and shows the latest message's time.
    Write(file, time + Banner());
    SetFilePointer(file.get(), 0, nullptr, FILE_END);
    OutputDebugStringA((line + "\r\n").c_str());
    Write(file, line + DataText(message));
    return Outcome::Written;
}

Outcome LogMessageOrDropIt(HWND hWnd, const Message& message) noexcept {
    try {
        return LogMessage(hWnd, message);
    } catch (...) {
        SwallowException("WireTapMsg");
        return Outcome::Written;
    }
}

template <auto Field>
int StoreSwitch(HWND hWnd, int value) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return 0;
    record->*Field = value;
    return 1;
}

bool TapsTransfer(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    return record && record->bWireTapTransfer;
}

// In the system's 8-bit code page, with the NUL. Empty if it can't be converted.
std::string EightBitText(const wchar_t* szText) {
    const int size = WideCharToMultiByte(CP_ACP, 0, szText, -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, szText, -1, text.data(), size, nullptr, nullptr);
    return text;
}

} // namespace

void TARNAPI WireTapMsg(HWND hWnd, int, const char* szText, const void* lpData, DWORD cbData) {
    if (state.bInWireTap.test_and_set())
        return;
    const size_t size = lpData ? cbData : 0;
    const Message message = {
        szText ? szText : "", {static_cast<const char*>(lpData), size}, lpData != nullptr};
    // Kept on purpose: a message that fails early leaves the flag set, and the log stays silent.
    if (LogMessageOrDropIt(hWnd, message) == Outcome::SilentForGood)
        return;
    state.bInWireTap.clear();
}

void TARNAPI WireTapMsgW(HWND hWnd, int nClass, const char* szText, const wchar_t* szData) {
    if (!szData)
        return WireTapMsg(hWnd, nClass, szText, nullptr, 0);
    std::string text;
    try {
        text = EightBitText(szData);
    } catch (const std::bad_alloc&) {
        return WireTapMsg(hWnd, nClass, szText, nullptr, 0);
    }
    const size_t length = text.empty() ? 0 : text.size() - 1;
    WireTapMsg(hWnd, nClass, szText, text.data(), static_cast<DWORD>(length));
}

void __cdecl WireTapTransfer(HWND hWnd, const char* szFormat, ...) {
    if (!szFormat || !TapsTransfer(hWnd))
        return;
    char text[WireTapTextSize] = {};
    va_list arguments;
    va_start(arguments, szFormat);
    std::vsnprintf(text, sizeof text, szFormat, arguments);
    va_end(arguments);
    WireTapMsg(hWnd, WireTapText, text, nullptr, 0);
}

void TARNAPI WireTapTransferData(HWND hWnd, const char* szText, const void* lpData, DWORD cbData) {
    if (TapsTransfer(hWnd))
        WireTapMsg(hWnd, WireTapText, szText, lpData, cbData);
}

int TARNAPI SetWireTapInput(HWND hWnd, int bWireTap) {
    return StoreSwitch<&COMCTL::bWireTapInput>(hWnd, bWireTap);
}

int TARNAPI SetWireTapOutput(HWND hWnd, int bWireTap) {
    return StoreSwitch<&COMCTL::bWireTapOutput>(hWnd, bWireTap);
}

int TARNAPI SetWireTapTransfer(HWND hWnd, int bWireTap) {
    return StoreSwitch<&COMCTL::bWireTapTransfer>(hWnd, bWireTap);
}

void LogData(const COMCTL& record, const char* szVerb, const void* lpBytes, DWORD cbBytes) {
    LogData(record.hWnd, record.szName, szVerb, lpBytes, cbBytes);
}

void LogData(HWND hWnd, const char* szName, const char* szVerb, const void* lpBytes, DWORD cbBytes) {
    char text[NameSize + 64];
    std::snprintf(text, sizeof text, "%s %s %lu bytes: ", szName, szVerb, cbBytes);
    WireTapMsg(hWnd, WireTapData, text, lpBytes, cbBytes);
}

void LogText(const char* szText) {
    WireTapMsg(nullptr, WireTapText, szText, nullptr, 0);
}

void ResetWireTap() {
    state.path = {};
    state.startTick = 0;
    state.banner.clear();
    state.bInWireTap.clear();
}
