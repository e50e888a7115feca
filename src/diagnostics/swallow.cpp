#include "swallow.h"

#include <cstdio>

void SwallowException(const char* szPlace) noexcept {
    char text[256];
    std::snprintf(text, sizeof text, "Exception inside %s().", szPlace ? szPlace : "");
}
