// A structure of the telephony service whose variable part the service sizes: asked once with the size at
// hand, and again for as long as the service needs more.
#pragma once

#include "tapiservice.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

template <class Head>
class TapiBlock {
  public:
    explicit TapiBlock(DWORD size = sizeof(Head)) { Grow(size); }

    Head* operator->() { return Get(); }
    const Head* operator->() const { return reinterpret_cast<const Head*>(bytes_.data()); }
    Head* Get() { return reinterpret_cast<Head*>(bytes_.data()); }

    // ask(Head*) calls the service and gives its result. A service that never has enough is given up.
    template <class Ask>
    LONG Fill(Ask&& ask) {
        LONG result = LINEERR_OPERATIONFAILED;
        for (int turn = 0; turn < turns; ++turn) {
            result = ask(Get());
            const bool tooSmall = result == static_cast<LONG>(LINEERR_STRUCTURETOOSMALL) || result == 0;
            const DWORD needed = Get()->dwNeededSize;
            if (!tooSmall || needed <= bytes_.size() || needed > largest)
                return result;
            Grow(needed);
        }
        return result == 0 ? static_cast<LONG>(LINEERR_STRUCTURETOOSMALL) : result;
    }

    // Bytes of the variable part; null when they don't lie in the block.
    const std::byte* At(DWORD offset, DWORD size) const {
        return offset <= bytes_.size() && size <= bytes_.size() - offset ? bytes_.data() + offset : nullptr;
    }

    // A text of the variable part, to its NUL or its end; empty when it doesn't lie in the block.
    std::string TextAt(DWORD offset, DWORD size) const {
        const auto* text = reinterpret_cast<const char*>(At(offset, size));
        return text ? std::string(text, strnlen(text, size)) : std::string();
    }

  private:
    static constexpr int turns = 8;
    static constexpr DWORD largest = 16 << 20;

    void Grow(DWORD size) {
        bytes_.assign(size, std::byte{});
        Get()->dwTotalSize = size;
    }

    std::vector<std::byte> bytes_;
};
