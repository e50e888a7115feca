// The finished module, registered in the prefix while the program runs, and what hosts need beside it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace host {

// The folder that the program and the module are in, with its last stroke.
std::string ModuleFolder();

// By regsvr32. The program's environment does the first before all tests and the second after them.
bool Register();
bool Unregister();

// Names of all that is in the registry's classes, of the machine's and of the user's hive.
std::vector<std::string> ListClasses();

struct Ended {
    bool inTime = false;
    DWORD code = 0;
    std::string output;
};
// A program with its output; the thread's messages run meanwhile.
Ended Run(const std::string& commandLine, DWORD limitMilliseconds = 30000);

} // namespace host
