// The virtual line as the tests under Wine see it: COM5 is end a, COM6 is end b.
#pragma once

// Sockets come before the platform's header.
#include "line/cable.h"

#include "farend.h"
#include "host.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace host {

inline constexpr const char* nearPort = "COM5";

// How most modems are driven.
inline constexpr const char* hayesOptions =
    "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400\n";

class LineTest : public testing::Test {
  protected:
    static std::string ControlFile() {
        const char* folder = std::getenv("TARN_LINE_DIR");
        return std::string(folder ? folder : ".") + "\\control";
    }

    void SetUp() override { cable.Reset(); }

    Cable cable{ControlFile()};
};

} // namespace host
