#include "vtteststeps.h"

namespace {

constexpr char push[] = "Push <RETURN>";
constexpr char mainMenu[] = "Enter choice number (0 - 12): ";
constexpr char reportsMenu[] = "Enter choice number (0 - 7): ";
constexpr char otherMenu[] = "Enter choice number (0 - 8): ";
constexpr char bugsAndColorsMenu[] = "Enter choice number (0 - 9): ";
constexpr char answerback[] = "Finish this test with RETURN";
constexpr char returnKey[] = "Push the RETURN key: ";
constexpr char end[] = "That's all, folks!";

constexpr char go[] = "\r";

const VttestStep steps[] = {
    {mainMenu, nullptr, "1\r"},
    {push, "cursor-border", go},
    {push, "cursor-border-132", go},
    {push, "cursor-autowrap", go},
    {push, nullptr, go},
    {push, nullptr, go, Leaves::OpenSequence}, // a picture would hang on how the reads cut the stream
    {push, "cursor-leading-zeros", go},

    {mainMenu, nullptr, "2\r"},
    {push, "screen-wrap", go},
    {push, "screen-tabs", go},
    {push, "screen-132-reverse", go},
    {push, "screen-80-reverse", go},
    {push, "screen-132-normal", go},
    {push, "screen-80-normal", go},
    {push, "screen-soft-scroll-down", go},
    {push, "screen-soft-scroll-large", go},
    {push, "screen-jump-scroll-down", go},
    {push, "screen-jump-scroll-large", go},
    {push, "screen-origin-bottom", go},
    {push, "screen-origin-top", go},
    {push, "screen-rendition-dark", go},
    {push, "screen-rendition-light", go},
    {push, "screen-save-cursor", go},

    {mainMenu, nullptr, "3\r"},
    {push, "characters-sets", go},

    {mainMenu, nullptr, "4\r"},
    {push, "double-size-80", go},
    {push, nullptr, go},
    {push, nullptr, go},
    {push, nullptr, go},
    {push, "double-size-exercise", go},
    {push, nullptr, go},

    {mainMenu, nullptr, "6\r"},
    {reportsMenu, "reports-menu", "1\r"},
    {answerback, nullptr, go},
    {push, "reports-answerback", go},
    {reportsMenu, nullptr, "2\r"},
    {returnKey, nullptr, go},
    {returnKey, nullptr, go},
    {push, "reports-newline", go},
    {reportsMenu, nullptr, "3\r"},
    {push, "reports-status", go},
    {reportsMenu, nullptr, "4\r"},
    {push, "reports-attributes", go},
    {reportsMenu, nullptr, "0\r"},

    {mainMenu, nullptr, "11\r"},
    {otherMenu, nullptr, "6\r"},
    {bugsAndColorsMenu, nullptr, "2\r"},
    {push, "colors-pattern", go},
    {bugsAndColorsMenu, nullptr, "4\r"},
    {push, "colors-erase", go},
    {push, nullptr, go},
    {bugsAndColorsMenu, nullptr, "0\r"},
    {otherMenu, nullptr, "0\r"},

    {mainMenu, nullptr, "0\r"},
    {end, nullptr, ""},
};

} // namespace

std::span<const VttestStep> VttestSteps() {
    return steps;
}
