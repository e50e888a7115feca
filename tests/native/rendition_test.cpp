// SGR: what each parameter does to the current colour and flags.
#include "caseprint.h"
#include "terminal/rendition.h"
#include "terminalscreen.h"

#include <map>

namespace {

struct Rendition {
    int color;
    int reverse;
    int blink;
    bool operator==(const Rendition&) const = default;
};

void PrintTo(const Rendition& rendition, std::ostream* out) {
    *out << "color " << std::hex << rendition.color << std::dec << " reverse " << rendition.reverse
         << " blink " << rendition.blink;
}

Rendition Render(const Rendition& before, const std::string& list, int emulation = Emulation_Ansi) {
    TerminalScreen screen({emulation, 8, 2, 0});
    COMCTL& record = screen.Record();
    record.nColor = before.color;
    record.bReverse = before.reverse;
    record.bBlink = before.blink;
    record.bWrapPending = 1;
    screen.Feed("\033[" + list + "m");
    EXPECT_EQ(record.bWrapPending, 1) << "a wrap stays pending";
    EXPECT_TRUE(screen.world.messages.empty());
    return {record.nColor, record.bReverse, record.bBlink};
}

// What a parameter does by itself: bits of the colour that it clears and sets, and the flags it gives a
// value.
struct Effect {
    int clear;
    int set;
    int reverse = -1; // untouched
    int blink = -1;
};

const std::map<int, Effect> effects = {
    {0, {0x08, 0, 0, 0}}, {1, {0, 0x08}},     {4, {0, 0x08}},      {5, {0, 0, -1, 1}},  {7, {0, 0, 1, -1}},
    {22, {0x08, 0}},      {24, {0x08, 0}},    {25, {0, 0, -1, 0}}, {27, {0, 0, 0, -1}}, {30, {0x07, 0}},
    {31, {0x07, 4}},      {32, {0x07, 2}},    {33, {0x07, 6}},     {34, {0x07, 1}},     {35, {0x07, 5}},
    {36, {0x07, 3}},      {37, {0x07, 7}},    {40, {0x70, 0}},     {41, {0x70, 0x40}},  {42, {0x70, 0x20}},
    {43, {0x70, 0x60}},   {44, {0x70, 0x10}}, {45, {0x70, 0x50}},  {46, {0x70, 0x30}},  {47, {0x70, 0x70}},
};

constexpr int concealed = 8;
constexpr int lastParameter = 110;

Rendition Expected(const Rendition& before, int parameter) {
    if (parameter == concealed)
        return {(before.color & 0xF0) | (before.color & before.color >> 4 & 0x0F), before.reverse,
                before.blink};
    const auto found = effects.find(parameter);
    if (found == effects.end())
        return before;
    const Effect& effect = found->second;
    return {(before.color & ~effect.clear) | effect.set, effect.reverse < 0 ? before.reverse : effect.reverse,
            effect.blink < 0 ? before.blink : effect.blink};
}

constexpr Rendition starts[] = {{0x1F, 0, 0}, {0x00, 0, 0}, {0xFF, 1, 1},
                                {0xA5, 1, 0}, {0x5A, 0, 1}, {0x47, 1, 1}};

TEST(RenditionParameter, EveryOneFromEveryStart) {
    for (const Rendition& start : starts)
        for (int parameter = 0; parameter <= lastParameter; ++parameter) {
            EXPECT_EQ(Render(start, std::to_string(parameter)), Expected(start, parameter)) << parameter;
            EXPECT_EQ(Render(start, std::to_string(parameter), Emulation_VT100), Expected(start, parameter))
                << parameter;
        }
}

TEST(RenditionParameter, EveryOneBehindEveryOther) {
    for (int first = 0; first <= lastParameter; ++first)
        for (int second = 0; second <= lastParameter; second += first % 10 ? 11 : 1) {
            const std::string list = std::to_string(first) + ";" + std::to_string(second);
            ASSERT_EQ(Render({0xA5, 1, 0}, list), Expected(Expected({0xA5, 1, 0}, first), second)) << list;
        }
}

struct ListCase {
    const char* name;
    Rendition before;
    std::string list;
    Rendition after;
};

class RenditionList : public testing::TestWithParam<ListCase> {};

TEST_P(RenditionList, FollowsTheTable) {
    EXPECT_EQ(Render(GetParam().before, GetParam().list), GetParam().after);
}

const ListCase listCases[] = {
    {"EmptyListIsZero", {0x4E, 1, 1}, "", {0x46, 0, 0}},
    {"ZeroKeepsTheColors", {0x4E, 1, 1}, "0", {0x46, 0, 0}},
    {"BrightThenRed", {0x1F, 0, 0}, "1;31", {0x1C, 0, 0}},
    {"RedKeepsBackgroundAndBright", {0x1F, 0, 0}, "31", {0x1C, 0, 0}},
    {"RedOfDarkStaysDark", {0x17, 0, 0}, "31", {0x14, 0, 0}},
    {"BackgroundKeepsItsTopBit", {0x9F, 0, 0}, "40", {0x8F, 0, 0}},
    {"ConcealIsNotInvisible", {0x1F, 0, 0}, "8", {0x11, 0, 0}},
    {"ConcealWithoutCommonBits", {0x4B, 0, 0}, "8", {0x40, 0, 0}},
    {"LeadingSemicolonIsTheEmptyList", {0x1F, 1, 0}, ";31", {0x17, 0, 0}},
    {"EmptyMiddleEndsTheList", {0x17, 0, 0}, "1;;31", {0x1F, 0, 0}},
    {"TrailingSemicolon", {0x17, 0, 0}, "31;", {0x14, 0, 0}},
    {"UnknownIsSkipped", {0x17, 0, 0}, "99;31;48;41", {0x44, 0, 0}},
    {"TwoOnTheWayAreSkipped", {0x17, 0, 0}, "2;3;6;9;1", {0x1F, 0, 0}},
    {"NineIsUnknown", {0x1F, 1, 1}, "9", {0x1F, 1, 1}},
    {"ForegroundDefaultIsUnknown", {0x1F, 0, 0}, "39", {0x1F, 0, 0}},
    {"BackgroundDefaultIsUnknown", {0x1F, 0, 0}, "49", {0x1F, 0, 0}},
    {"BrightForegroundIsUnknown", {0x1F, 0, 0}, "91", {0x1F, 0, 0}},
    {"QuestionMarkIsSteppedOver", {0x1F, 0, 0}, "?31", {0x1C, 0, 0}},
    {"ForeignByteIsTheEmptyList", {0x1F, 1, 0}, "!31", {0x17, 0, 0}},
    {"HugeNumberIsUnknown", {0x1F, 1, 0}, "4294967327", {0x1F, 1, 0}},
    {"FullSequence", {0x1F, 0, 0}, "5;7;22;33;44;5;7", {0x16, 1, 1}},
};

RUN_TABLE(RenditionList, listCases);

TEST(Rendition, RowsAreInTheRangeThatTheListReads) {
    for (const RenditionRow& row : RenditionRows()) {
        EXPECT_TRUE(row.parameter == concealed || effects.contains(row.parameter)) << row.parameter;
        EXPECT_TRUE(*row.meaning) << row.parameter;
    }
    EXPECT_EQ(RenditionRows().size(), effects.size() + 1);
}

TEST(Rendition, ColorsShowInWhatIsPrinted) {
    TerminalScreen screen({Emulation_Ansi, 8, 2, 0});
    screen.Feed("a\033[31mb\033[7mc\033[27;22md");
    EXPECT_EQ(screen.Colors(0).substr(0, 4), "\x1F\x1C\xC1\x14");
}

} // namespace
