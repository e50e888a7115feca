#include "troubleshootrows.h"

#include <cstdio>

namespace {

constexpr size_t fieldsSize = 2; // before the text
constexpr char headingFields[] = "10";
constexpr char plainFields[] = "00";
constexpr char linkBar = '|';

constexpr int lastPort = 32;

constexpr const char* libraries[] = {
    "Lantry.ocx",   "Tapi32.dll", "OlePro32.dll", "OleAut32.dll", "Msvbvm60.dll",
    "Msvbvm50.dll", "MFC40.dll",  "MFC42.dll",    "MFC40D.dll",   "MFC42D.dll",
};

constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

void AddPlain(TroubleShootRows& rows, const std::string& text) {
    rows.push_back(plainFields + text);
}

void AddHeading(TroubleShootRows& rows, const std::string& text) {
    AddPlain(rows, "");
    rows.push_back(headingFields + text);
}

// Numbers and words of our own: none is longer than a line.
template <class... Values>
std::string Formatted(const char* szFormat, Values... values) {
    char text[96];
    std::snprintf(text, sizeof text, szFormat, values...);
    return text;
}

const char* NameOfParity(unsigned char parity) {
    switch (parity) {
    case EVENPARITY:
        return "Even";
    case ODDPARITY:
        return "Odd";
    case MARKPARITY:
        return "Mark";
    case SPACEPARITY:
        return "Space";
    default:
        return "None";
    }
}

void AddPort(TroubleShootRows& rows, const std::string& name, const PortDefaults& defaults) {
    AddHeading(rows, name);
    AddPlain(rows, Formatted("    Default speed: %lu bps", defaults.speed));
    AddPlain(rows, Formatted("    Default byte size: %d", defaults.byteSize));
    AddPlain(rows, Formatted("    Default parity: %s", NameOfParity(defaults.parity)));
}

void AddModem(TroubleShootRows& rows, const TroubleShootModem& modem) {
    AddHeading(rows, modem.name);
    AddPlain(rows, "    " + modem.provider);
    AddPlain(rows, Formatted("    Maximum speed: %lu Bps", modem.maximumSpeed));
}

int TwoDigitYear(WORD year) {
    return year < 2000 ? year - 1900 : year - 2000;
}

int HourOnTheDial(WORD hour) {
    constexpr int hours = 12;
    return hour % hours ? hour % hours : hours;
}

std::string TextOf(const SYSTEMTIME& created) {
    return Formatted("    Created: %02d-%3s-%02d %02d:%02d %s", created.wDay, months[created.wMonth - 1],
                     TwoDigitYear(created.wYear), HourOnTheDial(created.wHour), created.wMinute,
                     created.wHour < 12 ? "AM" : "PM");
}

std::string TextOf(const std::optional<FileVersion>& version) {
    if (!version)
        return "    Version info not available";
    const auto [major, minor, release, build] = *version;
    return Formatted("    Version: %d.%d.%d.%d", major, minor, release, build);
}

void AddLibrary(TroubleShootRows& rows, const char* szName, const LoadedLibrary& library) {
    AddHeading(rows, szName);
    AddPlain(rows, library.path.empty() ? "     File not found." : "    Location: " + library.path);
    AddPlain(rows, TextOf(library.version));
    if (library.created)
        AddPlain(rows, TextOf(*library.created));
}

// Takes the text up to the next bar, and the bar; what has no bar behind it stays.
std::optional<std::string> TakeToBar(std::string& rest) {
    const size_t bar = rest.find(linkBar);
    if (bar == std::string::npos)
        return {};
    const std::string taken = rest.substr(0, bar);
    rest.erase(0, bar + 1);
    return taken;
}

} // namespace

TroubleShootRow RowOf(const std::string& fields) {
    if (fields.size() <= fieldsSize)
        return {false, ""};
    return {fields.front() == headingFields[0], fields.substr(fieldsSize)};
}

std::optional<LinkMarkup> LinkOf(const TroubleShootRow& row) {
    if (row.heading)
        return {};
    std::string rest = row.text;
    const auto before = TakeToBar(rest);
    const auto target = TakeToBar(rest);
    const auto words = TakeToBar(rest);
    if (!words)
        return {};
    return LinkMarkup{*before, *target, *words, rest};
}

TroubleShootRows WelcomeRows() {
    TroubleShootRows rows;
    AddHeading(rows, "Communications Troubleshooter");
    for (const char* text : {"", "Welcome to the Communications Troubleshooter.", "", "."})
        AddPlain(rows, text);
    return rows;
}

TroubleShootRows PortRows(const PortLookUp& probe) {
    TroubleShootRows rows;
    for (int port = 1; port <= lastPort; ++port) {
        const std::string name = "COM" + std::to_string(port);
        const PortProbe found = probe(name.c_str());
        if (found.found && found.kind == PortKind::Serial)
            AddPort(rows, name, found.defaults);
    }
    return rows;
}

TroubleShootRows ModemRows(const std::vector<TroubleShootModem>& modems) {
    TroubleShootRows rows;
    for (const TroubleShootModem& modem : modems)
        AddModem(rows, modem);
    if (!modems.empty())
        return rows;
    for (const char* text :
         {"", "No modems were found.  You can configure modems using ", "the Control Panel."})
        AddPlain(rows, text);
    return rows;
}

TroubleShootRows LibraryRows(const LibraryLookUp& find) {
    TroubleShootRows rows;
    for (const char* name : libraries) {
        const std::optional<LoadedLibrary> library = find(name);
        if (library)
            AddLibrary(rows, name, *library);
    }
    return rows;
}
