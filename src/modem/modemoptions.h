// How one modem is driven: its title and its commands, kept as strings in a row in the object.
//
// As text the fields are separated by tabs: title, set-up, tone prefix, pulse prefix, answer set-up, hang-up,
// line speed. In the object each ends with a NUL, and one more NUL ends the row, so an empty field ends it
// too.
#pragma once

#include "core/comctl.h"

#include <string>

enum class ModemField { Title, Init, DialTone, DialPulse, Answer, HangUp, LineSpeed };

// The field, a copy that survives what the host does; empty beyond the last one.
std::string ModemOption(const COMCTL& record, ModemField field);

// The field that holds the prefix of the object's dial mode. A mode that nobody knows counts on from there.
ModemField DialPrefixField(const COMCTL& record);

// Takes the text byte by byte: what is no printable ASCII character ends a field. What does not fit is cut.
void StoreModemOptions(COMCTL& record, const char* szOptions);

// Writes the fields, a tab after each, and no NUL; ModemOptionsSize bytes at the most. The count of bytes.
int CopyModemOptions(const COMCTL& record, char* lpBuffer);
