// Memory that is out. Belongs to a program that links memorylimit.cpp, whose `new` it is.
#pragma once

#include <cstddef>

namespace host {

// While it lives, what its thread asks for in more bytes than that is not to be had. One lives at a time.
class MemoryLimit {
  public:
    explicit MemoryLimit(size_t bytes);
    ~MemoryLimit();
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

    int Refusals() const; // so far; a test that sees none proves nothing
};

} // namespace host
