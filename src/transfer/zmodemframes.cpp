#include "zmodemframes.h"

#include <array>
#include <cstddef>

namespace {

constexpr auto names = std::to_array<const char*>({
    "No Response to Error Correction Request",
    "No Carrier Detect",
    "timeout",
    "error",
    "ZRQINIT",
    "ZRINIT",
    "ZSINIT",
    "ZACK",
    "ZFILE",
    "ZSKIP",
    "ZNAK",
    "ZABORT",
    "ZFIN",
    "ZRPOS",
    "ZDATA",
    "ZEOF",
    "ZFERR",
    "ZCRC",
    "ZCHALLENGE",
    "ZCOMPL",
    "ZCAN",
    "ZFREECNT",
    "ZCOMMAND",
    "ZSTDERR",
    "xxxxx",
});
static_assert(names.size() == LastNamedFrame - FirstNamedFrame + 1);

constexpr std::array endNames = {"ZCRCE", "ZCRCG", "ZCRCQ", "ZCRCW"};
static_assert((ZCRCE & 3) == 0 && (ZCRCG & 3) == 1 && (ZCRCQ & 3) == 2 && (ZCRCW & 3) == 3);

} // namespace

const char* FrameName(int type) {
    if (type < FirstNamedFrame || type > LastNamedFrame)
        return names.back();
    return names[static_cast<size_t>(type - FirstNamedFrame)];
}

const char* SubpacketEndName(int end) {
    return endNames[static_cast<size_t>(end & 3)];
}
