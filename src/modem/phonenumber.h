// Phone numbers as people write them: "+1 (212) 5551212" is canonical, anything else is dialled as it stands.
#pragma once

#include <string>

inline constexpr int noCountry = -1;

struct PhoneNumber {
    bool useAreaCode = false; // country and area code are part of it
    int country = 1;          // its code, or noCountry
    std::string areaCode;
    std::string number;
};

// No text at all is an empty number of country 1.
PhoneNumber ParsePhoneNumber(const char* szText);

std::string BuildPhoneNumber(int country, const std::string& areaCode, const std::string& number);

// A country as a row of a list: "Germany (49)".
std::string CountryRow(const std::string& name, unsigned code);

// The code of such a row, 1 if it has none. A name may have brackets of its own: the last ones count.
int CountryCodeOfRow(const std::string& row);
