// The settings text, both ways.
#include "caseprint.h"
#include "core/settings.h"

#include <climits>

bool operator==(const LineSettings& a, const LineSettings& b) {
    return a.speed == b.speed && a.parity == b.parity && a.dataBits == b.dataBits && a.stopBits == b.stopBits;
}

void PrintTo(const LineSettings& settings, std::ostream* out) {
    *out << settings.speed << '/' << settings.parity << '/' << settings.dataBits << '/' << settings.stopBits;
}

namespace {

constexpr LineSettings untouched = {-7, -7, -7, -7};

struct ParseCase {
    const char* name;
    const char* text;
    LineSettings settings;
};

class SettingsParse : public testing::TestWithParam<ParseCase> {};

TEST_P(SettingsParse, FollowsTheTable) {
    LineSettings settings = untouched;
    EXPECT_TRUE(ParseSettings(GetParam().text, settings));
    EXPECT_EQ(settings, GetParam().settings);
}

const ParseCase parseCases[] = {
    {"Usual", "9600,n,8,1", {9600, 0, 8, 0}},
    {"Odd", "9600,o,8,1", {9600, 1, 8, 0}},
    {"Even", "9600,e,8,1", {9600, 2, 8, 0}},
    {"Mark", "9600,m,8,1", {9600, 3, 8, 0}},
    {"Space", "9600,s,8,1", {9600, 4, 8, 0}},
    {"SevenBits", "9600,n,7,1", {9600, 0, 7, 0}},
    {"SixBits", "9600,n,6,1", {9600, 0, 6, 0}},
    {"FiveBits", "9600,n,5,1", {9600, 0, 5, 0}},
    {"FourBits", "9600,n,4,1", {9600, 0, 4, 0}},
    {"OneAndAHalfStops", "9600,n,8,1.5", {9600, 0, 8, 1}},
    {"TwoStops", "9600,n,8,2", {9600, 0, 8, 2}},
    {"CaseFolds", "9600,N,8,1", {9600, 0, 8, 0}},
    {"BlanksForCommas", "9600 N 8 1", {9600, 0, 8, 0}},
    {"NothingBetween", "9600e71", {9600, 2, 7, 0}},
    {"NothingBetweenOneAndAHalf", "9600e71.5", {9600, 2, 7, 1}},
    {"BlanksAndTabsEverywhere", " \t9600 ,\tn , 8,1 ", {9600, 0, 8, 0}},
    {"ParityLeftOut", "9600,,8,1", {9600, -1, 8, 0}},
    {"SpeedLeftOut", ",n,8,1", {0, 0, 8, 0}},
    {"DataBitsLeftOut", "9600,n,,1", {9600, 0, -1, 0}},
    {"StopBitsLeftOut", "9600,n,8", {9600, 0, 8, -1}},
    {"StopBitsLeftOutBehindAComma", "9600,n,8,", {9600, 0, 8, -1}},
    {"SpeedAlone", "9600", {9600, -1, -1, -1}},
    {"AllLeftOut", ",,,", {0, -1, -1, -1}},
    {"Nothing", "", {0, -1, -1, -1}},
    {"BlanksAlone", "  \t ", {0, -1, -1, -1}},
    {"ParityAlone", "n", {0, 0, -1, -1}},
    {"ALaterFieldNeedsNoEarlierOne", "9600,8,1", {9600, -1, 8, 0}},
    {"StopBitsTakeWhatDataBitsLeave", "9600,n,1.5", {9600, 0, -1, 1}},
    {"LeadingZeros", "0009600,n,8,1", {9600, 0, 8, 0}},
    {"LargestSpeed", "2147483647,n,8,1", {INT_MAX, 0, 8, 0}},
    {"OneMoreThanTheLargestSpeed", "2147483648,n,8,1", {INT_MAX, 0, 8, 0}},
    {"SpeedOfNineteenDigits", "9999999999999999999", {INT_MAX, -1, -1, -1}},
    {"NineteenCharacters", "     9600,n,8,1.5  ", {9600, 0, 8, 1}},
    {"CutAfterNineteen", "     9600,n,8,1.5  xyz", {9600, 0, 8, 1}},
    {"CutBeforeStopBits", "9600,       n,   8,1.5", {9600, 0, 8, -1}},
    {"CutInsideOneAndAHalfBeforeThePoint", "9600,    n,   8,  1.5", {9600, 0, 8, 0}},
};

RUN_TABLE(SettingsParse, parseCases);

struct RefusedCase {
    const char* name;
    const char* text;
};

class SettingsRefused : public testing::TestWithParam<RefusedCase> {};

TEST_P(SettingsRefused, LeavesAllAsItWas) {
    LineSettings settings = untouched;
    EXPECT_FALSE(ParseSettings(GetParam().text, settings));
    EXPECT_EQ(settings, untouched);
}

const RefusedCase refusedCases[] = {
    {"UnknownParity", "9600,x,8,1"},   {"UnknownDataBits", "9600,n,9,1"},
    {"UnknownStopBits", "9600,n,8,3"}, {"TailBehindStopBits", "9600,n,8,1x"},
    {"FifthField", "9600,n,8,1,"},     {"TwoCommas", "9600,,,n,8,1"},
    {"NegativeSpeed", "-9600,n,8,1"},  {"FractionOfASpeed", "9600.5,n,8,1"},
    {"HalfAStopBit", "9600,n,8,1."},   {"CutInsideOneAndAHalfBehindThePoint", "9600,   n,   8,  1.5"},
    {"HighByte", "9600\xA0,n,8,1"},    {"LineEnd", "9600,n,8,1\r"},
};

RUN_TABLE(SettingsRefused, refusedCases);

struct FormatCase {
    const char* name;
    LineSettings settings;
    const char* text;
};

class SettingsFormat : public testing::TestWithParam<FormatCase> {};

TEST_P(SettingsFormat, FollowsTheTable) {
    EXPECT_EQ(FormatSettings(GetParam().settings), GetParam().text);
}

const FormatCase formatCases[] = {
    {"Usual", {9600, 0, 8, 0}, "9600,n,8,1"},     {"NoSpeed", {0, 0, 8, 0}, ",n,8,1"},
    {"NegativeSpeed", {-1, 0, 8, 0}, "-1,n,8,1"}, {"AllAbsent", {0, -1, -1, -1}, ",,,"},
    {"InNoTable", {9600, 5, 9, 3}, "9600,,,"},    {"Longest", {INT_MAX, 4, 4, 1}, "2147483647,s,4,1.5"},
};

RUN_TABLE(SettingsFormat, formatCases);

TEST(SettingsRoundTrip, EveryCombinationComesBack) {
    for (const int speed : {0, 1, 300, 9600, 115200, INT_MAX})
        for (int parity = -1; parity <= 4; ++parity)
            for (const int dataBits : {-1, 4, 5, 6, 7, 8})
                for (int stopBits = -1; stopBits <= 2; ++stopBits) {
                    const LineSettings settings = {speed, parity, dataBits, stopBits};
                    LineSettings read = untouched;
                    const std::string text = FormatSettings(settings);
                    ASSERT_TRUE(ParseSettings(text.c_str(), read)) << text;
                    ASSERT_EQ(read, settings) << text;
                }
}

TEST(SettingsErrorCode, IsTheHostsBadPropertyValue) {
    EXPECT_EQ(SettingsError, 380);
}

} // namespace
