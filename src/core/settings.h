// The settings text: speed, parity, data bits, stop bits, like "9600,n,8,1".
#pragma once

#include <string>

inline constexpr int SettingsError = 380;
inline constexpr int AbsentSetting = -1; // a field that the text leaves out: the driver's default

struct LineSettings {
    int speed = 0; // bits per second, 0 leaves the driver's
    int parity = AbsentSetting;
    int dataBits = AbsentSetting;
    int stopBits = AbsentSetting;
};

// False: the text has something that is no setting; the settings are untouched.
bool ParseSettings(const char* text, LineSettings& settings);

// A value that no text stands for is left empty.
std::string FormatSettings(const LineSettings& settings);
