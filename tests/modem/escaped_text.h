// Bytes as words without blanks: \xNN stands for what is no visible character.
#pragma once

#include <optional>
#include <string>

std::string EscapedText(const std::string& bytes);
// Nothing when a backslash is followed by something else than xNN or another backslash.
std::optional<std::string> UnescapedText(const std::string& text);
