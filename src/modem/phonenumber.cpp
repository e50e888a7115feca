#include "phonenumber.h"

#include <charconv>
#include <limits>
#include <string_view>

namespace {

constexpr int countryOfNoRow = 1;

void SkipBlanks(std::string_view& rest) {
    const size_t blanks = rest.find_first_not_of(' ');
    rest.remove_prefix(blanks == rest.npos ? rest.size() : blanks);
}

std::string_view TakeDigits(std::string_view& rest) {
    const std::string_view digits = rest.substr(0, rest.find_first_not_of("0123456789"));
    rest.remove_prefix(digits.size());
    return digits;
}

// 0 for no digit; a number that is too long is the largest.
int ValueOf(std::string_view digits) {
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc::result_out_of_range ? std::numeric_limits<int>::max() : value;
}

// The area code, without its brackets. The closing one may be missing.
std::string TakeAreaCode(std::string_view& rest) {
    if (!rest.starts_with('('))
        return "";
    rest.remove_prefix(1);
    SkipBlanks(rest);
    const std::string_view digits = TakeDigits(rest);
    SkipBlanks(rest);
    if (rest.starts_with(')')) {
        rest.remove_prefix(1);
        SkipBlanks(rest);
    }
    return std::string(digits);
}

} // namespace

PhoneNumber ParsePhoneNumber(const char* szText) {
    if (!szText)
        return {};
    std::string_view rest = szText;
    if (!rest.starts_with('+'))
        return {false, noCountry, "", szText};
    rest.remove_prefix(1);
    SkipBlanks(rest);
    PhoneNumber parsed;
    parsed.useAreaCode = true;
    parsed.country = ValueOf(TakeDigits(rest));
    SkipBlanks(rest);
    parsed.areaCode = TakeAreaCode(rest);
    parsed.number = rest;
    return parsed;
}

std::string BuildPhoneNumber(int country, const std::string& areaCode, const std::string& number) {
    return "+" + std::to_string(country) + " (" + areaCode + ") " + number;
}

std::string CountryRow(const std::string& name, unsigned code) {
    return name + " (" + std::to_string(static_cast<int>(code)) + ")";
}

int CountryCodeOfRow(const std::string& row) {
    const size_t bracket = row.rfind('(');
    if (bracket == row.npos)
        return countryOfNoRow;
    std::string_view rest = row;
    rest.remove_prefix(bracket + 1);
    SkipBlanks(rest);
    return ValueOf(TakeDigits(rest));
}
