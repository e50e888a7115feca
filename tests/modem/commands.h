// The control commands as text; each row of the table in commands.cpp is one command.
#pragma once

#include "lab.h"

#include <string>

// Executes one line, "[modem] command ...", and returns the reply: "ok ..." or "error ...".
std::string ExecuteCommand(Lab& lab, const std::string& line, Nanoseconds now);
