// What kind of device a name stands for, without opening it.
#pragma once

enum class PortKind { Unknown, Serial, Modem };

// By the subtype that a provider gives in its settings (PST_...).
PortKind KindOfProvider(unsigned long subtype);

// What the system opens the port with when nobody says otherwise.
struct PortDefaults {
    unsigned long speed = 0; // bits per second
    unsigned char byteSize = 0;
    unsigned char parity = 0; // NOPARITY and so on
};

// No value of its own for a name that the system has no settings for: found says so.
struct PortProbe {
    bool found;
    PortKind kind;
    PortDefaults defaults = {};
};

PortProbe ProbePort(const char* szPort);
