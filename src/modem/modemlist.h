// The list of known modems: a text file, one modem a line. Engine; modemlistfile.h finds the file.
#pragma once

#include <functional>
#include <string>

inline constexpr int endOfModemList = -1;
inline constexpr size_t modemLineSize = 199; // characters of a line that are read

// Reads one line by a function that gives the next byte, or endOfModemList. An empty line ends the list.
//
// A carriage return ends a line, and so do the end of the file and a byte of value 255; line feeds are
// dropped wherever they stand. Of a longer line the 200th character is lost, and the rest reads as the next
// line.
std::string ReadModemLine(const std::function<int()>& nextByte);

// What the lists show of a line: all before its first tab.
std::string ModemName(const std::string& line);
