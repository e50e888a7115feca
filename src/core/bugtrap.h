// What a program did wrong, in words. Nothing in the module raises the dialog: misuse stays silent.
#pragma once

#include <array>

// The first is for a null handle, the second for a dead one.
inline constexpr std::array<const char*, 4> misuseTexts = {
    "A Tarn Link Objects function was called using an object that has not yet been created, or that was "
    "destroyed.",
    "A Tarn Link Objects function was called using an invalid object or an object that was destroyed",
    "Two Tarn Link Objects functions that wait for something to happen have been called recursively.\r\n\r\n"
    "Please check any event or timer code in your program.",
    "A Tarn Link Objects input function has been called while AutoReceive is set.  Because two functions "
    "will "
    "'compete' for data coming from the communications port, you will get incorrect results.",
};
