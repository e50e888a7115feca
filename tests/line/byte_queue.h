// Bytes in order of arrival, kept in one piece so that they go out by large writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

using Bytes = std::span<const std::uint8_t>;

class ByteQueue {
  public:
    std::size_t Size() const { return bytes_.size() - start_; }
    bool Empty() const { return Size() == 0; }
    Bytes Front(std::size_t count) const { return Bytes(bytes_).subspan(start_, count); }
    Bytes All() const { return Front(Size()); }

    void Push(Bytes bytes) {
        if (start_ > kWasteLimit)
            Compact();
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }

    void Pop(std::size_t count) {
        start_ += count;
        if (start_ == bytes_.size())
            Clear();
    }

    void Clear() {
        bytes_.clear();
        start_ = 0;
    }

  private:
    // So much spent room at the front is worth a move of the rest.
    static constexpr std::size_t kWasteLimit = 64 * 1024;

    void Compact() {
        bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(start_));
        start_ = 0;
    }

    std::vector<std::uint8_t> bytes_;
    std::size_t start_ = 0;
};
