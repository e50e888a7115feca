// What the connection dialogs edit. The caller fills it and, once a dialog ended with IDOK, applies it.
#pragma once

#include <string>

struct ConnectionChoice {
    std::string port; // or a modem's name
    std::string phoneNumber;
    std::string settings;
    int handshaking = 0; // -1: the port's own
};
