// Commands of the modem's options as bytes and pauses. Engine.
#pragma once

#include <optional>

struct ModemStep {
    enum class Kind { Send, Pause };
    Kind kind;
    char byte; // of Send
};

// The next step of a command, which moves on; nothing at its end. "^" and a character is the control
// character, so "^M" is a carriage return; "~" is a pause of a second; a "^" that ends the command is
// skipped.
std::optional<ModemStep> NextStep(const char*& command);
