// Things that the service names by numbers. A number is never 0 and never used again, not even for another
// kind.
#pragma once

#include <windows.h>

#include <map>
#include <utility>

inline DWORD NextHandle() {
    static DWORD last = 0x10000;
    return ++last;
}

template <class Thing>
class HandleTable {
  public:
    DWORD Add(Thing thing) {
        const DWORD handle = NextHandle();
        things_.emplace(handle, std::move(thing));
        return handle;
    }
    Thing* Find(DWORD handle) {
        const auto found = things_.find(handle);
        return found == things_.end() ? nullptr : &found->second;
    }
    bool Has(DWORD handle) const { return things_.count(handle) != 0; }
    void Remove(DWORD handle) { things_.erase(handle); }
    void Clear() { things_.clear(); }
    DWORD Count() const { return static_cast<DWORD>(things_.size()); }
    // In the order of their making. Nothing may be added or removed in such a walk.
    auto begin() { return things_.begin(); }
    auto end() { return things_.end(); }

  private:
    std::map<DWORD, Thing> things_;
};
