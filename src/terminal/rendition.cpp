#include "rendition.h"

#include "sequence.h"

#include <array>

namespace {

constexpr int bright = 0x08;
constexpr int mostParameters = 100;
constexpr int noParameter = -1;

constexpr int foregroundMask = 0x07;
constexpr int backgroundMask = 0x70;
constexpr int backgroundShift = 4;

void Reset(COMCTL& record) {
    record.nColor &= ~bright;
    record.bReverse = 0;
    record.bBlink = 0;
}

void SetBright(COMCTL& record) {
    record.nColor |= bright;
}

void ClearBright(COMCTL& record) {
    record.nColor &= ~bright;
}

template <int COMCTL::*Flag, int Value>
void SetFlag(COMCTL& record) {
    record.*Flag = Value;
}

// The foreground keeps only what it shares with the background, which makes it no secret: kept so, see the
// tests.
void Conceal(COMCTL& record) {
    record.nColor &= ~0x0F | (record.nColor >> backgroundShift);
}

template <int Color>
void SetForeground(COMCTL& record) {
    record.nColor = (record.nColor & ~foregroundMask) | Color;
}

template <int Color>
void SetBackground(COMCTL& record) {
    record.nColor = (record.nColor & ~backgroundMask) | Color << backgroundShift;
}

// The PC's order of colours has blue where ANSI has red.
constexpr RenditionRow rows[] = {
    {0, "not bright, not reverse; the colours stay", Reset},
    {1, "bright", SetBright},
    {4, "underline, shown as bright", SetBright},
    {5, "blink, kept but not shown", SetFlag<&COMCTL::bBlink, 1>},
    {7, "reverse", SetFlag<&COMCTL::bReverse, 1>},
    {8, "foreground bits that the background lacks are cleared", Conceal},
    {22, "not bright", ClearBright},
    {24, "no underline: not bright", ClearBright},
    {25, "no blink", SetFlag<&COMCTL::bBlink, 0>},
    {27, "not reverse", SetFlag<&COMCTL::bReverse, 0>},
    {30, "foreground black", SetForeground<0>},
    {31, "foreground red", SetForeground<4>},
    {32, "foreground green", SetForeground<2>},
    {33, "foreground brown", SetForeground<6>},
    {34, "foreground blue", SetForeground<1>},
    {35, "foreground magenta", SetForeground<5>},
    {36, "foreground cyan", SetForeground<3>},
    {37, "foreground white", SetForeground<7>},
    {40, "background black", SetBackground<0>},
    {41, "background red", SetBackground<4>},
    {42, "background green", SetBackground<2>},
    {43, "background brown", SetBackground<6>},
    {44, "background blue", SetBackground<1>},
    {45, "background magenta", SetBackground<5>},
    {46, "background cyan", SetBackground<3>},
    {47, "background white", SetBackground<7>},
};

constexpr int lastParameter = 47;

constexpr auto actOfParameter = [] {
    std::array<void (*)(COMCTL&), lastParameter + 1> table{};
    for (const RenditionRow& row : rows)
        table[static_cast<size_t>(row.parameter)] = row.act;
    return table;
}();

void Render(COMCTL& record, int parameter) {
    if (parameter > lastParameter)
        return;
    if (const auto act = actOfParameter[static_cast<size_t>(parameter)])
        act(record);
}

} // namespace

std::span<const RenditionRow> RenditionRows() {
    return rows;
}

void RunRendition(COMCTL& record) {
    for (int i = 0; i < mostParameters; ++i) {
        const int parameter = SequenceParam(record, i, noParameter);
        if (parameter == noParameter) {
            if (!i)
                Reset(record);
            return;
        }
        Render(record, parameter);
    }
}
