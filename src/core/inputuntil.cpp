// The blocking look-up: reads the line itself until one of the caller's strings has come in.
#include "deadline.h"
#include "diagnostics/wiretap.h"
#include "idle.h"
#include "input.h"
#include "live.h"
#include "TarnComm.h"
#include "wall.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace {

constexpr int notFound = -1;
constexpr int objectIsGone = 0;

struct LookUpEntry {
    const char* text;
    int length;
};

// What the caller looks for. One entry less than the table holds is used.
class LookUpTable {
  public:
    explicit LookUpTable(const char* list) {
        while (*list && count_ < size - 1) {
            const auto length = static_cast<int>(std::strlen(list));
            entries_[static_cast<size_t>(count_++)] = {list, length};
            longest_ = std::max(longest_, length);
            list += length + 1;
        }
    }

    int Longest() const { return longest_; }

    // The index of the first entry that the text before end ends with; seen is how much of it is there.
    int Find(const char* end, int seen) const {
        for (int i = 0; i < count_; ++i)
            if (Equals(entries_[static_cast<size_t>(i)], end, seen))
                return i;
        return notFound;
    }

  private:
    static constexpr int size = 50;

    static bool Equals(const LookUpEntry& entry, const char* end, int seen) {
        return entry.length <= seen &&
               CompareStringA(LOCALE_SYSTEM_DEFAULT, NORM_IGNORECASE, end - entry.length, entry.length,
                              entry.text, entry.length) == CSTR_EQUAL;
    }

    std::array<LookUpEntry, size> entries_ = {};
    int count_ = 0;
    int longest_ = 0;
};

// The caller's buffer: counts every byte, and keeps those that leave room for the closing NUL.
class OutputText {
  public:
    OutputText(char* buffer, int size) : buffer_(buffer), left_(std::max(size, 1)) {}

    bool Full() const { return buffer_ && !left_; }
    void Put(char c) {
        if (!buffer_)
            return;
        if (--left_)
            buffer_[length_++] = c;
    }
    void Close() {
        if (buffer_)
            buffer_[length_] = '\0';
    }

  private:
    char* buffer_;
    int left_;
    int length_ = 0;
};

int ReadUntil(COMCTL& record, const LookUpTable& table, OutputText& output) {
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    const int longest = table.Longest();
    const std::unique_ptr<char[]> window(new (std::nothrow) char[static_cast<size_t>(longest) + 1]());
    if (!window)
        return notFound;
    const Deadline deadline(record.lLookUpTimeOut);
    int seen = 0;
    for (bool passed = false; !passed && !output.Full() && watch.Alive();) {
        if (record.bShutDown || record.bDialCancel)
            break;
        char* last = window.get() + longest - 1;
        // One byte at a time: what follows the string belongs to the next reader.
        if (ReadInput(record, last, 1)) {
            if (watch.Alive())
                EchoInput(record, last, 1);
            output.Put(*last);
            seen = std::min(seen + 1, longest);
            const int found = table.Find(last + 1, seen);
            if (found != notFound)
                return found;
            std::memmove(window.get(), window.get() + 1, static_cast<size_t>(longest));
        } else if (watch.Gone() || !IdleLoop(&record, IdleFor::Input, std::min(IdlePause, deadline.Left()))) {
            break;
        }
        passed = deadline.Passed();
        if (passed && watch.Alive())
            WireTapTransfer(hWnd, "%s", "LookUpTimerExpired");
    }
    return notFound;
}

} // namespace

int TARNAPI InputUntilLookUp(HWND hWnd, const char* lpszList, char* lpOutput, int cbOutput) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return objectIsGone;
    int found = notFound; // what a failure behind the wall gives; 0 would be a string that came
    BehindWall("InputUntilLookUp", [&] {
        if (record->nBusy || !lpszList)
            return;
        const LookUpTable table(lpszList);
        if (!table.Longest())
            return;
        OutputText output(lpOutput, cbOutput);
        found = ReadUntil(*record, table, output);
        output.Close();
    });
    return found;
}

int TARNAPI DiscardUntilLookUp(HWND hWnd, const char* lpszList) {
    return InputUntilLookUp(hWnd, lpszList, nullptr, 0);
}
