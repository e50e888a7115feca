// The way through vttest's menus.
#pragma once

#include <span>

// What a screen's codes leave behind in the emulation.
enum class Leaves {
    NothingOpen,
    OpenSequence, // which would swallow what comes next
};

struct VttestStep {
    const char* prompt;  // that vttest ends its screen with
    const char* picture; // of that screen; null: none
    const char* answer;
    Leaves leaves = Leaves::NothingOpen;
};

std::span<const VttestStep> VttestSteps();
