#include "Tc-lkup.h"

#include "ascii.h"
#include "live.h"
#include "notify.h"
#include "rooms.h"
#include "TarnComm.h"
#include "wall.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

constexpr int noMatch = -1;
constexpr int windowSlide = 1024; // bytes that the window moves on before it is copied back

constexpr char Fold(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

int LongestString(const COMCTL& record) {
    int longest = 0;
    for (const auto& item : record.LookUpStrings)
        longest = std::max(longest, item->Length());
    return longest;
}

void AddItem(COMCTL& record, std::string_view text) {
    record.LookUpStrings.push_back(std::make_unique<CLookUpItem>(text));
    if (!text.empty())
        record.abLookUpLast[static_cast<BYTE>(Fold(text.back()))] = true;
}

void ClearItems(COMCTL& record) {
    record.LookUpStrings.clear();
    std::fill(std::begin(record.abLookUpLast), std::end(record.abLookUpLast), false);
}

int FindMatch(const COMCTL& record, const char* lpEnd, int cbAvailable) {
    int index = 0;
    for (const auto& item : record.LookUpStrings) {
        if (item->Matches(lpEnd, cbAvailable))
            return index;
        ++index;
    }
    return noMatch;
}

// The window lies in a longer block and moves along it, so that a byte costs no shift.
void MakeWindow(COMCTL& record, int size) {
    record.lpLookUpWindow.reset();
    record.cbLookUpWindow = 0;
    if (!size)
        return;
    record.lpLookUpWindow.reset(new (std::nothrow) char[static_cast<size_t>(size) + windowSlide]());
    if (!record.lpLookUpWindow)
        return;
    record.cbLookUpWindow = size;
    record.nLookUpWindowEnd = size;
}

void PutInWindow(COMCTL& record, char c) {
    char* block = record.lpLookUpWindow.get();
    const int size = record.cbLookUpWindow;
    if (record.nLookUpWindowEnd == size + windowSlide) {
        std::memmove(block, block + windowSlide, static_cast<size_t>(size));
        record.nLookUpWindowEnd = size;
    }
    block[record.nLookUpWindowEnd++] = c;
}

void MakeCollection(COMCTL& record) {
    record.lpLookUpInput.reset();
    if (!record.cbLookUpInputLen)
        return;
    record.lpLookUpInput.reset(new (std::nothrow) char[static_cast<size_t>(record.cbLookUpInputLen) + 1]());
    if (!record.lpLookUpInput)
        record.cbLookUpInputLen = 0;
}

void EmptyCollection(COMCTL& record) {
    record.cbLookUpInput = 0;
    if (record.lpLookUpInput)
        std::memset(record.lpLookUpInput.get(), 0, static_cast<size_t>(record.cbLookUpInputLen) + 1);
}

void Reset(COMCTL& record) {
    record.cbLookUpInput = 0;
    record.nLookUpMatch = noMatch;
    record.dwLookUpStart = GetTickCount();
    MakeWindow(record, LongestString(record));
    MakeCollection(record);
}

void Collect(COMCTL& record, char c) {
    if (record.cbLookUpInput < record.cbLookUpInputLen)
        record.lpLookUpInput[static_cast<size_t>(record.cbLookUpInput++)] = c;
}

bool CollectionIsFull(const COMCTL& record) {
    return record.cbLookUpInputLen && record.cbLookUpInput >= record.cbLookUpInputLen;
}

DWORD Elapsed(const COMCTL& record) {
    return GetTickCount() - record.dwLookUpStart;
}

bool TimeIsOver(const COMCTL& record) {
    return record.lLookUpTimeOut && Elapsed(record) > static_cast<DWORD>(record.lLookUpTimeOut);
}

// A string that was found is no part of what came before it.
void CutFoundString(COMCTL& record) {
    if (record.nLookUpMatch == noMatch || !record.lpLookUpInput)
        return;
    const int length = record.LookUpStrings[static_cast<size_t>(record.nLookUpMatch)]->Length();
    const int cut = std::min(length, record.cbLookUpInput);
    record.cbLookUpInput -= cut;
    std::memset(record.lpLookUpInput.get() + record.cbLookUpInput, 0, static_cast<size_t>(cut));
}

void Fire(COMCTL& record) {
    if (!record.lpControl || !upperRooms.fireLookUp) {
        Notify(record.hWnd, Event_Lookup);
        return;
    }
    const char* text = record.lpLookUpInput ? record.lpLookUpInput.get() : "";
    upperRooms.fireLookUp(record, text, record.lpLookUpInput ? record.cbLookUpInput : 0);
}

// False: the object is gone.
bool EndLookUp(COMCTL& record, int match) {
    const ObjectWatch watch(record);
    record.nLookUpMatch = match;
    CutFoundString(record);
    Fire(record);
    if (watch.Gone())
        return false;
    record.nLookUpMatch = noMatch;
    if (record.cbLookUpInputLen)
        EmptyCollection(record);
    record.dwLookUpStart = GetTickCount();
    return true;
}

} // namespace

CLookUpItem::CLookUpItem(std::string_view text)
    : lpszText_(std::make_unique<char[]>(text.size() + 1)), cbText_(static_cast<int>(text.size())) {
    std::ranges::transform(text, lpszText_.get(), Fold);
}

bool CLookUpItem::Matches(const char* lpEnd, int cbAvailable) const {
    if (!cbText_ || cbAvailable < cbText_)
        return false;
    const char* text = lpEnd - cbText_;
    for (int i = cbText_ - 1; i >= 0; --i)
        if (Fold(text[i]) != lpszText_[static_cast<size_t>(i)])
            return false;
    return true;
}

bool FeedLookUp(COMCTL& record, char c) {
    if (!record.lpLookUpWindow)
        return true;
    if (c != ascii::NUL) {
        PutInWindow(record, c);
        Collect(record, c);
    }
    const char* end = record.lpLookUpWindow.get() + record.nLookUpWindowEnd;
    if (record.abLookUpLast[static_cast<BYTE>(Fold(end[-1]))]) {
        const int match = FindMatch(record, end, record.cbLookUpWindow);
        if (match != noMatch)
            return EndLookUp(record, match);
    }
    if (CollectionIsFull(record) || TimeIsOver(record))
        return EndLookUp(record, noMatch);
    return true;
}

bool LookUpTurnIsDue(const COMCTL& record) {
    return record.lLookUpTimeOut && Elapsed(record) >= static_cast<DWORD>(record.lLookUpTimeOut);
}

int GetLookUpMatch(const COMCTL& record) {
    return record.nLookUpMatch;
}

int TARNAPI AddLookUpString(COMCTL* lpComCtl, const char* szText, char cSeparator) {
    return BehindWall("AddLookUpString", [&]() -> int {
        if (!IsLive(lpComCtl) || !szText)
            return 0;
        const std::string_view text(szText);
        AddItem(*lpComCtl, text.substr(0, text.find(cSeparator)));
        return 1;
    });
}

int TARNAPI ClearLookUpStrings(COMCTL* lpComCtl) {
    if (!IsLive(lpComCtl))
        return 0;
    ClearItems(*lpComCtl);
    return 1;
}

int TARNAPI LookUpChar(COMCTL* lpComCtl, char c) {
    if (IsLive(lpComCtl))
        FeedLookUp(*lpComCtl, c);
    return 0;
}

int TARNAPI MatchLookUpString(COMCTL* lpComCtl, const char* lpEnd, int cbAvailable) {
    return IsLive(lpComCtl) && lpEnd ? FindMatch(*lpComCtl, lpEnd, cbAvailable) : noMatch;
}

void TARNAPI SetLookUpText(HWND hWnd, const char* szText, char cSeparator) {
    BehindWall("SetLookUpText", [&] {
        COMCTL* record = RecordOf(hWnd);
        if (!record || !szText)
            return;
        ClearItems(*record);
        std::string_view rest(szText);
        for (size_t at = rest.find(cSeparator); at != rest.npos; at = rest.find(cSeparator)) {
            AddItem(*record, rest.substr(0, at));
            rest.remove_prefix(at + 1);
        }
        AddItem(*record, rest); // the last piece, an empty one too
        Reset(*record);
    });
}

void TARNAPI SetLookUpSeparator(HWND hWnd, char cSeparator) {
    if (COMCTL* record = RecordOf(hWnd))
        record->chLookUpSeparator = cSeparator;
}

char TARNAPI GetLookUpSeparator(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    return record ? record->chLookUpSeparator : '\0';
}

void TARNAPI SetLookUpTimeOut(HWND hWnd, LONG lTimeOut) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return;
    record->lLookUpTimeOut = lTimeOut;
    Reset(*record);
}

LONG TARNAPI GetLookUpTimeOut(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    return record ? record->lLookUpTimeOut : 0;
}

void TARNAPI SetLookUpInputLen(HWND hWnd, int cbInput) {
    COMCTL* record = RecordOf(hWnd);
    if (!record)
        return;
    record->cbLookUpInputLen = std::max(cbInput, 0);
    Reset(*record);
}
