// Structures that the caller sizes: a fixed part, and a variable part behind it that is given whole or not at
// all.
#pragma once

#include "service.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

// The head is filled with what is fixed when this is made; sizes and offsets come by the Put functions.
template <class Head>
class Structure {
  public:
    explicit Structure(const Head& fixed, DWORD fixedSize = sizeof(Head))
        : fixedSize_(fixedSize), bare_(fixed), full_(fixed) {}

    Head& Full() { return full_; }

    // Gives the offset.
    DWORD PutBytes(const void* bytes, DWORD count) {
        const DWORD offset = fixedSize_ + static_cast<DWORD>(tail_.size());
        const auto* first = static_cast<const std::byte*>(bytes);
        tail_.insert(tail_.end(), first, first + count);
        return offset;
    }
    void PutText(const std::string& text, DWORD& size, DWORD& offset) {
        size = static_cast<DWORD>(text.size() + 1);
        offset = PutBytes(text.c_str(), size);
    }
    // Overwrites what was put there.
    void Change(DWORD offset, const void* bytes, DWORD count) {
        std::memcpy(tail_.data() + (offset - fixedSize_), bytes, count);
    }

    // Is there room for the variable part?
    bool Fits(const Head* to) const { return to && Needed() <= to->dwTotalSize; }

    LONG Deliver(Head* to) const {
        if (!to)
            return Failure(LINEERR_INVALPOINTER);
        const DWORD total = to->dwTotalSize;
        const DWORD needed = Needed();
        if (total < fixedSize_) {
            if (total >= offsetof(Head, dwUsedSize))
                to->dwNeededSize = needed;
            return Failure(LINEERR_STRUCTURETOOSMALL);
        }
        const bool fits = Fits(to);
        std::memcpy(static_cast<void*>(to), fits ? &full_ : &bare_, fixedSize_);
        if (fits && !tail_.empty())
            std::memcpy(reinterpret_cast<std::byte*>(to) + fixedSize_, tail_.data(), tail_.size());
        to->dwTotalSize = total;
        to->dwNeededSize = needed;
        to->dwUsedSize = fits ? Whole() : fixedSize_;
        return 0;
    }

  private:
    DWORD Whole() const { return fixedSize_ + static_cast<DWORD>(tail_.size()); }
    DWORD Needed() const { return Whole() + MoreDemanded(); }

    DWORD fixedSize_;
    Head bare_;
    Head full_;
    std::vector<std::byte> tail_;
};
