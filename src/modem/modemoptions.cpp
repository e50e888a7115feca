#include "modemoptions.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char firstPrintable = ' ';
constexpr char fieldSeparator = '\t';

} // namespace

std::string ModemOption(const COMCTL& record, ModemField field) {
    const char* text = record.achModemOptions;
    for (int left = static_cast<int>(field); left > 0 && *text; --left)
        text += std::strlen(text) + 1;
    return text;
}

ModemField DialPrefixField(const COMCTL& record) {
    constexpr int tone = static_cast<int>(ModemField::DialTone);
    const int mode = std::clamp(record.nDialMode, -tone, ModemOptionsSize);
    return static_cast<ModemField>(mode + tone);
}

void StoreModemOptions(COMCTL& record, const char* szOptions) {
    constexpr size_t room = ModemOptionsSize - 2; // two NULs end the row
    const size_t length = std::min(std::strlen(szOptions), room);
    char* end = std::transform(szOptions, szOptions + length, record.achModemOptions, [](char c) {
        // The upper half of the code page counts as negative, and ends a field like a control character.
        return static_cast<signed char>(c) < firstPrintable ? '\0' : c;
    });
    std::fill(end, std::end(record.achModemOptions), '\0');
}

int CopyModemOptions(const COMCTL& record, char* lpBuffer) {
    const char* options = record.achModemOptions;
    int count = 0;
    do {
        const char c = options[count];
        lpBuffer[count] = c ? c : fieldSeparator;
    } while (options[count++] || options[count]);
    return count;
}
