#include "live.h"

#include <algorithm>
#include <mutex>
#include <shared_mutex>

namespace {

struct LiveObject {
    HWND hWnd;
    COMCTL* record;
};

// A process has a handful of objects, so a short list beats a hash.
struct LiveTable {
    std::shared_mutex lock; // guards objects
    std::vector<LiveObject> objects;
};

LiveTable& Table() {
    static LiveTable table;
    return table;
}

} // namespace

COMCTL* RecordOf(HWND hWnd) {
    if (!hWnd)
        return nullptr;
    auto& table = Table();
    std::shared_lock guard(table.lock);
    const auto found = std::ranges::find(table.objects, hWnd, &LiveObject::hWnd);
    return found == table.objects.end() ? nullptr : found->record;
}

bool IsLive(const COMCTL* record) {
    if (!record)
        return false;
    auto& table = Table();
    std::shared_lock guard(table.lock);
    return std::ranges::find(table.objects, record, &LiveObject::record) != table.objects.end();
}

HWND LiveObjectWithLowWord(WORD low) {
    auto& table = Table();
    std::shared_lock guard(table.lock);
    for (const LiveObject& object : table.objects)
        if (LOWORD(reinterpret_cast<UINT_PTR>(object.hWnd)) == low)
            return object.hWnd;
    return nullptr;
}

void AddLiveObject(HWND hWnd, COMCTL& record) {
    auto& table = Table();
    std::unique_lock guard(table.lock);
    table.objects.push_back({hWnd, &record});
}

void RemoveLiveObject(HWND hWnd) {
    auto& table = Table();
    std::unique_lock guard(table.lock);
    std::erase_if(table.objects, [hWnd](const LiveObject& object) { return object.hWnd == hWnd; });
}

int LiveObjectCount() {
    auto& table = Table();
    std::shared_lock guard(table.lock);
    return static_cast<int>(table.objects.size());
}
