// The texts of the system's exception codes.
#pragma once

// "An Access Violation" for 0xC0000005. Every code has a text.
const char* ExceptionText(unsigned nCode);
