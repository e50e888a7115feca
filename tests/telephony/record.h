// Arguments as the record shows them.
#pragma once

#include <windows.h>

#include <sstream>
#include <string>

inline std::string TextOf(const char* text) {
    return text ? text : "";
}

inline std::string Hex(DWORD value) {
    std::ostringstream text;
    text << std::hex << value;
    return text.str();
}

// One "name=value".
inline std::string Argument(const char* name, const std::string& value) {
    return std::string(" ") + name + "=" + value;
}
inline std::string Argument(const char* name, DWORD value) {
    return Argument(name, std::to_string(value));
}
