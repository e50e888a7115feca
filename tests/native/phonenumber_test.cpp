// Phone numbers: their parts, and the canonical form out of them.
#include "caseprint.h"
#include "modem/phonenumber.h"

#include <climits>
#include <string>

namespace {

struct ParseCase {
    const char* name;
    const char* text;
    bool useAreaCode;
    int country;
    const char* areaCode;
    const char* number;
};

const ParseCase parses[] = {
    {"Canonical", "+1 (212) 5551212", true, 1, "212", "5551212"},
    {"NoBrackets", "+49 5551212", true, 49, "", "5551212"},
    {"NoPlus", "5551212", false, noCountry, "", "5551212"},
    {"NoPlusKeepsItsBrackets", "1 (212) 5551212", false, noCountry, "", "1 (212) 5551212"},
    {"PlusBehindABlank", " +1 212", false, noCountry, "", " +1 212"},
    {"Empty", "", false, noCountry, "", ""},
    {"NoText", nullptr, false, 1, "", ""},
    {"NoBlanks", "+1(212)5551212", true, 1, "212", "5551212"},
    {"ManyBlanks", "+  1  (  212  )  5551212", true, 1, "212", "5551212"},
    {"BlanksInTheNumberStay", "+1 (212) 555 1212 ", true, 1, "212", "555 1212 "},
    {"NoClosingBracket", "+1 (212 5551212", true, 1, "212", "5551212"},
    {"EmptyBrackets", "+1 () 5551212", true, 1, "", "5551212"},
    {"LettersInBrackets", "+1 (abc) 5551212", true, 1, "", "abc) 5551212"},
    {"LettersBehindTheAreaCode", "+1 (212x) 5", true, 1, "212", "x) 5"},
    {"OneClosingBracketIsTaken", "+1 (212)) 5", true, 1, "212", ") 5"},
    {"PlusAlone", "+", true, 0, "", ""},
    {"NoCountryCode", "+ (212) 5", true, 0, "212", "5"},
    {"CountryAlone", "+44", true, 44, "", ""},
    {"EndsInTheBracket", "+44 (", true, 44, "", ""},
    {"EndsInTheAreaCode", "+44 (20", true, 44, "20", ""},
    {"EndsBehindTheAreaCode", "+44 (20)", true, 44, "20", ""},
    {"LettersForACountry", "+abc", true, 0, "", "abc"},
    {"LeadingZeros", "+001 (0212) 5", true, 1, "0212", "5"},
    {"LongestCountryCode", "+2147483647 5", true, INT_MAX, "", "5"},
    {"TooLongACountryCode", "+99999999999999999999 5", true, INT_MAX, "", "5"},
};

class PhoneNumberParts : public testing::TestWithParam<ParseCase> {};

TEST_P(PhoneNumberParts, AreFound) {
    const PhoneNumber parsed = ParsePhoneNumber(GetParam().text);
    EXPECT_EQ(parsed.useAreaCode, GetParam().useAreaCode);
    EXPECT_EQ(parsed.country, GetParam().country);
    EXPECT_EQ(parsed.areaCode, GetParam().areaCode);
    EXPECT_EQ(parsed.number, GetParam().number);
}

RUN_TABLE(PhoneNumberParts, parses);

TEST(PhoneNumbers, LongOnesAreTakenWhole) {
    const std::string area(500, '2');
    const std::string number(5000, '5');
    const PhoneNumber parsed = ParsePhoneNumber(("+1 (" + area + ") " + number).c_str());
    EXPECT_EQ(parsed.areaCode, area);
    EXPECT_EQ(parsed.number, number);
}

TEST(PhoneNumbers, CanonicalForm) {
    EXPECT_EQ(BuildPhoneNumber(1, "212", "5551212"), "+1 (212) 5551212");
    EXPECT_EQ(BuildPhoneNumber(49, "", "5551212"), "+49 () 5551212");
    EXPECT_EQ(BuildPhoneNumber(-1, "", ""), "+-1 () ");
    EXPECT_EQ(BuildPhoneNumber(1, "%s", "%d%n"), "+1 (%s) %d%n") << "texts are no formats";
}

TEST(PhoneNumbers, CanonicalFormIsParsedAgain) {
    const PhoneNumber parsed = ParsePhoneNumber(BuildPhoneNumber(49, "", "12 34").c_str());
    EXPECT_TRUE(parsed.useAreaCode);
    EXPECT_EQ(parsed.country, 49);
    EXPECT_EQ(parsed.areaCode, "");
    EXPECT_EQ(parsed.number, "12 34");
}

TEST(CountryRows, NameAndCode) {
    EXPECT_EQ(CountryRow("Germany", 49), "Germany (49)");
    EXPECT_EQ(CountryRow("%s%n", 1), "%s%n (1)");
    EXPECT_EQ(CountryRow("", 0), " (0)");
}

struct RowCase {
    const char* name;
    const char* row;
    int code;
};

const RowCase rows[] = {
    {"Plain", "Germany (49)", 49},
    {"NoBracket", "Germany", 1},
    {"Empty", "", 1},
    {"NameWithBrackets", "Island (North) (1670)", 1670},
    {"BlankInTheBracket", "Germany ( 49)", 49},
    {"NoDigits", "Germany (x)", 0},
    {"EndsInTheBracket", "Germany (", 0},
    {"DigitsInTheName", "Zone 7 (20)", 20},
};

class CountryCode : public testing::TestWithParam<RowCase> {};

TEST_P(CountryCode, IsTheNumberInTheRowsLastBrackets) {
    EXPECT_EQ(CountryCodeOfRow(GetParam().row), GetParam().code);
}

RUN_TABLE(CountryCode, rows);

TEST(CountryRows, GiveTheirCodeBack) {
    for (const unsigned code : {1u, 7u, 49u, 1670u})
        EXPECT_EQ(CountryCodeOfRow(CountryRow("Some (where)", code)), static_cast<int>(code));
}

} // namespace
