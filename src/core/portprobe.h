// What kind of device a name stands for, without opening it.
#pragma once

enum class PortKind { Unknown, Serial, Modem };

// By the subtype that a provider gives in its settings (PST_...).
PortKind KindOfProvider(unsigned long subtype);

// No value of its own for a name that the system has no settings for: found says so.
struct PortProbe {
    bool found;
    PortKind kind;
};

PortProbe ProbePort(const char* szPort);
