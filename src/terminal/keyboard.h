// Keys, as bytes on the line. The object may be gone after each: what goes out can raise an event.
#pragma once

#include "core/comctl.h"

enum class KeyDone {
    No,  // the platform's default handling follows
    Yes, // nothing follows
};

// WM_KEYDOWN: the keys that have no character, and backspace.
KeyDone OnKeyDown(COMCTL& record, WPARAM key);

// WM_CHAR.
KeyDone OnChar(COMCTL& record, char character);
