// Texts for the blocking look-up: each with its NUL, an empty one at the end.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

inline std::string LookUpListOf(std::string texts, char separator) {
    std::ranges::replace(texts, separator, '\0');
    return texts + '\0';
}

// The text of an index that the look-up gave.
inline std::string_view LookUpEntry(const std::string& list, int index) {
    const char* entry = list.c_str();
    for (; index > 0; --index)
        entry += std::strlen(entry) + 1;
    return entry;
}
