// What stands behind ATD, as steps in time.
#pragma once

#include "profile.h"

#include <optional>
#include <string>
#include <vector>

struct DialStep {
    enum class Kind { kDigit, kPause, kToneWait, kAnswerWait };

    Kind kind = Kind::kDigit;
    Nanoseconds time = 0; // how long it takes, or waits at the longest
    char digit = 0;
};

struct DialString {
    std::vector<DialStep> steps;
    bool staysInCommandState = false; // ended by ';'
};

// Nothing when there is a character that can't be dialled.
std::optional<DialString> ParseDialString(const std::string& text, const Profile& profile);
