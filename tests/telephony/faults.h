// Names of the service's functions as tests write them: with the A of the exported name or without it.
#pragma once

#include <string>

inline std::string PlainName(const std::string& function) {
    return function.ends_with('A') ? function.substr(0, function.size() - 1) : function;
}
