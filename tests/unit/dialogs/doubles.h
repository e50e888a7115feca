// What stands in this program for the parts around the dialogs: the telephony service, and the reports of
// what went wrong.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace doubles {

struct Country {
    const char* szRow;
    DWORD id;
};

// Answers in place of CTapiApp's own members.
struct Service {
    std::vector<std::string> lines; // names, by device; a line without one takes no data calls
    std::vector<Country> countries;
    DWORD countryId = 1;
    std::string areaCode;
    std::string fails; // the member that throws
    std::vector<std::string> configured;
};
extern Service service;

// The places that exceptions were reported from.
extern std::vector<std::string> reports;

void Reset();

} // namespace doubles
