// Both look-ups in their plainest form, to hold the engines against: the window is shifted byte by byte, each
// string is compared at each byte.
#pragma once

#include <windows.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace model {

inline int Lower(char c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : static_cast<unsigned char>(c);
}

// A counted comparison that ignores case and stops at a NUL.
inline bool EqualUntilNul(const char* a, const char* b, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (Lower(a[i]) != Lower(b[i]))
            return false;
        if (!a[i])
            return true;
    }
    return true;
}

inline bool EqualText(const std::string& a, const std::string& b) {
    return std::ranges::equal(a, b, [](char x, char y) { return Lower(x) == Lower(y); });
}

inline std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> pieces(1);
    for (const char c : text)
        if (c == separator)
            pieces.emplace_back();
        else
            pieces.back() += c;
    return pieces;
}

struct Found {
    int match;
    std::string collected;
    bool operator==(const Found&) const = default;
};

class PassiveLookUp {
  public:
    PassiveLookUp(std::vector<std::string> strings, size_t collect, DWORD timeOut, DWORD now)
        : strings_(std::move(strings)), collect_(collect), timeOut_(timeOut), start_(now) {
        size_t longest = 0;
        for (const std::string& text : strings_)
            longest = std::max(longest, text.size());
        window_.assign(longest, '\0');
    }

    std::optional<Found> Feed(char c, DWORD now) {
        if (window_.empty())
            return {};
        if (c) {
            window_.erase(0, 1);
            window_ += c;
            if (collected_.size() < collect_)
                collected_ += c;
        }
        const int match = Match();
        const bool ends = match != -1 || (collect_ && collected_.size() >= collect_) ||
                          (timeOut_ && now - start_ > timeOut_);
        if (!ends)
            return {};
        Found found = {match, collected_};
        if (match != -1) {
            const size_t cut = std::min(strings_[static_cast<size_t>(match)].size(), collected_.size());
            found.collected.resize(collected_.size() - cut);
        }
        collected_.clear();
        start_ = now;
        return found;
    }

  private:
    int Match() const {
        for (size_t i = 0; i < strings_.size(); ++i) {
            const std::string& text = strings_[i];
            const char* tail = window_.data() + window_.size() - std::min(text.size(), window_.size());
            if (!text.empty() && EqualUntilNul(tail, text.c_str(), text.size()))
                return static_cast<int>(i);
        }
        return -1;
    }

    std::vector<std::string> strings_;
    size_t collect_;
    DWORD timeOut_;
    DWORD start_;
    std::string window_;
    std::string collected_;
};

// What a blocking look-up finds in a line that never pauses, for an output of size bytes (0: none).
struct Until {
    int index = -1;
    std::string output;
    size_t read = 0;
};

inline Until LookUpUntil(std::vector<std::string> strings, const std::string& line, size_t size) {
    constexpr size_t most = 49;
    strings.resize(std::min(strings.size(), most));
    Until until;
    std::string seen;
    while (until.read < line.size() && until.index == -1 && (!size || until.read < size)) {
        seen += line[until.read++];
        for (size_t i = 0; i < strings.size() && until.index == -1; ++i)
            if (seen.size() >= strings[i].size() &&
                EqualText(seen.substr(seen.size() - strings[i].size()), strings[i]))
                until.index = static_cast<int>(i);
    }
    until.output = size ? seen.substr(0, size - 1) : "";
    return until;
}

} // namespace model
