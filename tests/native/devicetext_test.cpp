// A line's configuration as letters and back.
#include "caseprint.h"
#include "modem/devicetext.h"

#include <string>

namespace {

std::vector<std::byte> Bytes(const std::string& text) {
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}

struct DeviceTextCase {
    const char* name;
    std::string bytes;
    const char* text;
};

const DeviceTextCase pairs[] = {
    {"Nothing", "", ""},
    {"Zero", std::string(1, '\0'), "AA"},
    {"AllBits", "\xFF", "PP"},
    {"HighHalfFirst", "\x75", "HF"},
    {"LowHalfAlone", "\x0F", "AP"},
    {"HighHalfAlone", "\xF0", "PA"},
    {"InOrder", std::string("\x01\x00\x80", 3), "ABAAIA"},
};

class DeviceText : public testing::TestWithParam<DeviceTextCase> {};

TEST_P(DeviceText, GoesOutAndComesBack) {
    EXPECT_EQ(DeviceTextOf(Bytes(GetParam().bytes)), GetParam().text);
    EXPECT_EQ(BytesOfDeviceText(GetParam().text), Bytes(GetParam().bytes));
}

RUN_TABLE(DeviceText, pairs);

// Texts that no configuration gives.
const DeviceTextCase strangers[] = {
    {"LastLetterOfAnOddNumberIsLost", "\x75", "HFH"},
    {"OneLetterIsNoByte", "", "H"},
    {"BehindP", "\x11", "AR"},              // 0 * 16 + 17
    {"CarryIntoTheHighHalf", "\x20", "BQ"}, // 16 + 16
    {"SmallLetters", "\x20", "aa"},         // 32 * 16 + 32
    {"BelowA", "\xFF", "A@"},               // -1
    {"Digits", "\xDF", "00"},               // -17 * 16 - 17
    {"EightBits", "\x3E", "A\x7F"},
    {"HighestByte", "\xBE", "A\xFF"},
};

class StrangeDeviceText : public testing::TestWithParam<DeviceTextCase> {};

TEST_P(StrangeDeviceText, GivesWhatTheArithmeticGives) {
    EXPECT_EQ(BytesOfDeviceText(GetParam().text), Bytes(GetParam().bytes));
}

RUN_TABLE(StrangeDeviceText, strangers);

TEST(DeviceTexts, EveryByteComesBack) {
    std::vector<std::byte> all;
    for (unsigned value = 0; value < 256; ++value)
        all.push_back(static_cast<std::byte>(value));
    const std::string text = DeviceTextOf(all);
    EXPECT_EQ(text.size(), 512u);
    EXPECT_EQ(text.find_first_not_of("ABCDEFGHIJKLMNOP"), text.npos);
    EXPECT_EQ(BytesOfDeviceText(text), all);
}

} // namespace
