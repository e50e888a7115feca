#include "scriptedobject.h"

#include "core/idle.h"
#include "core/input.h"
#include "core/live.h"
#include "core/notify.h"
#include "core/portmonitor.h"
#include "core/portread.h"
#include "core/rooms.h"
#include "core/Tc-lkup.h"
#include "core/writer.h"
#include "diagnostics/wiretap.h"
#include "platform.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

constexpr int noByte = -1;
ScriptedObject* present;

void Run(const std::function<void()>& hostCode) {
    if (hostCode)
        hostCode();
}

} // namespace

// What the engines call, on the object that is there.
struct Doubles {
    static int Read(char* buffer) {
        auto& line = present->line_;
        const int next = line.empty() ? noByte : line.front();
        if (!line.empty())
            line.pop_front();
        Run(present->onRead);
        if (next == noByte)
            return 0;
        *buffer = static_cast<char>(next);
        return 1;
    }

    static bool Idle(COMCTL* record, DWORD longestPause) {
        present->journal.push_back("idle " + std::to_string(longestPause));
        platform::AdvanceTick(std::min(longestPause, present->idleTakes));
        Run(present->onIdle);
        return IsLive(record);
    }

    static void Event(int code) {
        std::string entry = "event " + std::to_string(code);
        if (present->Exists())
            entry += " match " + std::to_string(GetLookUpMatch(present->Record()));
        present->journal.push_back(entry);
        Run(present->onEvent);
    }
};

int ReadInput(COMCTL&, void* lpBuffer, int) {
    return Doubles::Read(static_cast<char*>(lpBuffer));
}

void EchoInput(COMCTL&, const void* lpBytes, int cbBytes) {
    present->journal.push_back("echo " +
                               std::string(static_cast<const char*>(lpBytes), static_cast<size_t>(cbBytes)));
    Run(present->onEcho);
}

bool IdleLoop(COMCTL* record, IdleFor what, DWORD longestPause) {
    if (what != IdleFor::Input)
        present->journal.push_back("idle for something else");
    return Doubles::Idle(record, longestPause);
}

void Notify(HWND, int code) {
    Doubles::Event(code);
}

extern "C" void __cdecl WireTapTransfer(HWND hWnd, const char* szFormat, ...) {
    char text[WireTapTextSize];
    __builtin_ms_va_list arguments;
    __builtin_ms_va_start(arguments, szFormat);
    // The one format that the engines use.
    if (std::string_view(szFormat) != "%s")
        std::abort();
    std::snprintf(text, sizeof text, "%s", __builtin_va_arg(arguments, const char*));
    __builtin_ms_va_end(arguments);
    present->journal.push_back(std::string(RecordOf(hWnd) ? "log " : "log of a dead object ") + text);
}

// The rooms that the record owns and the engines never use.
COverlappedWrite::~COverlappedWrite() = default;
CMonitorThread::~CMonitorThread() = default;

ScriptedObject::ScriptedObject() : record_(std::make_unique<COMCTL>()) {
    static UINT_PTR handles = 0x10000;
    hWnd_ = reinterpret_cast<HWND>(handles += 4);
    record_->hWnd = hWnd_;
    record_->bPortOpen = 1;
    AddLiveObject(hWnd_, *record_);
    present = this;
}

ScriptedObject::~ScriptedObject() {
    Destroy();
    present = nullptr;
}

void ScriptedObject::Destroy() {
    RemoveLiveObject(hWnd_);
    record_.reset();
}

void ScriptedObject::Send(const std::string& bytes) {
    for (const char byte : bytes)
        line_.push_back(static_cast<unsigned char>(byte));
}

void ScriptedObject::Pause() {
    line_.push_back(noByte);
}

size_t ScriptedObject::Unread() const {
    return static_cast<size_t>(std::ranges::count_if(line_, [](int byte) { return byte != noByte; }));
}
