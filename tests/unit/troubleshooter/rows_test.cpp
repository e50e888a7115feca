// What stands on the troubleshooter's pages.
#include "troubleshootuser.h"

#include <algorithm>

using namespace troubleshooter;

namespace {

constexpr PortDefaults usual = {9600, 8, NOPARITY};

TEST(TroubleShootWelcome, HasItsRows) {
    EXPECT_EQ(WelcomeRows(), Texts({"00", "10Communications Troubleshooter", "00",
                                    "00Welcome to the Communications Troubleshooter.", "00", "00."}));
}

// Ports

struct PortRow {
    const char* name;
    PortDefaults defaults;
    Texts rows;
};

const PortRow portRows[] = {
    {"COM1",
     {9600, 8, NOPARITY},
     {"00", "10COM1", "00    Default speed: 9600 bps", "00    Default byte size: 8",
      "00    Default parity: None"}},
    {"COM32",
     {115200, 7, EVENPARITY},
     {"00", "10COM32", "00    Default speed: 115200 bps", "00    Default byte size: 7",
      "00    Default parity: Even"}},
    {"COM2",
     {300, 5, ODDPARITY},
     {"00", "10COM2", "00    Default speed: 300 bps", "00    Default byte size: 5",
      "00    Default parity: Odd"}},
    {"COM3",
     {1, 6, MARKPARITY},
     {"00", "10COM3", "00    Default speed: 1 bps", "00    Default byte size: 6",
      "00    Default parity: Mark"}},
    {"COM4",
     {0, 0, SPACEPARITY},
     {"00", "10COM4", "00    Default speed: 0 bps", "00    Default byte size: 0",
      "00    Default parity: Space"}},
    {"COM9",
     {2400, 8, 77},
     {"00", "10COM9", "00    Default speed: 2400 bps", "00    Default byte size: 8",
      "00    Default parity: None"}},
};

TEST(TroubleShootPorts, HaveTheirDefaults) {
    for (const PortRow& row : portRows) {
        SCOPED_TRACE(row.name);
        Machine machine;
        machine.ports[row.name] = {true, PortKind::Serial, row.defaults};
        EXPECT_EQ(PortRows(machine.Sources().probePort), row.rows);
    }
}

TEST(TroubleShootPorts, AreAskedForFrom1To32) {
    Texts asked;
    Texts expected;
    for (int port = 1; port <= 32; ++port)
        expected.push_back("COM" + std::to_string(port));
    EXPECT_EQ(PortRows([&](const char* port) {
                  asked.push_back(port);
                  return PortProbe{false, PortKind::Unknown, {}};
              }),
              Texts());
    EXPECT_EQ(asked, expected);
}

TEST(TroubleShootPorts, StandInTheirOrder) {
    Machine machine;
    for (const char* name : {"COM10", "COM2"})
        machine.ports[name] = {true, PortKind::Serial, usual};
    const Texts rows = PortRows(machine.Sources().probePort);
    ASSERT_EQ(rows.size(), 10u);
    EXPECT_EQ(rows[1], "10COM2");
    EXPECT_EQ(rows[6], "10COM10");
}

TEST(TroubleShootPorts, OfOtherKindsHaveNoRows) {
    Machine machine;
    machine.ports["COM1"] = {true, PortKind::Modem, usual};
    machine.ports["COM2"] = {true, PortKind::Unknown, usual};
    machine.ports["COM3"] = {false, PortKind::Serial, usual};
    machine.ports["COM33"] = {true, PortKind::Serial, usual};
    EXPECT_EQ(PortRows(machine.Sources().probePort), Texts());
}

// The machine's settings of one port of the cable, changed for a while.
class ChangedDefaults {
  public:
    ChangedDefaults(const char* port, DWORD speed, BYTE byteSize, BYTE parity) : port_(port) {
        before_.dwSize = sizeof before_;
        DWORD size = sizeof before_;
        good = GetDefaultCommConfigA(port, &before_, &size);
        COMMCONFIG changed = before_;
        changed.dcb.BaudRate = speed;
        changed.dcb.ByteSize = byteSize;
        changed.dcb.Parity = parity;
        good = good && SetDefaultCommConfigA(port, &changed, sizeof changed);
    }
    ~ChangedDefaults() { SetDefaultCommConfigA(port_, &before_, sizeof before_); }
    ChangedDefaults(const ChangedDefaults&) = delete;
    ChangedDefaults& operator=(const ChangedDefaults&) = delete;

    bool good;

  private:
    const char* port_;
    COMMCONFIG before_ = {};
};

TEST(TroubleShootPorts, OfThisMachineAreAsItsSettingsSay) {
    const ChangedDefaults changed("COM5", 19200, 7, EVENPARITY);
    ASSERT_TRUE(changed.good);
    const Texts rows = PortRows(ProbePort);
    const auto heading = std::ranges::find(rows, "10COM5");
    ASSERT_GE(rows.end() - heading, 4);
    EXPECT_EQ(Texts(heading + 1, heading + 4),
              Texts({"00    Default speed: 19200 bps", "00    Default byte size: 7",
                     "00    Default parity: Even"}));
    EXPECT_EQ(std::ranges::count(rows, "10COM32"), 0) << "it has no such port";
}

// Modems

TEST(TroubleShootModems, NoneIsSaid) {
    EXPECT_EQ(ModemRows({}), Texts({"00", "00No modems were found.  You can configure modems using ",
                                    "00the Control Panel."}));
}

TEST(TroubleShootModems, HaveProviderAndSpeed) {
    EXPECT_EQ(ModemRows({{"Fast %s", "unimodem %d.tsp", 33600}, {"", "", 0}, {"C", "c", 4294967295}}),
              Texts({"00", "10Fast %s", "00    unimodem %d.tsp", "00    Maximum speed: 33600 Bps", "00", "10",
                     "00    ", "00    Maximum speed: 0 Bps", "00", "10C", "00    c",
                     "00    Maximum speed: 4294967295 Bps"}));
}

TEST(TroubleShootModems, LongNamesStayWhole) {
    const std::string name(1000, 'n');
    EXPECT_EQ(ModemRows({{name, name, 1}})[1], "10" + name);
    EXPECT_EQ(ModemRows({{name, name, 1}})[2], "00    " + name);
}

// Libraries

SYSTEMTIME At(WORD year, WORD month, WORD day, WORD hour, WORD minute) {
    SYSTEMTIME time = {};
    time.wYear = year;
    time.wMonth = month;
    time.wDay = day;
    time.wHour = hour;
    time.wMinute = minute;
    return time;
}

Texts RowsOfOne(const LoadedLibrary& library, const char* name = "Tapi32.dll") {
    Machine machine;
    machine.libraries[name] = library;
    return LibraryRows(machine.Sources().findLibrary);
}

struct TimeRow {
    SYSTEMTIME time;
    const char* text;
};

const TimeRow timeRows[] = {
    {At(2024, 2, 29, 9, 5), "00    Created: 29-Feb-24 09:05 AM"},
    {At(2000, 1, 1, 0, 0), "00    Created: 01-Jan-00 12:00 AM"},
    {At(1999, 12, 31, 23, 59), "00    Created: 31-Dec-99 11:59 PM"},
    {At(1980, 3, 4, 11, 59), "00    Created: 04-Mar-80 11:59 AM"},
    {At(2009, 4, 5, 12, 0), "00    Created: 05-Apr-09 12:00 PM"},
    {At(2010, 5, 6, 12, 59), "00    Created: 06-May-10 12:59 PM"},
    {At(2011, 6, 7, 13, 0), "00    Created: 07-Jun-11 01:00 PM"},
    {At(2012, 7, 8, 1, 1), "00    Created: 08-Jul-12 01:01 AM"},
    {At(2013, 8, 9, 22, 10), "00    Created: 09-Aug-13 10:10 PM"},
    {At(2014, 9, 10, 10, 9), "00    Created: 10-Sep-14 10:09 AM"},
    {At(2015, 10, 11, 0, 30), "00    Created: 11-Oct-15 12:30 AM"},
    {At(2016, 11, 12, 20, 0), "00    Created: 12-Nov-16 08:00 PM"},
};

TEST(TroubleShootLibraries, HaveTheirTimeByATwelveHourClock) {
    for (const TimeRow& row : timeRows) {
        const Texts rows = RowsOfOne({"x", FileVersion{1, 2, 3, 4}, row.time});
        ASSERT_EQ(rows.size(), 5u) << row.text;
        EXPECT_EQ(rows[4], row.text);
    }
}

struct LibraryRow {
    const char* name;
    LoadedLibrary library;
    Texts rows;
};

const LibraryRow libraryRows[] = {
    {"whole",
     {"C:\\%s\\tapi32.dll", FileVersion{6, 1, 65535, 0}, At(2001, 1, 2, 3, 4)},
     {"00", "10Tapi32.dll", "00    Location: C:\\%s\\tapi32.dll", "00    Version: 6.1.65535.0",
      "00    Created: 02-Jan-01 03:04 AM"}},
    {"no version",
     {"x", {}, At(2001, 1, 2, 3, 4)},
     {"00", "10Tapi32.dll", "00    Location: x", "00    Version info not available",
      "00    Created: 02-Jan-01 03:04 AM"}},
    {"no time",
     {"x", FileVersion{1, 2, 3, 4}, {}},
     {"00", "10Tapi32.dll", "00    Location: x", "00    Version: 1.2.3.4"}},
    {"no path", {}, {"00", "10Tapi32.dll", "00     File not found.", "00    Version info not available"}},
};

TEST(TroubleShootLibraries, SayWhatIsKnown) {
    for (const LibraryRow& row : libraryRows)
        EXPECT_EQ(RowsOfOne(row.library), row.rows) << row.name;
}

TEST(TroubleShootLibraries, ThatAreNotLoadedHaveNoRows) {
    EXPECT_EQ(LibraryRows(Machine().Sources().findLibrary), Texts());
}

TEST(TroubleShootLibraries, AreAskedForInTheirOrder) {
    Texts asked;
    LibraryRows([&](const char* name) {
        asked.push_back(name);
        return std::nullopt;
    });
    EXPECT_EQ(asked, Texts({"Lantry.ocx", "Tapi32.dll", "OlePro32.dll", "OleAut32.dll", "Msvbvm60.dll",
                            "Msvbvm50.dll", "MFC40.dll", "MFC42.dll", "MFC40D.dll", "MFC42D.dll"}));
}

TEST(TroubleShootLibraries, OfThisProcessAreFound) {
    const HeldLibrary held("OleAut32.dll");
    const auto loaded = FindLoadedLibrary("OleAut32.dll");
    ASSERT_TRUE(loaded);
    EXPECT_NE(GetFileAttributesA(loaded->path.c_str()), INVALID_FILE_ATTRIBUTES) << loaded->path;
    EXPECT_TRUE(loaded->version);
    ASSERT_TRUE(loaded->created);
    EXPECT_GE(loaded->created->wYear, 1990);
    EXPECT_FALSE(FindLoadedLibrary("Msvbvm50.dll"));
}

struct ZoneRow {
    const char* name;
    LONG minutesWest;
};

const ZoneRow zones[] = {{"east", -330}, {"none", 0}, {"west", 480}, {"another day", -14 * 60}};

ULONGLONG Minutes(const SYSTEMTIME& time) {
    FILETIME asFile = {};
    SystemTimeToFileTime(&time, &asFile);
    return ULARGE_INTEGER{{asFile.dwLowDateTime, asFile.dwHighDateTime}}.QuadPart / 600000000;
}

TEST(TroubleShootLibraries, CreationIsByTheClockOfTheZone) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    WIN32_FILE_ATTRIBUTE_DATA file = {};
    SYSTEMTIME utc = {};
    ASSERT_TRUE(GetFileAttributesExA(path, GetFileExInfoStandard, &file));
    ASSERT_TRUE(FileTimeToSystemTime(&file.ftCreationTime, &utc));
    for (const ZoneRow& row : zones) {
        SCOPED_TRACE(row.name);
        TIME_ZONE_INFORMATION zone = {};
        zone.Bias = row.minutesWest;
        const auto created = LocalCreationOf(path, &zone);
        ASSERT_TRUE(created);
        EXPECT_EQ(static_cast<LONGLONG>(Minutes(utc) - Minutes(*created)), row.minutesWest);
    }
    EXPECT_FALSE(LocalCreationOf("no such file"));
}

TEST(TroubleShootLibraries, ProgramItselfIsByTheMachinesClock) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    TIME_ZONE_INFORMATION zone = {};
    GetTimeZoneInformation(&zone);
    const auto self = FindLoadedLibrary(nullptr); // the program itself
    ASSERT_TRUE(self && self->created);
    EXPECT_EQ(self->path, path);
    EXPECT_EQ(Minutes(*self->created), Minutes(LocalCreationOf(path, &zone).value()));
    EXPECT_FALSE(self->version);
}

// Fields and links

TEST(TroubleShootFields, AreTakenApart) {
    struct {
        const char* fields;
        bool heading;
        const char* text;
    } const rows[] = {{"00", false, ""},   {"10", false, ""},  {"", false, ""},    {"1", false, ""},
                      {"00a", false, "a"}, {"10a", true, "a"}, {"001", false, "1"}};
    for (const auto& row : rows) {
        EXPECT_EQ(RowOf(row.fields).heading, row.heading) << row.fields;
        EXPECT_EQ(RowOf(row.fields).text, row.text) << row.fields;
    }
}

struct LinkRow {
    const char* text;
    bool isLink;
    Texts parts; // before, target, words, after
};

const LinkRow linkRows[] = {
    {"see |http://x|the page| for more", true, {"see ", "http://x", "the page", " for more"}},
    {"|t|w|", true, {"", "t", "w", ""}},
    {"|||", true, {"", "", "", ""}},
    {"a|t|w|b|c", true, {"a", "t", "w", "b|c"}},
    {"", false, {}},
    {"plain", false, {}},
    {"a|b", false, {}},
    {"a|b|c", false, {}},
};

TEST(TroubleShootLinks, AreFoundByTheirBars) {
    for (const LinkRow& row : linkRows) {
        SCOPED_TRACE(row.text);
        const auto link = LinkOf({false, row.text});
        ASSERT_EQ(link.has_value(), row.isLink);
        if (link) {
            EXPECT_EQ(Texts({link->before, link->target, link->words, link->after}), row.parts);
        }
        EXPECT_FALSE(LinkOf({true, row.text})) << "headings have none";
    }
}

} // namespace
