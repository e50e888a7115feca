// The control commands as text; each row of the table in commands.cpp is one command.
#pragma once

#include "wire.h"

#include <memory>
#include <string>
#include <vector>

using Wires = std::vector<std::unique_ptr<Wire>>;

// Executes one line, "[cable] command ...", and returns the reply: "ok ..." or "error ...".
std::string ExecuteCommand(Wires& wires, const std::string& line);

// Reads a whole word as a number. False if it is none, or out of the type's or the given range.
bool ParseNumber(const std::string& word, std::uint64_t& value);
bool ParseProbability(const std::string& word, double& value);
// One "key=value" of noise; false if there is no such key or value.
bool ParseNoise(const std::string& word, NoiseSettings& noise);
