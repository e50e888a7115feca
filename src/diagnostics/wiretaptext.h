// Rendering of logged bytes as an expression in the script language of the hosts: "AT" + Chr(13).
// Knows no platform; may be called on any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr int LogLineWidth = 80;       // columns of the line that carries the message text
inline constexpr int LogIndent = 10;          // blanks before each line that continues it
inline constexpr size_t LogBytesPerLine = 32; // bytes of data shown on one line, at most

struct RenderedLine {
    std::string text;
    size_t taken = 0; // bytes of the data that the text shows
};

// Renders bytes for as long as their text stays under width columns.
RenderedLine RenderBytes(std::string_view bytes, int width);

// All lines that show the data of a message, each with its line end. The first continues a message text of
// cchText characters. A text that leaves no room for the first byte gets that byte all the same.
std::string DataLines(size_t cchText, std::string_view bytes);
