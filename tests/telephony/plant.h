// What tests set up: the lines of the exchange, and what the service knows of the world. All of it under the
// exchange's lock.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

struct PlantLine {
    std::string name;
    std::string provider;
    DWORD mediaModes = 0;
    std::string number; // empty: it can't be called
    std::string port;   // empty: its calls carry no data
    std::vector<std::byte> config;
};

struct Location {
    std::string name;
    std::string areaCode;
    DWORD countryId = 0;
    DWORD permanentId = 0;
};

struct Country {
    std::string name;
    DWORD id = 0;
    DWORD code = 0;
};

struct Translation {
    std::string from;
    std::string to;
};

struct Rule {
    std::string number;
    int outcome = 0;
    DWORD argument = 0;
};

struct Plant {
    std::vector<PlantLine> lines;
    std::vector<Location> locations;
    std::vector<Country> countries;
    std::vector<Translation> translations;
    std::vector<Rule> rules;
    DWORD currentLocation = 0;
    DWORD pace = 10;
    bool fileWasRead = false;
};

Plant& ThePlant();

// Null: there is none.
PlantLine* FindDevice(DWORD device);
const Country* FindCountry(DWORD id);

std::string DigitsOf(const std::string& text);
// The same as they stand, or the same digits.
bool SameNumber(const std::string& one, const std::string& other);
